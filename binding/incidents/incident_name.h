#pragma once

#include <cstddef>
#include <string_view>

namespace xr::com::cpp_binding::log {

/// An incident's name as a template argument.
template <std::size_t size>
struct Incident_name {
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is the name.
  constexpr Incident_name(const char (&literal)[size]) {
    for (std::size_t i = 0; i < size; ++i) text[i] = literal[i];
  }
  constexpr std::string_view view() const { return {text, size - 1}; }

  char text[size]{};
};

}  // namespace xr::com::cpp_binding::log
