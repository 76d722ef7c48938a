#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "fuzz/bridge.h"
#include "fuzz/bridges.h"
#include "tests/support/raw_socket.h"
#include "tests/system/rows.h"
#include "tools/vehicle/values/bad_input.h"
#include "tools/vehicle/values/field_codec.h"
#include "xr/com/wire/deployment.h"
#include "xr/com/wire/sd_message.h"

// The first inputs of every target, out of what the tests play, what the vehicle says and what is shipped: `fuzz_seeds FOLDER`.
namespace {

namespace wire = xr::com::wire;
using nlohmann::json;
using Bytes = vehicle::Bytes;

const std::filesystem::path kSource = CMC_SOURCE_DIR;

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, {}};
}

class Seeds {
 public:
  explicit Seeds(std::filesystem::path folder) : folder_{std::move(folder)} {}

  void Add(const std::string& target, std::string_view bytes) {
    const auto place = folder_ / target;
    std::filesystem::create_directories(place);
    std::ofstream{place / ("seed" + std::to_string(count_[target]++)), std::ios::binary} << bytes;
  }
  void Add(const std::string& target, unsigned char first, const Bytes& bytes) {
    Add(target, std::string{static_cast<char>(first)}.append(bytes.begin(), bytes.end()));
  }

 private:
  const std::filesystem::path folder_;
  std::map<std::string, unsigned> count_;
};

// What clients send

constexpr unsigned char kGuarded = 1;  // the choices in the first byte of the targets http and websocket
constexpr unsigned char kMayWrite = 1;
constexpr unsigned char kLines = 2;

/// The place holders of the elements below a path.
std::vector<std::string> PlaceHolders(const std::vector<std::string>& paths, const std::string& resource) {
  std::vector<std::string> places;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const auto number = i == '@' ? i + paths.size() : i;
    if (paths[i].starts_with(resource) && number < 256) places.push_back(std::string{"@"} + static_cast<char>(number));
  }
  return places;
}

void AddRequest(Seeds& seeds, const std::string& line, const std::string& fields, const std::string& body = "") {
  const auto length = body.empty() ? "" : "Content-Length: " + std::to_string(body.size()) + "\r\n";
  const auto request = [&](const std::string& own) { return line + " HTTP/1.1\r\n" + own + fields + length + "\r\n" + body; };
  seeds.Add("http", std::string(1, '\0') + request("Host: localhost\r\n"));
  seeds.Add("http", std::string(1, kGuarded) + request("Host: car\r\nAuthorization: Bearer w\r\n"));
}

void AddMessage(Seeds& seeds, const json& message) {
  const auto text = message.dump();
  seeds.Add("json", text);
  seeds.Add("websocket", std::string(1, static_cast<char>(kLines | kMayWrite)) + text);
}

void AddWrites(Seeds& seeds, const std::vector<std::string>& paths) {
  for (const auto& table : system_test::WriteTables()) {
    const auto places = PlaceHolders(paths, table.resource);
    std::size_t turn = 0;
    for (const auto& row : table.rows) {
      seeds.Add("json", row.body);
      if (places.empty()) continue;
      const auto& place = places[turn++ % places.size()];
      AddRequest(seeds, "POST " + place, "Content-Type: application/json\r\n", row.body);
      seeds.Add("websocket", std::string(1, static_cast<char>(kLines | kMayWrite)) + R"({"action":"set","path":")" + place +
                                 R"(","requestId":"1","value":)" + row.body + "}");
    }
  }
}

void AddReads(Seeds& seeds, const std::vector<std::string>& paths) {
  std::vector<std::string> targets{"/",
                                   "/?identity",
                                   "/ChargingManagementCore",
                                   "/ChargingManagementCore?specification",
                                   "/FactoryReset/resets",
                                   "@A",
                                   "*",
                                   "/ChargingManagementCore/views?type=popup&fields=type,content",
                                   "http://car/nowhere?a=%zz",
                                   "/index.html",
                                   "/ChargingManagementCore/valueControls?fields=type&type=bidirectionalChargingModesMinSoc"};
  for (const auto& path : paths) {
    const auto resource = path.substr(0, path.rfind('/'));
    if (targets.back() != resource) targets.push_back(resource);
  }
  for (const auto& target : targets) {
    AddRequest(seeds, "GET " + target, "");
    AddMessage(seeds, {{"action", "get"}, {"path", target}, {"requestId", 1}});
    AddMessage(seeds, {{"action", "subscribe"}, {"path", target}, {"requestId", 1.5}});
  }
  AddMessage(seeds, {{"action", "unsubscribe"}, {"subscriptionId", "1"}, {"requestId", "x"}});
  for (const std::string method : {"HEAD", "PUT", "DELETE", "BREW", "OPTIONS"})
    AddRequest(seeds, method + " /ChargingManagementCore/views", "");
  AddRequest(seeds, "OPTIONS @B", "Origin: http://app\r\nAccess-Control-Request-Method: POST\r\n");
  AddRequest(seeds, "GET /", "Accept: text/html, application/json;q=0.5\r\nIf-None-Match: \"a\", W/\"b\"\r\nConnection: close\r\n");
  AddRequest(seeds, "GET /",
             "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n"
             "Sec-WebSocket-Protocol: bearer.w\r\n");
  AddRequest(seeds, "POST @C", "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n2;a=b\r\n{}\r\n0\r\nA: b\r\n");
  AddRequest(seeds, "POST @C", "Content-Type: application/json; charset=utf-8\r\nExpect: 100-continue\r\n", "{}");
}

/// A socket's whole life: what follows hangs on what came before.
void AddConversation(Seeds& seeds) {
  const json subscribe{{"action", "subscribe"}, {"path", "/ChargingManagementCore/views"}, {"requestId", 1}};
  const json unsubscribe{{"action", "unsubscribe"}, {"subscriptionId", "1"}, {"requestId", 2}};
  const json write{{"action", "set"}, {"path", "@A"}, {"value", {{"currentValue", 80}}}, {"requestId", 3}};
  const json filtered{{"action", "subscribe"}, {"path", "/ChargingManagementCore/views?content=bcamInformationScreen"}, {"requestId", 4}};
  for (const auto& messages : {std::vector{subscribe, unsubscribe, unsubscribe},
                               {subscribe, filtered, write, subscribe, unsubscribe},
                               {subscribe, subscribe, subscribe, subscribe, filtered}}) {
    std::string lines(1, static_cast<char>(kLines | kMayWrite));
    for (const auto& message : messages) lines += message.dump() + '\n';
    lines.pop_back();
    seeds.Add("websocket", lines);
  }
}

void AddFrames(Seeds& seeds) {
  using test_support::ClientFrame;
  const std::string subscribe = R"({"action":"subscribe","path":"/ChargingManagementCore/views","requestId":1})";
  const std::string set = R"({"action":"set","path":"/ChargingManagementCore/views","requestId":"1","value":{}})";
  for (const auto& frames :
       {ClientFrame(0x81, subscribe),
        ClientFrame(0x01, subscribe.substr(0, 20)) + ClientFrame(0x89, "ping") + ClientFrame(0x80, subscribe.substr(20)),
        ClientFrame(0x81, set) + ClientFrame(0x8A, "pong") + ClientFrame(0x88, "\x03\xe8 bye"), ClientFrame(0x82, "binary"),
        ClientFrame(0x81, std::string(200, ' ') + subscribe), std::string{"\x81\x02{}"}, ClientFrame(0x88, "")}) {
    for (const int piece : {0, 1, 20}) seeds.Add("websocket", std::string(1, static_cast<char>(kMayWrite | piece * 4)) + frames);
  }
}

// What the vehicle says

void AddPayload(Seeds& seeds, const wire::Deployment& deployment, std::string_view field, const Bytes& payload) {
  const auto codecs = vehicle::FieldCodecs();
  for (std::size_t i = 0; i < codecs.size(); ++i) {
    if (codecs[i].field == field) seeds.Add("payload", static_cast<unsigned char>(i), payload);
  }
  for (const auto& service : deployment.services) {
    const auto* const found = service.find_field(field);
    if (!found) continue;
    const auto index = static_cast<unsigned char>(found - service.fields.data());
    wire::Header header{.service = service.service_id, .method = found->event, .interface_version = service.major_version};
    header.type = wire::Message_type::notification;
    auto both = wire::encode_message(header, payload);
    header = {.service = service.service_id, .method = found->get, .client = 1, .session = 1, .interface_version = service.major_version};
    header.type = wire::Message_type::response;
    const auto answer = wire::encode_message(header, payload);
    seeds.Add("datagram", index, answer);
    both.insert(both.end(), answer.begin(), answer.end());
    seeds.Add("datagram", index, both);
    seeds.Add("stream", 4, both);
  }
}

void AddPayloads(Seeds& seeds, const wire::Deployment& deployment) {
  const auto add = [&](std::string_view field, const json& records) {
    try {
      AddPayload(seeds, deployment, field, vehicle::CodecOf(field, {}).fromJson(records, {}));
    } catch (const vehicle::BadInput&) {  // a scenario that sends what is none
    }
  };
  for (const auto& row : system_test::ResourceRows()) add(row.field, row.records);
  for (const auto& entry : std::filesystem::directory_iterator{kSource / "tools/vehicle/scenarios"}) {
    const auto values = json::parse(ReadFile(entry.path())).value("values", json::object());
    for (const auto& [field, records] : values.items()) add(field, records);
  }
  for (const auto& codec : vehicle::FieldCodecs()) add(codec.field, json::array({json::object()}));
  for (const auto& table : system_test::WriteTables()) {
    for (const auto& row : table.rows) {
      if (!row.sent.empty()) AddPayload(seeds, deployment, table.field, vehicle::BytesFromHex(row.sent, {}));
    }
  }
}

void AddDiscovery(Seeds& seeds, const wire::Deployment& deployment) {
  const auto loopback = boost::asio::ip::address_v4::loopback();
  const wire::Option udp{wire::Option_kind::endpoint, {loopback, 30501, wire::Protocol::udp}};
  const wire::Option tcp{wire::Option_kind::endpoint, {loopback, 30502, wire::Protocol::tcp}};
  const wire::Option group{wire::Option_kind::multicast, {deployment.discovery.multicast, 30503, wire::Protocol::udp}};
  std::string life;
  std::uint16_t session = 0;
  const auto say = [&](std::vector<wire::Sd_entry> entries) {
    const auto datagram = wire::encode_sd({.session = ++session, .reboot = true, .unicast = true, .entries = std::move(entries)});
    const auto one = std::string{'\0', static_cast<char>(datagram.size())}.append(datagram.begin(), datagram.end());
    life += one;
    seeds.Add("discovery", one);
  };
  for (const auto& service : deployment.services) {
    wire::Sd_entry offer{.type = wire::Entry_type::offer,
                         .service = service.service_id,
                         .instance = service.instance_id,
                         .major = service.major_version,
                         .ttl = 3,
                         .minor = service.minor_version,
                         .options = {udp, tcp}};
    wire::Sd_entry ack{.type = wire::Entry_type::subscribe_ack,
                       .service = service.service_id,
                       .instance = service.instance_id,
                       .major = service.major_version,
                       .ttl = 3,
                       .eventgroup = service.fields.front().eventgroup,
                       .options = {group}};
    say({offer});
    say({ack, offer});
    ack.ttl = 0;
    say({ack});
    offer.options = {udp};
    say({offer});
    offer.ttl = 0;
    say({offer});
    say({{.type = wire::Entry_type::find,
          .service = service.service_id,
          .instance = wire::kAnyInstance,
          .major = 1,
          .ttl = 3,
          .minor = wire::kAnyMinor}});
  }
  seeds.Add("discovery", life);
}

// What is shipped

void AddFiles(Seeds& seeds) {
  seeds.Add("config", ReadFile(kSource / "config/charging_management_core_conf.json"));
  seeds.Add("config", R"({"listen":[{"address":"::1","port":0}],"requestThreads":3,"limits":{"connections":1,"bodyBytes":1,"headerBytes":64,
    "idleSeconds":1,"requestSeconds":1,"queuedRequests":0,"pendingBytesPerClient":1,"subscriptionsPerClient":0},"allowedOrigins":["http://app"],
    "allowedHosts":["car","*"],"tls":{"certificate":"/c","key":"/k"},"tokens":[{"token":"w","write":true},{"token":"r=="}],
    "registry":{"url":"http://[::1]:80/a/"},"documentRoot":"/www"})");
  seeds.Add("deployment", ReadFile(kSource / "config/someip_deployment.json"));
  seeds.Add("deployment", ReadFile(kSource / "platform/com/deployment_default.json"));
  seeds.Add("deployment", R"({"unicast":"127.0.0.9","serviceDiscovery":{"initialDelayMs":[0,0],"subscribeTtlS":16777215},
    "services":{"ylt::services::chargingmanagementcore::ChargingManagementCore":{"serviceId":"0x1A","fields":{"views":{"reliable":true}}}}})");
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 1;
  Seeds seeds{arguments[1]};
  const auto deployment = wire::default_deployment();
  const auto paths = fuzz::Bridges{}.Chosen(true).Paths();
  AddReads(seeds, paths);
  AddWrites(seeds, paths);
  AddConversation(seeds);
  AddFrames(seeds);
  AddPayloads(seeds, deployment);
  AddDiscovery(seeds, deployment);
  AddFiles(seeds);
  // The threads of the servers wait in them.
  std::_Exit(0);
}
