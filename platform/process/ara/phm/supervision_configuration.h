#pragma once

#include <array>
#include <string_view>

namespace ara::phm {

/// The checkpoint by which a process proves again and again that it is alive.
struct AliveSupervision {
  std::string_view process;
  unsigned short supervision;
  unsigned short checkpoint;
};

/// What the integrator of a machine tells its health management about the processes on it, a row a process. On a vehicle this stands in
/// the manifests; here it is part of the platform layer, which knows an application by these numbers only.
inline constexpr std::array kAliveSupervisions{
    AliveSupervision{.process = "TROV__PLNT5_Sys_Adaptive_01", .supervision = 60071, .checkpoint = 60075},
};

/// Null for a process whose life nobody supervises.
constexpr const AliveSupervision* FindAliveSupervision(std::string_view process) noexcept {
  for (const auto& row : kAliveSupervisions) {
    if (row.process == process) return &row;
  }
  return nullptr;
}

}  // namespace ara::phm
