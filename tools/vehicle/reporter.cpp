#include "tools/vehicle/reporter.h"

#include <nlohmann/json.hpp>

namespace vehicle {

Reporter::Reporter(std::ostream& out) : out_{out}, logger_{ara::log::CreateLogger("VHCL", "Simulated vehicle")} {}

void Reporter::Tell(std::string_view event, const nlohmann::ordered_json& details) {
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
  nlohmann::ordered_json line{{"t", static_cast<double>(since.count()) / 1000}, {"event", event}};
  line.update(details);
  // Texts of records are bytes as they came; what is not UTF-8 is shown as a replacement character.
  out_ << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
  logger_.LogInfo() << event << " " << details.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vehicle
