#pragma once

#include "binding/proxy/event.h"
#include "binding/proxy/method_impl.h"
#include "xr/com/client_port.h"
#include "xr/com/execution/executor.h"
#include "xr/com/instance_id.h"
#include "xr/com/rport.h"

#include <memory>
#include <utility>
#include <vector>

namespace ara::com::internal::proxy {

namespace detail {
/// The pool of the runtime, on which all events dispatch. @throws std::logic_error when the runtime does not live.
std::shared_ptr<xr::com::Executor> runtime_executor();

/// The set of a field; nothing where the service does not have it.
template <class F, bool settable = F::kSettable>
class Field_set {
 public:
  explicit Field_set(const std::shared_ptr<xr::com::cpp_binding::proxy::Client_port>&) {}
};

template <class F>
class Field_set<F, true> {
 public:
  using Records = std::vector<typename F::Record>;

  explicit Field_set(const std::shared_ptr<xr::com::cpp_binding::proxy::Client_port>& port) : set_{port} {}

  /// Asks the service to take a value; the future gives the value that it has then. Fails as `Method_impl`.
  qe::com::Future<Records> set(const Records& value) { return set_(value); }

 private:
  xr::com::cpp_binding::proxy::Method_impl<F, typename F::Set, xr::com::cpp_binding::proxy::Method_kind::set> set_;
};

}  // namespace detail

/// One field of a proxy: its event, its get and, if the service allows it, its set. `F` is the field's description. Any thread.
template <class F>
class Field : public detail::Field_set<F> {
 public:
  using Description = F;
  using Record = typename F::Record;
  using Records = std::vector<Record>;
  using Event = xr::com::cpp_binding::proxy::Event_impl<F>;

  Field(const qe::com::runtime::Instance_id&, const xr::com::cpp_binding::proxy::Rport& rport)
      : Field{rport.port(), detail::runtime_executor()} {}
  Field(const std::shared_ptr<xr::com::cpp_binding::proxy::Client_port>& port, std::shared_ptr<xr::com::Executor> executor)
      : detail::Field_set<F>{port}, event_{port, std::move(executor)}, get_{port} {}

  Event& event() { return event_; }

  /// Asks the service for the field's value. Fails as `Method_impl`.
  qe::com::Future<Records> get() { return get_(); }

 private:
  Event event_;
  xr::com::cpp_binding::proxy::Method_impl<F, typename F::Get, xr::com::cpp_binding::proxy::Method_kind::get> get_;
};

}  // namespace ara::com::internal::proxy
