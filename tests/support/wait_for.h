#pragma once

#include <chrono>
#include <thread>
#include <type_traits>

namespace test_support {

/// How long a test waits for something that is expected to happen. Generous, since it costs time only where a test fails.
inline constexpr std::chrono::milliseconds kPatience{10'000};

/// Asks `condition` again and again until it holds or the deadline has passed.
/// Returns what the condition gave last: a bool, or anything that converts to one (an optional, a pointer).
template <class Condition>
auto WaitFor(Condition&& condition, std::chrono::milliseconds deadline = kPatience) -> std::invoke_result_t<Condition&> {
  const auto end = std::chrono::steady_clock::now() + deadline;
  for (;;) {
    auto result = condition();
    if (static_cast<bool>(result) || std::chrono::steady_clock::now() >= end) return result;
    std::this_thread::sleep_for(std::chrono::milliseconds{2});
  }
}

}  // namespace test_support
