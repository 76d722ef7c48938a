#include "scripted_vehicle.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cstdlib>
#include <utility>

#include "tests/support/wait_for.h"
#include "xr/com/wire/sockets.h"

namespace com_test {
namespace {

using namespace xr::com::wire;

constexpr int kPatienceMs = static_cast<int>(test_support::kPatience.count());

sockaddr_in native(const Endpoint& endpoint) {
  sockaddr_in out{};
  out.sin_family = AF_INET;
  out.sin_port = htons(endpoint.port);
  out.sin_addr.s_addr = htonl(endpoint.address.to_uint());
  return out;
}

/// Index of the first socket that can be read, or -1.
template <std::size_t N>
int wait_readable(const std::array<int, N>& descriptors, int milliseconds = kPatienceMs) {
  std::array<pollfd, N> set{};
  for (std::size_t i = 0; i < N; ++i) set[i] = {descriptors[i], POLLIN, 0};
  if (::poll(set.data(), N, milliseconds) <= 0) return -1;
  for (std::size_t i = 0; i < N; ++i) {
    if (set[i].revents != 0) return static_cast<int>(i);
  }
  return -1;
}

std::pair<Bytes, Endpoint> receive(int descriptor) {
  Bytes bytes(kMaximumMessage);
  sockaddr_in from{};
  socklen_t size = sizeof from;
  const auto n = ::recvfrom(descriptor, bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
  bytes.resize(n < 0 ? 0 : static_cast<std::size_t>(n));
  return {std::move(bytes), {boost::asio::ip::address_v4{ntohl(from.sin_addr.s_addr)}, ntohs(from.sin_port), Protocol::udp}};
}

}  // namespace

Scripted_vehicle::Scripted_vehicle(const std::string& address, const Deployment& deployment, std::uint16_t service, std::uint16_t instance)
    : address_{boost::asio::ip::make_address_v4(address)},
      deployment_{deployment},
      service_{*deployment_.find_service(service)},
      instance_{instance},
      discovery_{open_discovery_socket(address_, deployment.discovery.port).value()},
      group_{open_group_socket(deployment.discovery.multicast, deployment.discovery.port, address_).value()} {
  open_ports();
}

void Scripted_vehicle::open_ports() {
  udp_ = open_message_socket(address_).value();
  udp_endpoint_ = local_endpoint(udp_).value();
  connection_ = {};
  stream_.clear();
  acceptor_ = Socket_handle{::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  const auto any = native({address_, 0, Protocol::tcp});
  if (::bind(acceptor_.get(), reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0 || ::listen(acceptor_.get(), 8) != 0) std::abort();
  tcp_endpoint_ = local_endpoint(acceptor_).value();
  tcp_endpoint_.protocol = Protocol::tcp;
}

void Scripted_vehicle::reboot() {
  sessions_ = {};
  open_ports();
}

void Scripted_vehicle::move() {
  open_ports();
}

Sd_entry Scripted_vehicle::offer_entry(std::uint32_t ttl) const {
  return {.type = Entry_type::offer,
          .service = service_.service_id,
          .instance = instance_,
          .major = 1,
          .ttl = ttl,
          .options = {{Option_kind::endpoint, udp_endpoint_}, {Option_kind::endpoint, tcp_endpoint_}}};
}

void Scripted_vehicle::offer(std::uint32_t ttl) {
  send_sd({offer_entry(ttl)});
}

void Scripted_vehicle::withdraw() {
  send_sd({offer_entry(0)});
}

void Scripted_vehicle::offer_to(const Endpoint& peer) {
  send_sd_to(peer, offer_entry(3));
}

void Scripted_vehicle::send_sd_to(const Endpoint& peer, const Sd_entry& entry) {
  const auto session = sessions_.next_unicast(peer);
  xr::com::wire::send_datagram(discovery_.get(), peer, encode_sd({.session = session.id, .reboot = session.reboot, .entries = {entry}}));
}

void Scripted_vehicle::send_sd(std::vector<Sd_entry> entries) {
  const auto session = sessions_.next_multicast();
  send_raw_sd(encode_sd({.session = session.id, .reboot = session.reboot, .entries = std::move(entries)}));
}

void Scripted_vehicle::send_raw_sd(const Bytes& datagram) {
  xr::com::wire::send_datagram(discovery_.get(), {deployment_.discovery.multicast, deployment_.discovery.port, Protocol::udp}, datagram);
}

bool Scripted_vehicle::read_discovery(int milliseconds) {
  const std::array sockets{discovery_.get(), group_.get()};
  const int ready = wait_readable(sockets, milliseconds);
  if (ready < 0) return false;
  const auto [datagram, from] = receive(sockets[static_cast<std::size_t>(ready)]);
  if (from.address == address_) return true;
  const auto message = decode_sd(datagram);
  if (!message) return true;
  client_ = from;
  entries_.insert(entries_.end(), message->entries.begin(), message->entries.end());
  return true;
}

Sd_entry Scripted_vehicle::wait_entry(const std::function<bool(const Sd_entry&)>& fits) {
  do {
    while (!entries_.empty()) {
      const auto entry = entries_.front();
      entries_.pop_front();
      if (fits(entry)) return entry;
    }
  } while (read_discovery(kPatienceMs));
  return {};
}

Sd_entry Scripted_vehicle::wait_subscribe(const std::string& name) {
  return wait_entry([&](const Sd_entry& entry) {
    return entry.type == Entry_type::subscribe && entry.service == service_.service_id && entry.eventgroup == field(name).eventgroup &&
           entry.ttl != 0;
  });
}

std::vector<Sd_entry> Scripted_vehicle::wait_subscriptions() {
  do {
    std::erase_if(entries_, [](const Sd_entry& entry) { return entry.type != Entry_type::subscribe; });
    if (!entries_.empty()) {
      const auto taken = std::exchange(entries_, {});
      return {taken.begin(), taken.end()};
    }
  } while (read_discovery(kPatienceMs));
  return {};
}

void Scripted_vehicle::answer(const Sd_entry& subscribe, std::uint32_t ttl, std::vector<Option> options) {
  answer_to(client_, subscribe, ttl, std::move(options));
}

void Scripted_vehicle::answer_to(const Endpoint& peer, const Sd_entry& subscribe, std::uint32_t ttl, std::vector<Option> options) {
  auto ack = subscribe;
  ack.type = Entry_type::subscribe_ack;
  ack.ttl = ttl;
  ack.options = std::move(options);
  send_sd_to(peer, ack);
}

Endpoint Scripted_vehicle::accept_subscribe(const std::string& name) {
  const auto entry = wait_subscribe(name);
  if (entry.options.empty()) return {};
  answer(entry, entry.ttl);
  return entry.options.front().endpoint;
}

Bytes Scripted_vehicle::notification(const std::string& name, const Bytes& payload) const {
  return encode_message({.service = service_.service_id,
                         .method = field(name).event,
                         .session = 1,
                         .interface_version = 1,
                         .type = Message_type::notification},
                        payload);
}

void Scripted_vehicle::send_datagram(const Endpoint& to, const Bytes& datagram) {
  xr::com::wire::send_datagram(udp_.get(), to, datagram);
}

bool Scripted_vehicle::accept() {
  stream_.clear();
  if (wait_readable(std::array{acceptor_.get()}) < 0) return false;
  connection_ = Socket_handle{::accept4(acceptor_.get(), nullptr, nullptr, SOCK_CLOEXEC)};
  return connection_.get() >= 0;
}

void Scripted_vehicle::send_stream(const Bytes& bytes) {
  ::send(connection_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::optional<Received> Scripted_vehicle::next_request(int milliseconds) {
  for (;;) {
    if (const auto message = stream_.next()) return Received{message->header, {message->payload.begin(), message->payload.end()}, {}};
    const std::array sockets{udp_.get(), connection_.get()};
    const int ready = wait_readable(sockets, milliseconds);
    if (ready < 0) return std::nullopt;
    if (ready == 0) {
      const auto [datagram, from] = receive(udp_.get());
      xr::com::wire::Bytes rest{datagram};
      if (const auto message = take_message(rest))
        return Received{message->header, {message->payload.begin(), message->payload.end()}, from};
      continue;
    }
    const auto space = stream_.space();
    const auto n = ::recv(connection_.get(), space.data(), space.size(), 0);
    if (n <= 0) {
      connection_ = {};
      return std::nullopt;
    }
    stream_.filled(static_cast<std::size_t>(n));
  }
}

void Scripted_vehicle::reply(const Received& request, const Bytes& payload, Message_type type, std::uint8_t code) {
  auto header = request.header;
  header.type = type;
  header.code = code;
  send_answer(request, encode_message(header, payload));
}

void Scripted_vehicle::serve(const std::vector<Option>& options) {
  if (wait_readable(std::array{acceptor_.get()}, 0) >= 0) accept();
  while (read_discovery(0)) {
  }
  for (; !entries_.empty(); entries_.pop_front()) {
    const auto& entry = entries_.front();
    if (entry.type == Entry_type::subscribe && entry.ttl != 0) answer(entry, entry.ttl, options);
  }
  while (const auto request = next_request(0)) reply(*request, request->payload);
}

void Scripted_vehicle::send_answer(const Received& request, const Bytes& message) {
  if (request.from) {
    send_datagram(*request.from, message);
  } else {
    send_stream(message);
  }
}

}  // namespace com_test
