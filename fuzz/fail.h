#pragma once

#include <string_view>

namespace fuzz {

/// Ends the process with one line, as what the fuzzer takes for a crash.
[[noreturn]] void Fail(std::string_view reason);

}  // namespace fuzz
