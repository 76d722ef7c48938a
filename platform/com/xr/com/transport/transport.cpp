#include "xr/com/transport/transport.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <chrono>
#include <exception>
#include <optional>
#include <utility>

#include "os/thread.h"
#include "xr/com/exceptions.h"

namespace xr::com::transport {
namespace {

using namespace std::chrono_literals;

constexpr auto kResumePause = 100ms;
constexpr auto kEndTime = 1s;
constexpr int kEndAttempts = 3;

/// The way from a found instance back to the transport, with the place where the instance was then.
class Found_instance final : public runtime::Port_source {
 public:
  Found_instance(std::weak_ptr<Transport> transport, Instance_key key, Offer offer)
      : transport_{std::move(transport)}, key_{key}, offer_{std::move(offer)} {}

  std::shared_ptr<cpp_binding::proxy::Client_port> open(const connector::Service_interface_description& description) override {
    const auto transport = transport_.lock();
    if (!transport) throw Service_not_available_exception{};
    return transport->open_port(key_, offer_, description);
  }

 private:
  const std::weak_ptr<Transport> transport_;
  const Instance_key key_;
  const Offer offer_;
};

/// The proxy addresses fields by index, so both sides must count the same fields.
void check(const connector::Service_interface_description& description, const wire::Service_deployment& service) {
  const auto named = [](const auto& name, const wire::Field_deployment& field) { return name == field.name; };
  const auto can_be_set = [&](std::string_view name) {
    const auto* field = service.find_field(name);
    return field != nullptr && field->set.has_value();
  };
  if (description.service != service.name ||
      !std::equal(description.fields.begin(), description.fields.end(), service.fields.begin(), service.fields.end(), named) ||
      !std::all_of(description.settable.begin(), description.settable.end(), can_be_set)) {
    throw Invalid_argument_exception{"The description of " + std::string{description.service} + " does not agree with the deployment"};
  }
}

/// "*" is any instance, else "0x" and up to four hexadecimal digits.
std::optional<std::uint16_t> parse_instance(const std::string& text) {
  if (text == "*") return std::nullopt;
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  if (!text.starts_with("0x") || text.size() < 3 || text.size() > 6 || text.find_first_not_of(kDigits, 2) != std::string::npos) {
    throw Invalid_argument_exception{"No instance is called " + text};
  }
  return static_cast<std::uint16_t>(std::stoul(text, nullptr, 16));
}

}  // namespace

Transport::Transport(wire::Deployment deployment, std::shared_ptr<Find_thread> find_thread)
    : deployment_{std::move(deployment)},
      find_thread_{std::move(find_thread)},
      work_{io_.get_executor()},
      buffer_(wire::kMaximumMessage),
      channel_{io_, deployment_, buffer_, warnings_},
      discovery_{io_, deployment_, channel_, *find_thread_, *this, warnings_} {
  cpp_binding::logger();  // made while failing is still possible: from now on it is needed where memory has run out
}

Transport::~Transport() {
  stop();
}

void Transport::start() {
  thread_ = os::StartThread("xr_transport", [this] { run(); });
}

void Transport::stop() {
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock{mutex_};
    stopped_ = true;
  }
  io_.stop();  // needs no memory; the thread itself does the rest
  thread_.join();
  attached_.clear();
  ports_.clear();  // which end the circle of ports and transport; no other thread opens ports any more
}

void Transport::run() {
  serve();
  end();
}

/// Runs all handlers. After an exception out of one, which may have left something unarmed or half done, everything is taken up again: at
/// once, but at most once in `kResumePause`, and until it succeeds.
void Transport::serve() {
  auto resume_at = Alarm::Clock::now();
  bool interrupted = true;  // nothing runs yet
  while (!io_.stopped()) {
    try {
      if (interrupted) {
        io_.run_until(resume_at);
        resume_at = Alarm::Clock::now() + kResumePause;
        resume();
        interrupted = false;
      }
      io_.run();
    } catch (const std::exception& e) {  // out of a completion, a sink, or for want of memory; the other calls and events go on
      cpp_binding::logger().LogError() << "A handler on the transport thread threw: " << e;
      interrupted = true;
    }
  }
}

/// Ends what runs, each part whatever happens to the others, and lets the handlers that wait see it.
void Transport::end() {
  const auto attempt = [](const auto& step) {
    for (int i = 0; i < kEndAttempts; ++i) {
      try {
        return step();
      } catch (const std::exception& e) {
        cpp_binding::logger().LogError() << "The end of the transport was interrupted: " << e;
      }
    }
  };
  for (const auto& [key, port] : attached_) attempt([&port = port] { port->end_subscriptions(); });
  attempt([this] { discovery_.stop(); });  // sends them, before the connections of their fields close
  for (const auto& [key, port] : attached_) attempt([&port = port] { port->stop(); });
  work_.reset();
  io_.restart();
  attempt([this] { io_.run_for(kEndTime); });
}

/// Takes up whatever is begun, changed or cut short. Repeating it is harmless.
void Transport::resume() {
  adopt();
  discovery_.start();
  for (const auto& [key, port] : attached_) port->resume(discovery_.find_offer(key));
}

/// Takes the finds and ports that other threads have made.
void Transport::adopt() {
  const std::lock_guard lock{mutex_};
  for (; !new_finds_.empty(); new_finds_.pop_front()) discovery_.add_find(new_finds_.front());
  attached_.insert(ports_.begin(), ports_.end());
}

void Transport::resume_later() {
  boost::asio::post(io_, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->resume();
  });
}

cpp_binding::Find_service_handle Transport::start_find(const std::string& service, const std::string& instance, Find::Handler handler) {
  const auto* deployed = deployment_.find_service(service);
  if (deployed == nullptr) throw Invalid_argument_exception{"The deployment names no service " + service};
  auto find = std::make_shared<Find>(service, deployed->service_id, parse_instance(instance), std::move(handler));
  const std::lock_guard lock{mutex_};
  resume_later();  // which waits for the lock; so if either fails, no find is left that the caller does not have
  new_finds_.push_back(find);
  return cpp_binding::Find_service_handle{std::move(find)};
}

std::shared_ptr<Service_port> Transport::open_port(Instance_key key, const Offer& offer,
                                                   const connector::Service_interface_description& description) {
  const auto& service = *deployment_.find_service(key.service);
  check(description, service);
  const std::lock_guard lock{mutex_};
  if (stopped_) throw Service_not_available_exception{};
  if (const auto known = ports_.find(key); known != ports_.end()) return known->second;
  auto port = std::make_shared<Service_port>(shared_from_this(), Port_environment{io_, deployment_, channel_, buffer_, warnings_}, service,
                                             key, offer);
  resume_later();
  ports_.emplace(key, port);
  return port;
}

void Transport::instance_offered(Instance_key key, const Offer& offer) {
  if (const auto port = attached_.find(key); port != attached_.end()) port->second->offered(offer);
}

void Transport::instances_lost() {
  for (const auto& [key, port] : attached_) {
    if (discovery_.find_offer(key) == nullptr) port->lost();
  }
}

void Transport::subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer) {
  const auto port = attached_.find({ack.service, ack.instance});
  if (port != attached_.end()) port->second->subscription_answered(ack, peer);
}

std::shared_ptr<runtime::Port_source> Transport::port_source(Instance_key key, const Offer& offer) {
  return std::make_shared<Found_instance>(weak_from_this(), key, offer);
}

}  // namespace xr::com::transport
