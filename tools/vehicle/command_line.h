#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vehicle {

struct Options {
  std::string address = "127.0.0.2";
  std::optional<std::string> deployment;  ///< file; the compiled-in deployment if there is none
  std::string scenario = "default";       ///< file or built-in name
  double speed = 1;                       ///< how many times faster the scenario's time line runs
  bool verbose = false;
  bool help = false;
};

/// Throws BadInput with one sentence for an argument that is unknown, lacks its value or has a wrong one.
Options ParseCommandLine(const std::vector<std::string>& arguments);

/// What --help prints.
std::string Usage();

}  // namespace vehicle
