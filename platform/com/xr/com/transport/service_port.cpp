#include "xr/com/transport/service_port.h"

#include <algorithm>
#include <exception>

#include "xr/com/exceptions.h"
#include "xr/com/wire/sockets.h"

namespace xr::com::transport {
namespace {

wire::Socket_handle open_socket(const wire::Deployment& deployment) {
  auto socket = wire::open_message_socket(deployment.unicast);
  if (socket) return std::move(*socket);
  cpp_binding::logger().LogError() << "Cannot open a socket of " << deployment.unicast.to_string() << ": " << socket.error().message();
  throw Transport_exception{cpp_binding::proxy::Reply::kSendRefused};
}

bool is_answer(wire::Message_type type) {
  return type == wire::Message_type::response || type == wire::Message_type::error;
}

}  // namespace

Service_port::Service_port(std::shared_ptr<void> runtime, Port_environment environment, const wire::Service_deployment& service,
                           Instance_key key, const Offer& offer)
    : runtime_{std::move(runtime)},
      environment_{environment},
      service_{service},
      key_{key},
      instance_{instance_text(key.instance)},
      sinks_{service.fields.size()},
      reach_{.udp = offer.udp},
      tcp_{environment.io,
           environment.deployment.unicast,
           environment.warnings,
           {.up = [this](const wire::Endpoint& local) { tcp_up(local); },
            .down = [this] { tcp_down(); },
            .message = [this](const wire::Message& message) { received(message, nullptr); }}},
      subscriptions_{service.fields.size(), [this](std::uint16_t field, Subscription_book::State state) { state_changed(field, state); }},
      renewal_{environment.io, [this] { renew(); }},
      call_expiry_{environment.io, [this] { expire_calls(); }} {
  auto socket = open_socket(environment.deployment);
  udp_local_ = wire::local_endpoint(socket).value();
  udp_ = std::make_shared<Datagram_reader>(
      environment.io, std::move(socket), environment.buffer,
      [this](wire::Bytes datagram, const wire::Endpoint& sender) { datagram_received(datagram, sender); });
}

void Service_port::resume(const Offer* offer) {
  udp_->start();
  for (const auto& [endpoint, reader] : groups_) reader->start();
  tcp_.resume();
  watch_calls();
  if (offer != nullptr) {
    settle(*offer);
  } else {
    lost();
  }
}

void Service_port::end_subscriptions() {
  for (std::uint16_t field = 0; field < static_cast<std::uint16_t>(service_.fields.size()); ++field) end_subscription(field);
}

void Service_port::stop() {
  stopped_ = true;
  lost();
  udp_->stop();
  call_expiry_.cancel();
}

void Service_port::offered(const Offer& offer) {
  subscriptions_.retry_refused();
  settle(offer);
}

/// Does what this offer asks for and is not done yet. What cannot fail comes first, so that a repetition does the rest.
void Service_port::settle(const Offer& offer) {
  const auto before = std::exchange(offer_, offer);
  {
    const std::lock_guard lock{mutex_};
    reach_.udp = offer.udp;
  }
  if (!before || before->udp != offer.udp) {
    const auto over_udp = [this](std::uint16_t field) { return !service_.fields[field].reliable; };
    subscriptions_.drop(over_udp);
    subscriptions_.restart(over_udp);
  }
  if (!renewal_.is_set()) wait_renewal();
  if (!before || before->tcp != offer.tcp || (offer.tcp && offer.tcp != tcp_.remote())) take_tcp(offer.tcp);
  send_due();
  if (before && before->udp != offer.udp) end_gets(Reply::kConnectionBroken, false);
}

void Service_port::lost() {
  offer_.reset();
  {
    const std::lock_guard lock{mutex_};
    reach_ = {};
  }
  subscriptions_.drop([](std::uint16_t) { return true; });
  for (const auto& [endpoint, reader] : groups_) reader->stop();
  groups_.clear();
  renewal_.cancel();
  end_gets(Reply::kServiceGone);  // before the connection's end would tell them another reason
  tcp_.close();
}

/// A sink that throws must not leave the book half changed.
void Service_port::state_changed(std::uint16_t field, Subscription_book::State state) {
  try {
    sinks_.for_each(field, [&](Event_sink& sink) { sink.event_state_changed(state); });
  } catch (const std::exception& e) {
    cpp_binding::logger().LogError() << "A change of the subscription of " << service_.name << ' ' << service_.fields[field].name
                                     << " was not taken: " << e;
  }
}

void Service_port::take_tcp(const std::optional<wire::Endpoint>& endpoint) {
  if (!service_.has_reliable_fields()) return;
  if (endpoint) return tcp_.open(*endpoint);
  tcp_.close();
  environment_.warnings.warn(Fault::bad_entry, [&](auto& line) {
    line << "The offer of " << service_.name << ' ' << instance_.value() << " has no TCP endpoint: its reliable fields cannot be used";
  });
}

void Service_port::tcp_up(const wire::Endpoint& local) {
  tcp_local_ = local;
  {
    const std::lock_guard lock{mutex_};
    reach_.tcp = true;
  }
  subscriptions_.restart([this](std::uint16_t field) { return service_.fields[field].reliable; });
  send_due();
}

void Service_port::tcp_down() {
  tcp_local_.reset();
  {
    const std::lock_guard lock{mutex_};
    reach_.tcp = false;
  }
  subscriptions_.drop([this](std::uint16_t field) { return service_.fields[field].reliable; });
  end_gets(Reply::kConnectionBroken, true);
}

void Service_port::datagram_received(wire::Bytes datagram, const wire::Endpoint& sender) {
  if (datagram.empty()) return warn(Fault::malformed_datagram, "it is empty", &sender);
  while (!datagram.empty()) {
    const auto front = datagram;
    if (const auto message = wire::take_message(datagram)) {
      received(*message, &sender);
    } else if (const auto framed = wire::decode_header(front); framed && is_answer(framed->header.type)) {
      answered({framed->header, {}}, &sender, false);  // cut off, but it is known whose answer it was
    } else {
      warn(Fault::malformed_datagram, message.error().message().c_str(), &sender);
    }
  }
}

void Service_port::received(const wire::Message& message, const wire::Endpoint* sender) {
  const auto& header = message.header;
  if (wire::is_segment(header.type)) return warn(Fault::segment, "it is a segment of a bigger one", sender);
  if (header.service != key_.service) return warn(Fault::unusable_message, "it is of another service", sender);
  if (is_answer(header.type)) return answered(message, sender, true);
  if (header.type != wire::Message_type::notification) return warn(Fault::unusable_message, "its type is not expected", sender);
  if (!offer_) return;  // a late one
  if (sender != nullptr && (!offer_->udp || sender->address != offer_->udp->address)) {
    return warn(Fault::foreign_datagram, "the service is not offered there", sender);
  }
  notified(message);
}

void Service_port::notified(const wire::Message& message) {
  const auto& header = message.header;
  const auto* sender = offer_->udp ? &*offer_->udp : nullptr;
  if (header.protocol_version != wire::kProtocolVersion || header.interface_version != service_.major_version) {
    return warn(Fault::unusable_message, "it is of another version", sender);
  }
  const auto found =
      std::find_if(service_.fields.begin(), service_.fields.end(), [&](const auto& field) { return field.event == header.method; });
  if (found == service_.fields.end()) return warn(Fault::unusable_message, "no event has its id", sender);
  payload_.assign(message.payload.begin(), message.payload.end());
  const auto field = static_cast<std::uint16_t>(found - service_.fields.begin());
  sinks_.for_each(field, [&](Event_sink& sink) { sink.event_updated(header.code, payload_); });
}

void Service_port::warn(Fault fault, const char* reason, const wire::Endpoint* sender) {
  environment_.warnings.warn(fault, [&](auto& line) {
    line << "Dropped a message to the port of " << service_.name << ' ' << instance_.value();
    if (sender != nullptr) line << " from " << to_text(*sender);
    line << ": " << reason;
  });
}

}  // namespace xr::com::transport
