#include "tools/vehicle/session/charging_session.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace vehicle {

using nlohmann::json;

/// What a phase looks like from outside, and when it ends: after its time, or, with none, when the battery says so.
struct ChargingSession::Row {
  Phase phase;
  Seconds lasts;
  Phase next;
  const char* flap;
  const char* plugLock;
  const char* connection;
  const char* infrastructure;
  const char* chargeState;
  const char* scenario;
};

namespace {

constexpr double kWarmEnough = 25;     // degrees, when preconditioning ends
constexpr double kBackPower = 10;      // kW, from the car into the house
constexpr double kCareThreshold = 80;  // percent, that battery care charges to
constexpr double kKwhPerKilometre = 0.19;
constexpr ChargingSession::Seconds kLockMoves{3};

/// The records of a field of which one changes.
json Only(json record) {
  return json::array({std::move(record)});
}

json Indication(const char* type, double value, double step, const char* unit, const char* word) {
  return {{"type", type}, {"currentValue", std::round(value / step) * step}, {unit, word}};
}

json Control(const char* type, double value, int minimum, int maximum, const char* unit, const char* word) {
  return {{"type", type}, {"currentValue", static_cast<unsigned>(value)}, {"minValue", minimum}, {"maxValue", maximum}, {unit, word}};
}

}  // namespace

const ChargingSession::Row& ChargingSession::RowOf(Phase phase) {
  using enum Phase;
  static constexpr Seconds kUntilFull{0};
  static constexpr std::array<Row, 13> kRows{{
      {kParked, Seconds{15}, kFlapOpening, "close", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
      {kFlapOpening, Seconds{4}, kFlapOpen, "opening", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
      {kFlapOpen, Seconds{10}, kLocking, "open", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
      {kLocking, Seconds{4}, kInitializing, "open", "locking", "connected", "initializing", "notReadyForCharging",
       "initializationChargingCommunication"},
      {kInitializing, Seconds{12}, kCharging, "open", "locked", "connected", "ready", "readyForCharging",
       "initializationChargingCommunication"},
      {kCharging, kUntilFull, kFinished, "open", "locked", "connected", "active", "chargingHvBattery", "immediatleyChargingActive"},
      {kInterrupted, Seconds{600}, kCharging, "open", "locked", "connected", "ready", "readyForCharging", "chargingInterruptByUser"},
      {kFinished, Seconds{120}, kDischarging, "open", "locked", "connected", "ready", "chargepurposeReachedAndConservation",
       "immediatleyChargingFinished"},
      {kDischarging, Seconds{300}, kUnlocking, "open", "locked", "connected", "active", "discharging", "plugReleasable"},
      {kUnlocking, Seconds{4}, kUnplugged, "open", "unlocking", "connected", "ready", "notReadyForCharging", "plugReleasable"},
      {kUnplugged, Seconds{8}, kFlapClosing, "open", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
      {kFlapClosing, Seconds{4}, kDriving, "closing", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
      {kDriving, Seconds{600}, kParked, "close", "unlocked", "disconnected", "notAvailable", "notReadyForCharging", "off"},
  }};
  return kRows[static_cast<std::size_t>(phase)];
}

ChargingSession::ChargingSession(const SessionSettings& settings)
    : settings_{settings}, battery_{settings.startSoc, kWarmEnough}, target_{settings.targetSoc} {}

json ChargingSession::Advance(Seconds time) {
  if (entered_) {  // a phase is seen at least once, however fast the time goes
    auto first = Say();
    entered_ = false;
    return first;
  }
  Live(time);
  if (IsOver()) Enter(RowOf(phase_).next);
  auto words = Say();
  entered_ = false;
  return words;
}

void ChargingSession::Enter(Phase phase) {
  phase_ = phase;
  inPhase_ = Seconds{0};
  entered_ = true;
  if (phase == Phase::kLocking) energy_ = 0;
  if (phase == Phase::kDischarging) ++cycles_;
  if (phase == Phase::kFinished) careScore_ += battery_.Soc() > kCareThreshold ? -0.5 : 0.5;
  if (phase == Phase::kFinished || phase == Phase::kUnlocking) mode_ = "chargingImmediateCharging", actionLeft_ = 0;
  if (phase == Phase::kDriving) driveFrom_ = battery_.Soc();
  if (phase == Phase::kInitializing) navTarget_ = 70;
}

bool ChargingSession::IsOver() const {
  if (phase_ == Phase::kCharging) return battery_.Soc() >= Target();
  if (phase_ == Phase::kDischarging && battery_.Soc() <= minSoc_) return true;
  return inPhase_ >= RowOf(phase_).lasts;
}

void ChargingSession::Live(Seconds time) {
  const double minutes = time.count() / 60;
  inPhase_ += time;
  if (flapLockMoves_ > Seconds{0} && (flapLockMoves_ -= time) <= Seconds{0}) flapLock_ = flapLock_ == "locking" ? "locked" : "unlocked";
  if (preconditioningWanted_ && battery_.Temperature() >= kWarmEnough) preconditioningWanted_ = false;
  if (IsPreconditioning()) battery_.HeatTo(std::min(kWarmEnough, battery_.Temperature() + 2 * minutes));
  if (phase_ == Phase::kDriving) return Drive(minutes);

  const double power = Power();
  battery_.Charge(power, minutes, settings_.ambient);
  if (phase_ == Phase::kCharging) {
    energy_ += power * minutes / 60;
    if (inPhase_ > Seconds{300}) navTarget_ = 85;  // the navigation has found another way
    if (actionLeft_ > 0 && (actionLeft_ -= minutes) <= 0) StartOrStop("stopCharging");
  } else if (phase_ == Phase::kDischarging) {
    givenBack_ += kBackPower * minutes / 60;
    givingBackTime_ += minutes / 60;
  }
}

/// From the state of charge at departure to that of arrival, evenly.
void ChargingSession::Drive(double minutes) {
  const double all = RowOf(Phase::kDriving).lasts.count() / 60;
  const double used = std::max(0.0, driveFrom_ - settings_.startSoc) / 100 * Battery::kCapacity;
  battery_.Charge(-used / all * 60, minutes, settings_.ambient);
}

void ChargingSession::OnSet(const std::string& field, const json& records) {
  for (const auto& record : records) {
    const auto type = record.value("type", std::string{});
    if (field == "switchControls") SetSwitch(type, record.value("switchValue", std::string{}));
    if (field != "valueControls" || !record.contains("currentValue")) continue;
    const auto value = record["currentValue"].get<double>();
    if (type == "immediateChargingOptionsTargetSoc") target_ = value;
    if (type == "immediateChargingOptionsNavTargetSoc") navTarget_ = value;
    if (type == "immediateActionImmediateActionTime") actionMinutes_ = value;
    if (type == "bidirectionalChargingModesMinSoc") minSoc_ = value;
  }
}

void ChargingSession::SetSwitch(const std::string& type, const std::string& value) {
  const bool locked = RowOf(phase_).plugLock == std::string{"locked"};
  if (type == "immediateActionStartStopCharging") StartOrStop(value);
  if (type == "batteryCareModesBcamActivation") careActive_ = value == "activated";
  if (type == "batteryPreconditioningPreconditioningActivation") preconditioningWanted_ = value == "activated";
  if (type == "rearRight1PlugLockState" && value == "unlocking" && locked) Enter(Phase::kUnlocking);
  if (type == "rearRight1FlapLockState" && (value == "unlocking" || value == "locking")) {
    flapLock_ = value;
    flapLockMoves_ = kLockMoves;
  }
}

void ChargingSession::StartOrStop(const std::string& value) {
  const bool charging = phase_ == Phase::kCharging;
  if (value == "stopCharging") {
    actionLeft_ = 0;
    if (charging) Enter(Phase::kInterrupted);
    return;
  }
  if (!charging && phase_ != Phase::kInterrupted && phase_ != Phase::kFinished) return;
  mode_ = value == "startImmediateActionTime"   ? "chargingImmedieateActionTime"
          : value == "startChargeModeSelection" ? "chargingChargeModeSelection"
                                                : "chargingImmediateCharging";
  actionLeft_ = value == "startImmediateActionTime" ? actionMinutes_ : 0;
  if (!charging) Enter(Phase::kCharging);
}

double ChargingSession::Target() const {
  return careActive_ ? std::min(target_, kCareThreshold) : target_;
}

double ChargingSession::Power() const {
  if (phase_ == Phase::kCharging) return battery_.Power(settings_.power);
  if (phase_ == Phase::kDischarging) return -kBackPower;
  return 0;
}

bool ChargingSession::IsPreconditioning() const {
  if (battery_.Temperature() >= kWarmEnough) return false;
  return preconditioningWanted_ || (phase_ == Phase::kDriving && inPhase_ > RowOf(Phase::kDriving).lasts / 2);
}

json ChargingSession::Say() const {
  json words{{"chargingPlugs", SayPlug()},
             {"switchControls", SaySwitches()},
             {"valueControls", SayControls()},
             {"valueIndications", SayIndications()},
             {"chargingProcessInformation", SayProcess()},
             {"batteryPreconditionings", SayPreconditioning()},
             {"bidirectionalChargingModes", SayBidirectional()},
             {"batteryCareModes", Only({{"type", "batteryCareMode"}, {"chargeBcamThreshold", static_cast<unsigned>(kCareThreshold)}})},
             {"targetSocChargings", Only({{"type", "targetSocCharging"}, {"targetSoc", static_cast<unsigned>(navTarget_)}})}};
  // Said once, when the phase begins: what becomes of it is the clients' affair.
  if (entered_) {
    if (auto views = SayViews(); !views.empty()) words["views"] = std::move(views);
    if (auto notifications = SayNotifications(); !notifications.empty()) words["notifications"] = std::move(notifications);
  }
  return words;
}

json ChargingSession::SayViews() const {
  const auto view = [](const char* type, const char* content) -> json {
    const bool nothing = content == std::string{"nothing"};
    return Only({{"type", type}, {"content", content}, {"visibility", nothing ? "noView" : "newRequest"}});
  };
  if (phase_ == Phase::kInitializing) return view("popup", "chargingInformationScreen");
  if (phase_ == Phase::kFinished && target_ > kCareThreshold) return view("bcamScreen", "bcamInformationScreen");
  if (phase_ == Phase::kUnlocking) return view("popup", "nothing");
  if (phase_ == Phase::kFlapClosing) return view("bcamScreen", "nothing");
  return json::array();
}

json ChargingSession::SayNotifications() const {
  if (phase_ == Phase::kCharging && battery_.Temperature() < kWarmEnough) {
    return Only(
        {{"type", "chargingNotification1"}, {"value", "chargestartDelayDueToConditioningOfBattery"}, {"additionalInformation", "other"}});
  }
  return json::array();
}

json ChargingSession::SayPlug() const {
  const auto& row = RowOf(phase_);
  return Only({{"type", "rearRight1"},
               {"plugType", "DcCombo2OrTyp2Ac"},
               {"plugConnectionState", row.connection},
               {"infrastructureState", row.infrastructure}});
}

json ChargingSession::SaySwitches() const {
  const auto& row = RowOf(phase_);
  const auto onOff = [](bool on) { return on ? "activated" : "deactivated"; };
  return json::array(
      {{{"type", "rearRight1PlugLockState"}, {"switchValue", row.plugLock}},
       {{"type", "rearRight1FlapLockState"}, {"switchValue", flapLock_}},
       {{"type", "rearRight1FlapState"}, {"switchValue", row.flap}},
       {{"type", "immediateActionStartStopCharging"}, {"switchValue", phase_ == Phase::kCharging ? mode_ : "noneOrImmediateActionStopped"}},
       {{"type", "batteryCareModesBcamActivation"}, {"switchValue", onOff(careActive_)}},
       {{"type", "batteryPreconditioningPreconditioningActivation"}, {"switchValue", onOff(preconditioningWanted_)}}});
}

json ChargingSession::SayControls() const {
  return json::array({Control("immediateChargingOptionsTargetSoc", target_, 20, 100, "unitPercent", "percent"),
                      Control("immediateActionImmediateActionTime", actionMinutes_, 0, 600, "unitTime", "min"),
                      Control("bidirectionalChargingModesMinSoc", minSoc_, 10, 80, "unitPercent", "percent")});
}

json ChargingSession::SayIndications() const {
  const double offered = settings_.power;
  const double power = Power();
  const auto minutes = [&](const char* type, double soc) {
    return Indication(type, battery_.MinutesTo(soc, offered), 1, "unitTime", "min");
  };
  const auto kilowatts = [](const char* type, double value) { return Indication(type, value, 0.5, "unitPower", "kW"); };
  return json::array({
      Indication("chargingProcessInformationCurrentSoc", battery_.Soc(), 0.5, "unitPercent", "percent"),
      minutes("chargingProcessInformationRemainingChargeTimeBulk", kCareThreshold),
      minutes("chargingProcessInformationRemainingChargeTimeComplete", Target()),
      minutes("chargingProcessInformationRemainingChargeTimeFull", 100),
      minutes("chargingProcessInformationRemainingChargeTimeNav", navTarget_),
      Indication("chargingProcessInformationChargeEnergy", energy_, 0.1, "unitEnergy", "kWh"),
      Indication("chargingProcessInformationChargeRate", power / kKwhPerKilometre / 60, 0.1, "unitSpeed", "kmPerMin"),
      kilowatts("chargingProcessInformationChargePower", power),
      kilowatts("chargingProcessInformationMaxPowerChargingStation", offered),
      kilowatts("chargingProcessInformationMaxPowerDc", settings_.dc ? offered : 0),
      kilowatts("chargingProcessInformationMaxPowerAc", settings_.dc ? 0 : offered),
      kilowatts("chargingProcessInformationMaxChargePowerCurrent", battery_.Power(1000)),
      kilowatts("chargingProcessInformationMaxChargePowerOptimalTemperature", battery_.PowerWhenWarm(1000)),
      Indication("batteryCareModesBcamScore", careScore_, 0.5, "unitPercent", "percent"),
      Indication("bidirectionalChargingModesOperatingHours", givingBackTime_, 0.1, "unitTime", "h"),
      {{"type", "bidirectionalChargingModesNumbersOfCycles"}, {"currentValue", cycles_}},
      Indication("bidirectionalChargingModesAmountOfEnergy", givenBack_, 0.1, "unitEnergy", "kWh"),
      Indication("bidirectionalChargingModesQuota", givenBack_ / 10, 0.1, "unitPercent", "percent"),
      Indication("batteryPreconditioningRemainingTimeFinished", std::max(0.0, kWarmEnough - battery_.Temperature()) / 2, 1, "unitTime",
                 "min"),
      Indication("batteryPreconditioningBatteryTemperature", battery_.Temperature(), 0.5, "unitTemperature", "celsius"),
  });
}

json ChargingSession::SayProcess() const {
  const auto& row = RowOf(phase_);
  const bool charging = phase_ == Phase::kCharging;
  const char* limit = !charging                                 ? "unlimited"
                      : battery_.Power(1000) >= settings_.power ? "limitedInfrastructure"
                      : battery_.Temperature() < kWarmEnough    ? "limitedBatteryLowTemperature"
                                                                : "limitedHighSoc";
  return Only({{"type", "chargingProcessInformation"},
               {"currentChargeState", row.chargeState},
               {"chargingScenario", row.scenario},
               {"activeTargetSoc", "targetSoc"},
               {"chargeBulkThreshold", static_cast<unsigned>(kCareThreshold)},
               {"chargeTimeDisplay", "remainingChargeTimeComplete"},
               {"chargeMode", charging ? "immediatelyDefault" : "immediatelyStopped"},
               {"chargeType", settings_.dc ? "dc" : "ac"},
               {"chargeRateCuteness", limit},
               {"evseid", "DE*123*E45678*9"}});
}

json ChargingSession::SayPreconditioning() const {
  const bool warm = battery_.Temperature() >= kWarmEnough;
  const char* state = IsPreconditioning() ? "running" : warm ? "unnecessary" : phase_ == Phase::kDriving ? "scheduled" : "possibleToStart";
  return Only({{"type", "batteryPreconditioning"}, {"preconditioningState", state}});
}

json ChargingSession::SayBidirectional() const {
  const bool back = phase_ == Phase::kDischarging;
  json mode{{"type", "bidirectionalChargingMode"},
            {"information", back                         ? "dischargingActive"
                            : phase_ == Phase::kCharging ? "bidiNotAvailableImmediateChargingActive"
                            : battery_.Soc() <= minSoc_  ? "bidiNotPossibleMinSoc"
                                                         : "bidiAvailableNoProfile"}};
  if (back) mode["chargingMode"] = "discharging";
  return Only(std::move(mode));
}

}  // namespace vehicle
