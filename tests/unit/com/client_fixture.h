#pragma once

#include <gtest/gtest.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ara/log/testing/capture.h"
#include "scripted_vehicle.h"
#include "tests/support/temp_root.h"
#include "tests/support/wait_for.h"
#include "xr/com/client_port.h"
#include "xr/com/find_service_handle.h"
#include "xr/com/rport.h"
#include "xr/com/transport/find_thread.h"
#include "xr/com/transport/transport.h"

namespace com_test {

using xr::com::cpp_binding::proxy::Client_port;
using xr::com::cpp_binding::proxy::Method_kind;
using xr::com::cpp_binding::proxy::Reply;
using xr::com::cpp_binding::proxy::Subscription_state;

/// What came in over time, to be waited for by the test.
template <class T>
class Inbox {
 public:
  void put(T value) {
    const std::lock_guard lock{mutex_};
    values_.push_back(std::move(value));
    changed_.notify_all();  // under the lock: who waits may destroy this next
  }

  /// The next value; a default one, and a failure, when none comes.
  T next() {
    std::unique_lock lock{mutex_};
    if (!changed_.wait_for(lock, test_support::kPatience, [&] { return !values_.empty(); })) {
      ADD_FAILURE() << "nothing came";
      return T{};
    }
    auto value = std::move(values_.front());
    values_.pop_front();
    return value;
  }

  bool empty() const {
    const std::lock_guard lock{mutex_};
    return values_.empty();
  }

 private:
  mutable std::mutex mutex_;  // guards values_
  std::condition_variable changed_;
  std::deque<T> values_;
};

class Recording_sink final : public xr::com::cpp_binding::proxy::Event_sink {
 public:
  void event_updated(std::uint32_t status, const std::vector<unsigned char>& payload) override {
    if (status == 0) payloads.put(payload);
  }
  void event_state_changed(Subscription_state state) override { states.put(state); }

  Inbox<Bytes> payloads;
  Inbox<Subscription_state> states;
};

inline constexpr const char* kService = "ylt::services::chargingmanagementcore::ChargingManagementCore";
inline constexpr std::uint16_t kServiceId = 0x6310;

/// A client on 127.0.0.1 with a discovery port of its own, and a vehicle on 127.0.0.2 that has not said anything yet.
class Client : public testing::Test {
 protected:
  using List = xr::com::transport::Instance_list;

  Client() : deployment_{make_deployment()} {}
  ~Client() override {
    handle_ = {};
    find_thread_->stop();
    transport_->stop();
  }

  void SetUp() override {
    transport_->start();
    find();
  }

  void find() {
    handle_ = transport_->start_find(kService, "*", [this](List list) {
      lists_.put(std::move(list));
      return true;
    });
  }

  /// The vehicle offers, and a port to it is opened.
  void meet() {
    vehicle_.offer();
    const auto list = lists_.next();
    ASSERT_EQ(list.size(), 1U);
    open(list.front());
  }

  /// As `meet`, with the TCP connection made.
  void meet_over_tcp() {
    meet();
    ASSERT_TRUE(vehicle_.accept());
    ASSERT_TRUE(test_support::WaitFor([&] { return port_->is_available(get("valueControls")); }));
  }

  void open(const xr::com::runtime::Service_instance& instance) {
    std::vector<std::string_view> fields, settable;
    for (const auto& field : service().fields) {
      fields.push_back(field.name);
      if (field.set) settable.push_back(field.name);
    }
    const auto events = static_cast<std::uint16_t>(fields.size());
    port_ = xr::com::cpp_binding::proxy::Rport{instance, {events, 25, kService, fields, settable}}.port();
  }

  const xr::com::wire::Service_deployment& service() const { return *deployment_.find_service(kServiceId); }
  std::uint16_t index(const std::string& field) const {
    return static_cast<std::uint16_t>(service().find_field(field) - service().fields.data());
  }
  xr::com::cpp_binding::proxy::Method_ref get(const std::string& field) const { return {index(field), Method_kind::get}; }
  xr::com::cpp_binding::proxy::Method_ref set(const std::string& field) const { return {index(field), Method_kind::set}; }

  std::shared_ptr<Recording_sink> subscribe(const std::string& field) {
    auto sink = std::make_shared<Recording_sink>();
    port_->subscribe(index(field), sink);
    return sink;
  }

  std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call> call(xr::com::cpp_binding::proxy::Method_ref method, Bytes payload = {}) {
    return port_->call(method, std::make_shared<Bytes>(std::move(payload)), [this](Reply reply) { replies_.put(std::move(reply)); });
  }

  bool logged(const std::string& part) const {
    return test_support::WaitFor([&] {
      for (const auto& line : log_.Lines()) {
        if (line.find(part) != std::string::npos) return true;
      }
      return false;
    });
  }

 private:
  xr::com::wire::Deployment make_deployment() const {
    auto deployment = xr::com::wire::default_deployment();
    deployment.discovery.port = root_.DiscoveryPort();
    deployment.discovery.subscribe_ttl = 1;
    return deployment;
  }

 protected:
  ara::log::testing::Capture log_;
  const test_support::TempRoot root_;  // for its discovery port
  const xr::com::wire::Deployment deployment_;
  std::shared_ptr<xr::com::transport::Find_thread> find_thread_ = std::make_shared<xr::com::transport::Find_thread>();
  std::shared_ptr<xr::com::transport::Transport> transport_ = std::make_shared<xr::com::transport::Transport>(deployment_, find_thread_);
  Scripted_vehicle vehicle_{"127.0.0.2", deployment_, kServiceId};
  Inbox<List> lists_;
  Inbox<Reply> replies_;
  xr::com::cpp_binding::Find_service_handle handle_;
  std::shared_ptr<Client_port> port_;
};

}  // namespace com_test
