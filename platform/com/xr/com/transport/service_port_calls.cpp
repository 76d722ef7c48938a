#include <boost/asio/post.hpp>

#include "xr/com/exceptions.h"
#include "xr/com/transport/service_port.h"
#include "xr/com/wire/sockets.h"

namespace xr::com::transport {
namespace {

using cpp_binding::proxy::Method_kind;

/// Tells this client's requests from those of other clients at one endpoint; there is one client here.
constexpr std::uint16_t kClient = 0x0001;

class Open_call final : public cpp_binding::proxy::Pending_call {
 public:
  Open_call(std::shared_ptr<Service_port> port, std::shared_ptr<Call> call) : port_{std::move(port)}, call_{std::move(call)} {}
  ~Open_call() override { port_->abandon(session, call_.get()); }

  bool is_ready() const override { return call_->ready; }

  std::uint16_t session = 0;  ///< none yet

 private:
  const std::shared_ptr<Service_port> port_;
  const std::shared_ptr<Call> call_;
};

}  // namespace

const wire::Field_deployment& Service_port::field_of(std::uint16_t field) const {
  if (field >= service_.fields.size()) throw Invalid_argument_exception{"The service has no field with this index"};
  return service_.fields[field];
}

std::uint16_t Service_port::method_of(Method_ref method) const {
  const auto& field = field_of(method.field);
  if (method.kind == Method_kind::get) return field.get;
  if (!field.set) throw Invalid_argument_exception{"The field cannot be set"};
  return *field.set;
}

bool Service_port::is_available(Method_ref method) const {
  const bool reliable = field_of(method.field).reliable;
  const std::lock_guard lock{mutex_};
  return is_available_locked(reliable);
}

std::unique_ptr<cpp_binding::proxy::Pending_call> Service_port::call(Method_ref method, cpp_binding::proxy::Shared_payload request,
                                                                     std::function<void(Reply)> completion) {
  const auto call = std::make_shared<Call>();
  call->method = method_of(method);
  call->kind = method.kind;
  call->reliable = field_of(method.field).reliable;
  call->completion = std::move(completion);
  auto handle = std::make_unique<Open_call>(shared_from_this(), call);  // from here on an exception takes the call off the table
  {
    const std::lock_guard lock{mutex_};
    if (!is_available_locked(call->reliable)) throw Service_not_available_exception{};
    if (!call->reliable) call->destination = *reach_.udp;
    call->deadline = Call::Time::clock::now() + Call_table::kLifetime;
    if (!watching_calls_) {
      boost::asio::post(environment_.io, [weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->watch_calls();  // which waits for the lock
      });
      watching_calls_ = true;
    }
    const auto added = calls_.add(call);
    if (!added) throw Transport_exception{Reply::kSendRefused};
    handle->session = *added;
  }
  // The entry is there before the request goes out: the answer may overtake this thread.
  if (send(*call, handle->session, *request)) {
    const std::lock_guard lock{mutex_};
    if (calls_.remove(handle->session, call.get())) throw Transport_exception{Reply::kSendRefused};
    // Else the connection's end has told the completion already.
  }
  return handle;
}

boost::system::error_code Service_port::send(const Call& call, std::uint16_t session, const std::vector<unsigned char>& payload) {
  if (payload.size() > wire::kMaximumMessage - wire::kHeaderSize) return wire::Error::too_big;
  const auto front = wire::encode_header({.service = key_.service,
                                          .method = call.method,
                                          .client = kClient,
                                          .session = session,
                                          .interface_version = service_.major_version,
                                          .type = wire::Message_type::request},
                                         payload.size());
  return call.reliable ? tcp_.send(front, payload) : wire::send_datagram(udp_->descriptor(), call.destination, front, payload);
}

void Service_port::abandon(std::uint16_t session, const Call* call) {
  const std::lock_guard lock{mutex_};
  calls_.remove(session, call);  // the handle still holds the call, so nothing foreign is destroyed under the lock
}

/// `whole`: all bytes that the header promises were there.
void Service_port::answered(const wire::Message& message, const wire::Endpoint* sender, bool whole) {
  const auto& header = message.header;
  std::shared_ptr<Call> call;
  {
    const std::lock_guard lock{mutex_};
    call = calls_.find(header.session, header.method);
    const bool from_there = call && (sender == nullptr ? call->reliable : !call->reliable && sender->address == call->destination.address);
    if (!from_there || header.client != kClient || header.service != key_.service) return;  // a late one, or not to us
    calls_.remove(header.session, call.get());
  }
  const bool usable = whole && header.protocol_version == wire::kProtocolVersion && header.interface_version == service_.major_version &&
                      (header.type == wire::Message_type::response || header.code != 0);
  if (!usable) warn(Fault::unusable_message, "a malformed answer", sender);
  call->complete({usable ? header.code : Reply::kMalformed, {message.payload.begin(), message.payload.end()}});
}

void Service_port::end_gets(unsigned char code, std::optional<bool> reliable) {
  Call_table::Calls ended;
  {
    const std::lock_guard lock{mutex_};
    ended = calls_.take_gets(reliable);
  }
  for (const auto& call : ended) call->complete({code, {}});
}

void Service_port::expire_calls() {
  Call_table::Calls expired;
  {
    const std::lock_guard lock{mutex_};
    expired = calls_.take_expired(Call::Time::clock::now());
  }
  for (const auto& call : expired) call->completion = nullptr;  // its handle may live on, what the completion holds must not
  watch_calls();
}

void Service_port::watch_calls() {
  std::optional<Call::Time> next;
  {
    const std::lock_guard lock{mutex_};
    next = calls_.next_deadline();
    watching_calls_ = next.has_value();
  }
  if (!next || stopped_) return;
  call_expiry_.set(*next);
}

}  // namespace xr::com::transport
