#include "tools/vehicle/session/battery.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace vehicle {

namespace {

struct Corner {
  double soc, power;
};
/// The most power by state of charge, linear between the corners.
constexpr std::array<Corner, 5> kCurve{{{0, 180}, {10, 262}, {40, 262}, {80, 110}, {100, 11}}};
constexpr double kWarmingPerKwh = 0.6;       // degrees
constexpr double kCoolingPerMinute = 0.004;  // of the difference to the air around

double CurveAt(double soc) {
  for (std::size_t i = 1; i < kCurve.size(); ++i) {
    const auto& [from, to] = std::pair{kCurve[i - 1], kCurve[i]};
    if (soc <= to.soc) return from.power + (to.power - from.power) * (soc - from.soc) / (to.soc - from.soc);
  }
  return kCurve.back().power;
}

}  // namespace

double Battery::PowerAt(double soc, double temperature, double offered) {
  constexpr double kColdest = -20;
  const double warmth = std::clamp((temperature - kColdest) / (kBestTemperature - kColdest), 0.1, 1.0);
  return std::min(offered, warmth * CurveAt(soc));
}

double Battery::MinutesTo(double soc, double offered) const {
  constexpr double kStep = 0.5;
  const int steps = static_cast<int>(std::ceil(std::max(0.0, soc - soc_) / kStep));
  double hours = 0;
  for (int step = 0; step < steps; ++step) {
    const double at = soc_ + step * kStep;
    hours += std::min(kStep, soc - at) / 100 * kCapacity / PowerAt(at, temperature_, offered);
  }
  return hours * 60;
}

void Battery::Charge(double power, double minutes, double ambient) {
  const double energy = power * minutes / 60;
  soc_ = std::clamp(soc_ + 100 * energy / kCapacity, 0.0, 100.0);
  temperature_ += kWarmingPerKwh * std::abs(energy) - std::min(1.0, kCoolingPerMinute * minutes) * (temperature_ - ambient);
}

}  // namespace vehicle
