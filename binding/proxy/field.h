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

/// In the place of a set that the service does not have.
struct No_set {
  explicit No_set(const std::shared_ptr<xr::com::cpp_binding::proxy::Client_port>&) {}
};

template <class F, bool settable = F::kSettable>
struct Set_of {
  using type = No_set;
};
template <class F>
struct Set_of<F, true> {
  using type = xr::com::cpp_binding::proxy::Method_impl<F, typename F::Set, xr::com::cpp_binding::proxy::Method_kind::set>;
};

}  // namespace detail

/// One field of a proxy: its event, its get and, if the service allows it, its set. `F` is the field's description. Any thread.
template <class F>
class Field {
 public:
  using Description = F;
  using Record = typename F::Record;
  using Records = std::vector<Record>;
  using Event = xr::com::cpp_binding::proxy::Event_impl<F>;

  Field(const qe::com::runtime::Instance_id&, const xr::com::cpp_binding::proxy::Rport& rport)
      : Field{rport.port(), detail::runtime_executor()} {}
  Field(const std::shared_ptr<xr::com::cpp_binding::proxy::Client_port>& port, std::shared_ptr<xr::com::Executor> executor)
      : event_{port, std::move(executor)}, get_{port}, set_{port} {}

  Event& event() { return event_; }

  /// Asks the service for the field's value. Fails as `Method_impl`.
  qe::com::Future<Records> get() { return get_(); }

  /// Asks the service to take a value; the future gives the value that it has then. Fails as `Method_impl`.
  qe::com::Future<Records> set(const Records& value) requires(F::kSettable) { return set_(value); }

 private:
  Event event_;
  xr::com::cpp_binding::proxy::Method_impl<F, typename F::Get, xr::com::cpp_binding::proxy::Method_kind::get> get_;
  typename detail::Set_of<F>::type set_;
};

}  // namespace ara::com::internal::proxy
