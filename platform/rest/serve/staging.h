#pragma once

#include <string>

namespace zuva::serve {

/// Where an absolute path lies on this machine: below the directory in the environment variable `ARA_ROOT`, if that is set.
std::string Staged(const std::string& path);

}  // namespace zuva::serve
