#pragma once

#include "bench/fixed_values.h"
#include "bench/program.h"

#include <nlohmann/json.hpp>

#include <initializer_list>
#include <string_view>

namespace bench {

/// A bridge whose vehicle is on the benchmark's own thread, so that one clock sees both ends.
struct Bridge {
  /// Starts the program.
  explicit Bridge(std::string_view name, const nlohmann::json& settings = nlohmann::json::object());

  Program program;
  FixedValues vehicle;
};

/// Lets the vehicles answer until each bridge has its subscriptions and the first of its cycles of gets behind it, five seconds after its
/// start. The next one is two minutes away, and none is to come between notifications: what a get brings may be older than they are.
/// Throws std::runtime_error if that takes too long.
void Settle(std::initializer_list<Bridge*> bridges);

}  // namespace bench
