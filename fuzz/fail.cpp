#include "fuzz/fail.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

void Fail(std::string_view reason) {
  (void)std::fprintf(stderr, "%.*s\n", static_cast<int>(reason.size()), reason.data());
  std::abort();
}

}  // namespace fuzz
