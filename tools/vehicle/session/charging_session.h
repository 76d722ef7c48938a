#pragma once

#include "tools/vehicle/session/battery.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <string>

namespace vehicle {

/// Where a session begins and what the charger offers.
struct SessionSettings {
  double startSoc = 14;   ///< percent, on arrival
  double targetSoc = 80;  ///< percent, until a client sets another
  double power = 150;     ///< kW, of the charger
  double ambient = 7;     ///< degrees Celsius
  bool dc = true;
};

/// A car that arrives at a charger, plugs in, charges, gives some energy back, drives, and arrives again: a model, so that what a client
/// sets has its effects. Time is the car's own. Not safe for threads.
class ChargingSession {
 public:
  using Seconds = std::chrono::duration<double>;

  explicit ChargingSession(const SessionSettings& settings);

  /// Lets the time go on, by at most one phase, and gives what the vehicle has to say then: by field, records in words, each for the
  /// record of its type.
  nlohmann::json Advance(Seconds time);

  /// What a client has set: records of a field in words.
  void OnSet(const std::string& field, const nlohmann::json& records);

 private:
  enum class Phase : std::uint8_t {
    kParked,
    kFlapOpening,
    kFlapOpen,
    kLocking,
    kInitializing,
    kCharging,
    kInterrupted,
    kFinished,
    kDischarging,
    kUnlocking,
    kUnplugged,
    kFlapClosing,
    kDriving
  };
  struct Row;
  static const Row& RowOf(Phase phase);

  void Enter(Phase phase);
  bool IsOver() const;
  void Live(Seconds time);
  void Drive(double minutes);
  void SetSwitch(const std::string& type, const std::string& value);
  void StartOrStop(const std::string& value);

  double Target() const;
  double Power() const;
  bool IsPreconditioning() const;

  nlohmann::json Say() const;
  nlohmann::json SayViews() const;
  nlohmann::json SayNotifications() const;
  nlohmann::json SayPlug() const;
  nlohmann::json SaySwitches() const;
  nlohmann::json SayControls() const;
  nlohmann::json SayIndications() const;
  nlohmann::json SayProcess() const;
  nlohmann::json SayPreconditioning() const;
  nlohmann::json SayBidirectional() const;

  const SessionSettings settings_;
  Battery battery_;
  Phase phase_ = Phase::kParked;
  Seconds inPhase_{0};
  bool entered_ = true;  // the phase is new to whoever listens

  double energy_ = 0;  // kWh charged in this session
  double driveFrom_ = 0;
  double target_;
  double navTarget_ = 70;
  double minSoc_ = 20;
  double actionMinutes_ = 30;
  double actionLeft_ = 0;  // minutes; above 0 while an action by time runs
  std::string mode_ = "chargingImmediateCharging";
  std::string flapLock_ = "locked";
  Seconds flapLockMoves_{0};
  bool careActive_ = false;
  double careScore_ = 62.5;
  bool preconditioningWanted_ = false;
  double givenBack_ = 0;       // kWh
  double givingBackTime_ = 0;  // hours
  double cycles_ = 0;
};

}  // namespace vehicle
