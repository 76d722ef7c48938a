#pragma once

#include "binding/incidents/method_incidents.h"
#include "binding/incidents/target.h"
#include "binding/proxy/future.h"
#include "binding/proxy/method_impl_base.h"
#include "binding/proxy/record_operations.h"
#include "binding/serialization/serializer.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// The number of a method in incidents: the gets have their field's index, the sets follow in the order of their fields.
template <class F>
constexpr std::uint16_t method_id(Method_kind kind) {
  if (kind == Method_kind::get) return F::kIndex;
  const auto& settable = F::Service::kSettable;
  const auto place = std::find(settable.begin(), settable.end(), F::kName) - settable.begin();
  return static_cast<std::uint16_t>(F::Service::kFields.size() + static_cast<std::size_t>(place));
}

/// The promise of a call as the place where its answer goes.
template <class Record>
class Records_answer final : public Answer {
 public:
  using Records = std::vector<Record>;

  explicit Records_answer(someip::serialization::Serialization_properties properties) : properties_{properties} {}

  qe::com::Future<Records> get_future() { return promise_.get_future(); }
  void set_value_from(const std::vector<unsigned char>& payload) override {
    promise_.set_value(someip::serialization::deserialize<Record>(payload, properties_));
  }
  void set_exception(std::exception_ptr exception) override { promise_.set_exception(std::move(exception)); }

 private:
  const someip::serialization::Serialization_properties properties_;
  qe::com::Promise<Records> promise_;
};

/// `Method` is the `Get` or the `Set` of field `F`; both answer with the field's value, and a set takes one too. Any thread.
///
/// A call that nobody answers, or that is open when the method goes, leaves its future unready. One whose future goes is given up.
template <class F, class Method, Method_kind kind>
class Method_impl : public Method_impl_base {
 public:
  using Record = typename F::Record;
  using Records = std::vector<Record>;

  explicit Method_impl(std::shared_ptr<Client_port> port)
      : Method_impl_base{{{F::Service::kName, F::Service::kSerialization},
                          port->instance().value(),
                          {F::kIndex, kind},
                          method_id<F>(kind),
                          &Method::GetApplicationErrorExceptionPtr},
                         port} {}

  /// @throws Service_not_available_exception with no incident, or Transport_exception (130) if the message cannot be sent.
  qe::com::Future<Records> operator()() requires(kind == Method_kind::get) {
    throw_if_not_available();
    com::log::target::Dlt::trace(log::incidents::Method_call_request_tx{context().identity(), context().id});
    return call(get_shared_payload(0));
  }

  /// As above, and as the codec if the value cannot be encoded.
  qe::com::Future<Records> operator()(const Records& value) requires(kind == Method_kind::set) {
    throw_if_not_available();
    com::log::target::Dlt::trace(log::incidents::Method_call_request_tx{context().identity(), context().id},
                                 json::serialization::Payload_data{&Operations_of<Record>::write_json, &value});
    const auto& properties = context().service.properties;
    auto request = get_shared_payload(someip::serialization::serialized_size(value, properties));
    someip::serialization::serialize(*request, value, properties);
    return call(std::move(request));
  }

 private:
  qe::com::Future<Records> call(Shared_payload request) {
    const auto answer = std::make_shared<Records_answer<Record>>(context().service.properties);
    auto future = answer->get_future();
    future.keep(send(std::move(request), answer));
    return future;
  }
};

}  // namespace xr::com::cpp_binding::proxy
