#include "binding/proxy/method_impl_base.h"

#include "binding/incidents/method_incidents.h"
#include "binding/incidents/target.h"
#include "xr/com/exceptions.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace xr::com::cpp_binding::proxy {
namespace {

using com::log::target::Dlt;
namespace incidents = log::incidents;

constexpr int kUndecodable = 138;

/// Of the calls that a silent vehicle left unanswered, so many are told at the end: it may have been silent for months.
constexpr std::size_t kMostCancelled = 100;

/// A future's share in its call.
class Future_share {
 public:
  explicit Future_share(std::shared_ptr<Open_call> call) : call_{std::move(call)} {}
  ~Future_share() { call_->give_up(); }
  Future_share(const Future_share&) = delete;
  Future_share& operator=(const Future_share&) = delete;

 private:
  const std::shared_ptr<Open_call> call_;
};

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
    if (!cleanup.call->is_ready()) ++neverReady_;
    cleanup.call->give_up();
  }
  for (auto left = std::min(neverReady_, kMostCancelled); left != 0; --left) {
    Dlt::trace(incidents::Method_call_request_cancelled{context_->identity(), context_->id});
  }
}

void Method_impl_base::throw_if_not_available() const {
  if (!port_->is_available(context_->method)) throw Service_not_available_exception{};
}

std::shared_ptr<const void> Method_impl_base::send(Shared_payload request, const std::shared_ptr<Answer>& answer) {
  const auto call = std::make_shared<Open_call>();
  auto share = std::make_shared<const Future_share>(call);
  call->set(port_->call(context_->method, std::move(request),
                        [context = context_, answer](const Reply& reply) { detail::complete(*context, *answer, reply); }));
  add_cleanup(answer, call);
  return share;
}

void Method_impl_base::add_cleanup(std::weak_ptr<Answer> promise, std::shared_ptr<Open_call> call) {
  const std::lock_guard lock{mutex_};
  remove_ended_locked();
  cleanups_.push_back({std::move(promise), std::move(call)});
}

void Method_impl_base::remove_ended_locked() {
  std::erase_if(cleanups_, [this](const Cleanup& cleanup) {
    const bool gone = cleanup.promise.expired();  // before the next question: an answer makes a call ready, then drops the promise
    const bool ready = cleanup.call->is_ready();
    if (gone && !ready) ++neverReady_;
    return gone || ready;
  });
}

void Open_call::set(std::unique_ptr<Pending_call> call) {
  const std::lock_guard lock{mutex_};
  call_ = std::move(call);
}

void Open_call::give_up() noexcept {
  std::unique_ptr<Pending_call> call;  // ends after the unlock, since that asks the transport
  const std::lock_guard lock{mutex_};
  wasReady_ = wasReady_ || (call_ && call_->is_ready());
  call.swap(call_);
}

bool Open_call::is_ready() const {
  const std::lock_guard lock{mutex_};
  return wasReady_ || (call_ && call_->is_ready());
}

}  // namespace xr::com::cpp_binding::proxy
