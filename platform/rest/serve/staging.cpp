#include "serve/staging.h"

#include <cstdlib>

namespace zuva::serve {

std::string Staged(const std::string& path) {
  const char* root = std::getenv("ARA_ROOT");
  return (root == nullptr ? std::string{} : std::string{root}) + path;
}

}  // namespace zuva::serve
