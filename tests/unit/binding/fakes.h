#pragma once

#include "binding/proxy/field.h"
#include "codec_record.h"
#include "xr/com/client_port.h"
#include "xr/com/execution/executor.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A service with two fields, and a port to it that the test drives by hand.
namespace binding_test {

using xr::com::cpp_binding::proxy::Method_kind;
using xr::com::cpp_binding::proxy::Method_ref;
using xr::com::cpp_binding::proxy::Reply;
using xr::com::cpp_binding::proxy::Subscription_state;

struct Own_error : std::runtime_error {
  Own_error() : std::runtime_error{"own error"} {}
};

struct Service {
  static constexpr std::string_view kName = "test::Service";
  static constexpr std::array<std::string_view, 3> kFields{"first", "second", "third"};
  static constexpr std::array<std::string_view, 2> kSettable{"first", "third"};
  static constexpr Serialization_properties kSerialization{};

  struct third {
    using Record = Sample;
    using Service = binding_test::Service;
    static constexpr std::uint16_t kIndex = 2;
    static constexpr std::string_view kName = "third";
    static constexpr bool kSettable = true;
    struct Get {
      /// Code 33 is this method's own; the source of 34 is broken.
      static std::exception_ptr GetApplicationErrorExceptionPtr(unsigned char code, const Bytes&) {
        if (code == 34) throw std::runtime_error{"broken source"};
        return code == 33 ? std::make_exception_ptr(Own_error{}) : nullptr;
      }
    };
    using Set = Get;
  };
};

using Field = ara::com::internal::proxy::Field<Service::third>;
using Event = Field::Event;

/// Runs jobs when the test says so.
class HandDriven final : public xr::com::Executor {
 public:
  bool post(std::function<void()> job) override {
    if (refusing) throw std::bad_alloc{};
    if (ended) return false;
    jobs.push_back(std::move(job));
    return true;
  }
  std::size_t RunAll() {
    std::size_t count = 0;
    for (; !jobs.empty(); ++count) {
      const auto job = std::exchange(jobs.front(), nullptr);
      jobs.pop_front();
      job();
    }
    return count;
  }

  std::deque<std::function<void()>> jobs;
  bool ended = false;
  bool refusing = false;
};

class FakePort : public xr::com::cpp_binding::proxy::Client_port {
 public:
  struct Call {
    Call(Method_ref which, Bytes payload, std::function<void(Reply)> end)
        : method{which}, request{std::move(payload)}, completion{std::move(end)} {}
    Method_ref method;
    Bytes request;
    std::function<void(Reply)> completion;
    std::atomic<bool> ready = false;
    std::atomic<bool> abandoned = false;
  };

  const std::string& service_name() const override { return name_; }
  const qe::com::runtime::Instance_id& instance() const override {
    if (onInstance) onInstance();
    return instance_;
  }
  bool is_available(Method_ref) const override { return available; }
  void subscribe(std::uint16_t field, std::weak_ptr<xr::com::cpp_binding::proxy::Event_sink> wanted) override {
    ++subscriptions, subscribedField = field, sink = std::move(wanted);
    if (onSubscribe) onSubscribe();
  }
  void unsubscribe(std::uint16_t, const xr::com::cpp_binding::proxy::Event_sink*) override { --subscriptions; }
  std::unique_ptr<xr::com::cpp_binding::proxy::Pending_call> call(Method_ref method, xr::com::cpp_binding::proxy::Shared_payload request,
                                                                  std::function<void(Reply)> completion) override {
    calls.push_back(std::make_shared<Call>(method, *request, std::move(completion)));
    return std::make_unique<Pending>(calls.back());
  }

  void Notify(const Bytes& payload, std::uint32_t status = 0) const {
    if (const auto alive = sink.lock()) alive->event_updated(status, payload);
  }
  /// One sample of one record, told apart by its `wide`.
  void Notify(std::uint64_t number) const {
    std::vector<Sample> samples(1);
    samples.front().wide = number;
    Notify(Encoded(samples));
  }
  /// Ends a call as the transport does: the completion runs once and goes.
  void Answer(std::size_t call, Reply reply) {
    auto completion = std::exchange(calls.at(call)->completion, nullptr);
    completion(std::move(reply));
    calls[call]->ready = true;
  }
  void GiveUp(std::size_t call) { calls.at(call)->completion = nullptr; }

  bool available = true;
  int subscriptions = 0;
  std::uint16_t subscribedField = 0;
  std::function<void()> onSubscribe;
  std::function<void()> onInstance;  // asked for whenever an incident is written
  std::weak_ptr<xr::com::cpp_binding::proxy::Event_sink> sink;
  std::vector<std::shared_ptr<Call>> calls;

 private:
  struct Pending final : xr::com::cpp_binding::proxy::Pending_call {
    explicit Pending(std::shared_ptr<Call> of) : call{std::move(of)} {}
    ~Pending() override { call->abandoned = !call->ready, call->completion = nullptr; }
    bool is_ready() const override { return call->ready; }
    std::shared_ptr<Call> call;
  };

  const std::string name_{Service::kName};
  const qe::com::runtime::Instance_id instance_{"0x0001"};
};

/// The texts of a capture that speak of this incident.
template <class Lines>
std::size_t CountOf(const Lines& lines, std::string_view incident) {
  const auto item = "\"1_id\":\"" + std::string{incident} + '"';
  return static_cast<std::size_t>(
      std::count_if(lines.begin(), lines.end(), [&](const auto& line) { return line.find(item) != line.npos; }));
}

}  // namespace binding_test
