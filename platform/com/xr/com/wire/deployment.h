#pragma once

#include <boost/asio/ip/address_v4.hpp>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Where the services are and with which numbers: read from the deployment file over the compiled-in default.
namespace xr::com::wire {

struct Field_deployment {
  std::string name;
  std::uint16_t event = 0;
  std::uint16_t eventgroup = 0;
  std::uint16_t get = 0;
  std::optional<std::uint16_t> set;  ///< of settable fields
  bool reliable = false;             ///< over TCP instead of UDP
};

struct Service_deployment {
  std::string name;
  std::uint16_t service_id = 0;
  std::uint16_t instance_id = 0;
  std::uint8_t major_version = 0;
  std::uint32_t minor_version = 0;
  std::vector<Field_deployment> fields;  ///< in alphabetical order: a field's place is its index

  const Field_deployment* find_field(std::string_view fieldName) const noexcept;
  bool has_reliable_fields() const noexcept;
};

struct Discovery_deployment {
  boost::asio::ip::address_v4 multicast;
  std::uint16_t port = 0;
  std::chrono::milliseconds initial_delay_min{};
  std::chrono::milliseconds initial_delay_max{};
  std::chrono::milliseconds repetition_base_delay{};
  unsigned repetitions_max = 0;
  std::uint32_t subscribe_ttl = 0;  ///< seconds; 0xFFFFFF: for ever
};

struct Deployment {
  boost::asio::ip::address_v4 unicast;
  Discovery_deployment discovery;
  std::vector<Service_deployment> services;

  const Service_deployment* find_service(std::string_view serviceName) const noexcept;
  const Service_deployment* find_service(std::uint16_t serviceId) const noexcept;
};

/// What is wrong with a deployment: the place and the reason.
class Deployment_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The compiled-in deployment.
Deployment default_deployment();

/// Lays `text` (JSON) over the default. @throws Deployment_error for an unknown or repeated key, a bad value, or ids that collide.
Deployment parse_deployment(std::string_view text);

/// As `parse_deployment` with the file's text; a file that does not exist is an empty one. @throws Deployment_error, also if it cannot be
/// read.
Deployment load_deployment(const std::filesystem::path& file);

/// The deployment file of this application, below the staging root in the environment variable ARA_ROOT.
std::filesystem::path deployment_file();

}  // namespace xr::com::wire
