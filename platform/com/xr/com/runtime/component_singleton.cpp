#include "xr/com/runtime/component_singleton.h"

#include <atomic>
#include <stdexcept>
#include <utility>

#include "ara/log/logging.h"
#include "xr/com/execution/static_thread_pool.h"
#include "xr/com/loggers.h"
#include "xr/com/transport/find_thread.h"
#include "xr/com/transport/transport.h"
#include "xr/com/wire/deployment.h"

namespace xr::com::runtime {
namespace {

std::atomic<Component_singleton*> the_one{nullptr};

[[noreturn]] void fail(const std::string& text) {
  cpp_binding::logger().LogError() << text;
  throw std::runtime_error{text};
}

wire::Deployment load() {
  const auto file = wire::deployment_file();
  try {
    return wire::load_deployment(file);
  } catch (const wire::Deployment_error& e) {
    fail("Cannot use the deployment " + file.string() + ": " + e.what());
  }
}

std::shared_ptr<transport::Transport> make_transport(const std::shared_ptr<transport::Find_thread>& find_thread) {
  auto deployment = load();
  try {
    return std::make_shared<transport::Transport>(std::move(deployment), find_thread);
  } catch (const std::runtime_error& e) {
    fail(e.what());
  }
}

Component_singleton& living() {
  auto* one = the_one.load();
  if (one == nullptr) throw std::logic_error{"The communication runtime is not there"};
  return *one;
}

}  // namespace

Component_singleton::Component_singleton(bool, const std::string&)
    : find_thread_{std::make_shared<transport::Find_thread>()},
      transport_{make_transport(find_thread_)},
      finder_{std::make_unique<Service_finder>(transport_)},
      pool_factory_{std::make_unique<Thread_pool_factory>(std::make_shared<static_thread_pool>())} {
  Component_singleton* none = nullptr;
  transport_->start();  // before the rest of the process can see a runtime that then does not come alive
  if (!the_one.compare_exchange_strong(none, this)) throw std::logic_error{"The communication runtime is there already"};
}

Component_singleton::~Component_singleton() {
  find_thread_->stop();
  pool_factory_->pool()->stop();
  transport_->stop();
  the_one = nullptr;
}

Service_finder& Component_singleton::get_service_finder() {
  return *living().finder_;
}

Thread_pool_factory& Component_singleton::get_thread_pool_factory() {
  return *living().pool_factory_;
}

}  // namespace xr::com::runtime
