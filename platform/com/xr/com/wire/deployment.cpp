#include "xr/com/wire/deployment.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <system_error>

#include "xr/com/wire/deployment_default.h"
#include "xr/com/wire/sd_message.h"

namespace xr::com::wire {
namespace {

using Json = nlohmann::json;

constexpr const char* kFile = "/opt/TROV__PLNT5_Sys_Adaptive_01/etc/someip_deployment.json";
constexpr std::uint16_t kFirstEvent = 0x8000;  // events have the highest bit, methods do not
constexpr std::uint16_t kLastId = 0xFFFE;
constexpr std::uint64_t kLongestDelay = 60'000;

[[noreturn]] void fail(const std::string& place, const std::string& reason) {
  throw Deployment_error{place + ": " + reason};
}

std::string join(const std::string& path, const std::string& key) {
  return path.empty() ? key : path + '.' + key;
}

/// Parses JSON in which no object may have a key twice.
Json parse(std::string_view text) {
  std::vector<std::set<std::string>> open;
  const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) open.emplace_back();
    if (event == Json::parse_event_t::object_end) open.pop_back();
    if (event == Json::parse_event_t::key && !open.back().insert(parsed.get<std::string>()).second) {
      fail(parsed.get<std::string>(), "repeated key");
    }
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::exception& e) {
    throw Deployment_error{e.what()};
  }
}

/// Lays `over` onto `base`, which knows all keys that there are.
void overlay(Json& base, const Json& over, const std::string& path) {
  if (!over.is_object()) fail(path.empty() ? "deployment" : path, "must be an object");
  for (const auto& [key, value] : over.items()) {
    const auto found = base.find(key);
    if (found == base.end()) fail(join(path, key), "unknown key");
    if (found->is_object()) {
      overlay(*found, value, join(path, key));
    } else {
      *found = value;
    }
  }
}

/// One object of the merged document with the place where it stands.
class Reader {
 public:
  Reader(const Json& object, std::string path) : object_{object}, path_{std::move(path)} {}

  Reader at(const std::string& key) const { return {object_.at(key), join(path_, key)}; }
  bool has(const std::string& key) const { return object_.contains(key); }
  const Json& object() const { return object_; }
  [[noreturn]] void fail(const std::string& key, const std::string& reason) const { wire::fail(join(path_, key), reason); }

  std::uint64_t number(const std::string& key, std::uint64_t minimum, std::uint64_t maximum) const {
    return number(key, object_.at(key), minimum, maximum);
  }

  std::pair<std::uint64_t, std::uint64_t> range(const std::string& key, std::uint64_t maximum) const {
    const auto& value = object_.at(key);
    if (!value.is_array() || value.size() != 2) fail(key, "must be an array of two numbers");
    const auto first = number(key, value[0], 0, maximum);
    return {first, number(key, value[1], first, maximum)};
  }

  bool flag(const std::string& key) const {
    if (!object_.at(key).is_boolean()) fail(key, "must be true or false");
    return object_.at(key).get<bool>();
  }

  boost::asio::ip::address_v4 address(const std::string& key) const {
    boost::system::error_code error;
    auto address = boost::asio::ip::make_address_v4(text(key), error);
    if (error || address.is_unspecified()) fail(key, "must be an IPv4 address");
    return address;
  }

  /// "0x" and one to four hexadecimal digits.
  std::uint16_t id(const std::string& key, std::uint16_t minimum, std::uint16_t maximum) const {
    constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
    const auto value = text(key);
    const bool wellFormed =
        value.starts_with("0x") && value.size() > 2 && value.size() <= 6 && value.find_first_not_of(kDigits, 2) == std::string::npos;
    const unsigned long number = wellFormed ? std::stoul(value, nullptr, 16) : 0;
    if (!wellFormed || number < minimum || number > maximum) fail(key, "must be an id from " + hex(minimum) + " to " + hex(maximum));
    return static_cast<std::uint16_t>(number);
  }

 private:
  std::string text(const std::string& key) const {
    if (!object_.at(key).is_string()) fail(key, "must be a text");
    return object_.at(key).get<std::string>();
  }

  std::uint64_t number(const std::string& key, const Json& value, std::uint64_t minimum, std::uint64_t maximum) const {
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() < minimum || value.get<std::uint64_t>() > maximum) {
      fail(key, "must be a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum));
    }
    return value.get<std::uint64_t>();
  }

  static std::string hex(std::uint16_t value) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "0x";
    for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[value >> shift & 0xF];
    return text;
  }

  const Json& object_;
  std::string path_;
};

Discovery_deployment read_discovery(const Reader& in) {
  Discovery_deployment out;
  out.multicast = in.address("multicast");
  if (!out.multicast.is_multicast()) in.fail("multicast", "must be a multicast address");
  out.port = static_cast<std::uint16_t>(in.number("port", 1, 0xFFFF));
  const auto [least, most] = in.range("initialDelayMs", kLongestDelay);
  out.initial_delay_min = std::chrono::milliseconds{least};
  out.initial_delay_max = std::chrono::milliseconds{most};
  out.repetition_base_delay = std::chrono::milliseconds{in.number("repetitionBaseDelayMs", 1, kLongestDelay)};
  out.repetitions_max = static_cast<unsigned>(in.number("repetitionsMax", 0, 20));
  out.subscribe_ttl = static_cast<std::uint32_t>(in.number("subscribeTtlS", 1, kTtlForever));
  return out;
}

Field_deployment read_field(const std::string& name, const Reader& in) {
  Field_deployment out{.name = name,
                       .event = in.id("event", kFirstEvent, kLastId),
                       .eventgroup = in.id("eventgroup", 1, kLastId),
                       .get = in.id("get", 1, kFirstEvent - 1),
                       .set = {},
                       .reliable = in.flag("reliable")};
  if (in.has("set")) out.set = in.id("set", 1, kFirstEvent - 1);
  return out;
}

/// Two fields with one id could not be told apart on the wire.
void check_unique(const Reader& fields, const std::vector<Field_deployment>& all) {
  std::set<std::uint16_t> numbers, groups;  // events and methods share one room of numbers
  for (const auto& field : all) {
    const auto take = [&](std::set<std::uint16_t>& taken, const char* key, std::uint16_t id) {
      if (!taken.insert(id).second) fields.at(field.name).fail(key, "is used twice");
    };
    take(numbers, "event", field.event);
    take(numbers, "get", field.get);
    if (field.set) take(numbers, "set", *field.set);
    take(groups, "eventgroup", field.eventgroup);
  }
}

Service_deployment read_service(const std::string& name, const Reader& in) {
  Service_deployment out{.name = name,
                         .service_id = in.id("serviceId", 1, kLastId),
                         .instance_id = in.id("instanceId", 1, kLastId),
                         .major_version = static_cast<std::uint8_t>(in.number("majorVersion", 0, 0xFE)),
                         .minor_version = static_cast<std::uint32_t>(in.number("minorVersion", 0, 0xFFFFFFFE)),
                         .fields = {}};
  const auto fields = in.at("fields");
  for (const auto& [field, unused] : fields.object().items()) out.fields.push_back(read_field(field, fields.at(field)));
  check_unique(fields, out.fields);
  return out;
}

Deployment read(const Json& document) {
  const Reader in{document, ""};
  Deployment out;
  out.unicast = in.address("unicast");
  if (out.unicast.is_multicast()) in.fail("unicast", "must not be a multicast address");
  out.discovery = read_discovery(in.at("serviceDiscovery"));
  const auto services = in.at("services");
  for (const auto& [name, unused] : services.object().items()) {
    auto service = read_service(name, services.at(name));
    if (out.find_service(service.service_id)) services.at(name).fail("serviceId", "is used twice");
    out.services.push_back(std::move(service));
  }
  return out;
}

template <class Range, class Predicate>
auto find_in(const Range& range, Predicate predicate) -> decltype(&*range.begin()) {
  const auto found = std::find_if(range.begin(), range.end(), predicate);
  return found == range.end() ? nullptr : &*found;
}

}  // namespace

const Field_deployment* Service_deployment::find_field(std::string_view fieldName) const noexcept {
  return find_in(fields, [&](const auto& field) { return field.name == fieldName; });
}

bool Service_deployment::has_reliable_fields() const noexcept {
  return std::any_of(fields.begin(), fields.end(), [](const auto& field) { return field.reliable; });
}

const Service_deployment* Deployment::find_service(std::string_view serviceName) const noexcept {
  return find_in(services, [&](const auto& service) { return service.name == serviceName; });
}

const Service_deployment* Deployment::find_service(std::uint16_t serviceId) const noexcept {
  return find_in(services, [&](const auto& service) { return service.service_id == serviceId; });
}

Deployment default_deployment() {
  return read(Json::parse(kDefaultDeployment));
}

Deployment parse_deployment(std::string_view text) {
  auto document = Json::parse(kDefaultDeployment);
  overlay(document, parse(text), "");
  return read(document);
}

Deployment load_deployment(const std::filesystem::path& file) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) return default_deployment();
  if (status.type() != std::filesystem::file_type::regular) throw Deployment_error{error ? error.message() : "not a regular file"};
  std::ifstream in{file, std::ios::binary};
  const std::string text{std::istreambuf_iterator<char>{in}, {}};
  if (!in.is_open() || in.bad()) throw Deployment_error{"cannot be read"};
  return parse_deployment(text);
}

std::filesystem::path deployment_file() {
  const char* root = std::getenv("ARA_ROOT");
  if (root == nullptr || *root == '\0') return kFile;
  return std::filesystem::path{root} / std::filesystem::path{kFile}.relative_path();
}

}  // namespace xr::com::wire
