#include "binding/proxy/method_impl_base.h"

#include "binding/incidents/method_incidents.h"
#include "binding/incidents/target.h"
#include "xr/com/exceptions.h"

#include <string_view>
#include <utility>

namespace xr::com::cpp_binding::proxy {
namespace {

using com::log::target::Dlt;
namespace incidents = log::incidents;

constexpr int kUndecodable = 138;

void fail_undecodable(const Method_context& context, Answer& answer, std::string_view reason) {
  Dlt::trace(incidents::Method_call_deserializer_exception{context.identity(), context.id, kUndecodable, reason});
  // A statement of its own, so that its source, which shares the text with it, is gone before another thread has it.
  auto failure = std::make_exception_ptr(Transport_exception{kUndecodable});
  answer.set_exception(std::move(failure));
}

}  // namespace

namespace detail {

std::exception_ptr handle_error(const Method_context& context, unsigned char code, const std::vector<unsigned char>& data) {
  if (auto applicationError = context.applicationError(code, data)) {
    Dlt::trace(incidents::Method_call_response_rx{context.identity(), context.id, code, "application error"});
    return applicationError;
  }
  switch (code) {
    case Reply::kConnectionBroken:
    case Reply::kSendRefused:
    case Reply::kMalformed:
      Dlt::trace(incidents::Method_call_request_err{context.identity(), context.id, code, "transport failure"});
      return std::make_exception_ptr(Transport_exception{code});
    case Reply::kServiceGone:
      Dlt::trace(incidents::Method_call_request_err{context.identity(), context.id, -1, "service not available"});
      return std::make_exception_ptr(Service_not_available_exception{});
    default:
      Dlt::trace(incidents::Method_call_response_invalid_code{context.identity(), context.id, code, "unknown return code"});
      return std::make_exception_ptr(Transport_exception{code});
  }
}

void complete(const Method_context& context, Answer& answer, const Reply& reply) {
  try {
    if (reply.code != 0) {
      answer.set_exception(handle_error(context, reply.code, reply.payload));
      return;
    }
    Dlt::trace(incidents::Method_call_response_rx{context.identity(), context.id, 0, "answer"});
    answer.set_value_from(reply.payload);
  } catch (const std::exception& e) {
    fail_undecodable(context, answer, e.what());
  } catch (...) {  // an application's own exception source may throw anything
    fail_undecodable(context, answer, "unknown exception");
  }
}

}  // namespace detail

Method_impl_base::Method_impl_base(Method_context context, std::shared_ptr<Client_port> port)
    : context_{std::make_shared<const Method_context>(std::move(context))}, port_{std::move(port)} {}

Method_impl_base::~Method_impl_base() {
  for (const auto& cleanup : cleanups_) {
    if (!cleanup.is_over()) Dlt::trace(incidents::Method_call_request_cancelled{context_->identity(), context_->id});
  }
}

void Method_impl_base::throw_if_not_available() const {
  if (!port_->is_available(context_->method)) throw Service_not_available_exception{};
}

void Method_impl_base::send(Shared_payload request, const std::shared_ptr<Answer>& answer) {
  auto call = port_->call(context_->method, std::move(request),
                          [context = context_, answer](const Reply& reply) { detail::complete(*context, *answer, reply); });
  add_cleanup(answer, std::move(call));
}

void Method_impl_base::add_cleanup(std::weak_ptr<Answer> promise, std::unique_ptr<Pending_call> call) {
  const std::lock_guard lock{mutex_};
  std::erase_if(cleanups_, [](const Cleanup& cleanup) { return cleanup.is_over(); });
  cleanups_.push_back({std::move(promise), std::move(call)});
}

}  // namespace xr::com::cpp_binding::proxy
