#include "rest/server/trov_zuva_server.h"

#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>

#include "ara/rest/ogm.h"
#include "rest/generated/zuva_server.h"
#include "rest/server/element_update.h"
#include "zuva/format/date_time.h"

namespace trov::zuvaServer {
namespace {

using zuva::format::DateTime;
using zuva::server::factory_reset::ResetObject;

constexpr ErrorLines kNotificationLines{
    .domain = "[ZuVa] Domain error exception caught while updating notification object: ",
    .other = "[ZuVa] Unknown exception caught while updating notification object.",
};
constexpr ErrorLines kNotificationMarkerLines{
    .domain = "[ZuVa] Domain error exception caught while updating notificationMarker object: ",
    .other = "[ZuVa] Unknown exception caught while updating notificationMarker object.",
};
constexpr ErrorLines kOruUpdateApprovalLines{
    .domain = "[ZuVa] Domain error exception caught while updating oruUpdateApproval object: ",
    .other = "[ZuVa] Unknown exception caught while updating oruUpdateApproval object.",
};
constexpr ErrorLines kPastErrorLines{
    .domain = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating pastErrorInformation object: ",
    .other = "[ZuVa] Unknown exception caught while updating pastErrorInformation object.",
};
constexpr ErrorLines kResetLines{
    .domain = "[ZuVa] Domain error exception caught while updating resetToFactoryData object: ",
    .other = "[ZuVa] Unknown exception caught while updating resetToFactoryData object.",
};
constexpr ErrorLines kBatteryCareModeLines{.domain = {}, .other = {}, .prefix = "[ZuVa] batteryCareModes - "};
constexpr ErrorLines kBatteryPreconditioningLines{.domain = {}, .other = {}, .prefix = "[ZuVa] batteryPreconditionings - "};
constexpr ErrorLines kBatteryPreconditioningEnergyLines = kBatteryPreconditioningLines;  // its neighbour's prefix, on purpose

/// The broken-down time of seconds since the epoch; none beyond what the C library or a date of four digits can say.
std::optional<std::tm> LocalTime(std::uint64_t seconds) {
  if (seconds > static_cast<std::uint64_t>(std::numeric_limits<std::time_t>::max())) return std::nullopt;
  const auto time = static_cast<std::time_t>(seconds);
  std::tm broken{};
  if (!localtime_r(&time, &broken) || broken.tm_year > 9999 - 1900) return std::nullopt;
  return broken;
}

/// The local time under the zone of UTC: the two go together on a system that runs in UTC, and that is the one meant.
DateTime DateOf(std::uint64_t seconds, const ara::log::Logger& logger) {
  const auto time = LocalTime(seconds);
  if (!time) return ResetObject::NoReset();
  const int year = time->tm_year + 1900;
  const int month = time->tm_mon + 1;
  logger.LogInfo() << "[Zuva] Updated time : year=" << year << "month=" << month << "day=" << time->tm_mday << "hour=" << time->tm_hour
                   << "min=" << time->tm_min << "sec=" << time->tm_sec;
  const auto small = [](int number) { return static_cast<std::uint8_t>(number); };
  return {static_cast<std::uint16_t>(year),
          small(month),
          small(time->tm_mday),
          small(time->tm_hour),
          small(time->tm_min),
          small(time->tm_sec),
          0,
          "+00:00"};
}

}  // namespace

void TROVZuVaServer::Update_Notifications(const Word& type, const Word& value, const Word& additionalInformation) {
  UpdateByType(*Server().GetChargingManagementCoreNotifications(), type, kNotificationLines, logger_, [&](ElementUpdate& update) {
    update.Set("value", value);
    update.Set("additionalInformation", additionalInformation);
  });
}

void TROVZuVaServer::Update_NotificationMarkers(const Word& type, const Opt<bool>& isToBeNotified) {
  UpdateByType(*Server().GetChargingManagementCoreNotificationMarkers(), type, kNotificationMarkerLines, logger_,
               [&](ElementUpdate& update) { update.Set("isToBeNotified", isToBeNotified); });
}

void TROVZuVaServer::Update_OruUpdateApprovals(const Word& type, const Opt<bool>& updateApproval) {
  UpdateByType(*Server().GetChargingManagementCoreOruUpdateApprovals(), type, kOruUpdateApprovalLines, logger_,
               [&](ElementUpdate& update) { update.Set("updateApproval", updateApproval); });
}

void TROVZuVaServer::Update_pastErrorInformation(const Word& type, const Word& value, const Word& additionalInformation,
                                                 const Opt<bool>& confirmedByUser) {
  UpdateByType(*Server().GetChargingManagementCorePastErrorInformation(), type, kPastErrorLines, logger_, [&](ElementUpdate& update) {
    update.Set("value", value);
    update.Set("additionalInformation", additionalInformation);
    update.Set("confirmedByUser", confirmedByUser);
  });
}

void TROVZuVaServer::Update_batteryCareModes(const Word& type, const Word& notification, const Word& popup,
                                             const Opt<std::uint32_t>& chargeBcamThreshold, const Opt<float>& bcamScoreThreshold) {
  UpdateByType(*Server().GetChargingManagementCoreBatteryCareModes(), type, kBatteryCareModeLines, logger_, [&](ElementUpdate& update) {
    update.Set("notification", notification);
    update.Set("popup", popup);
    update.Set("chargeBcamThreshold", chargeBcamThreshold);
    update.Set("bcamScoreThreshold", bcamScoreThreshold);
  });
}

void TROVZuVaServer::Update_batteryPreconditionings(const Word& type, const Word& preconditioningState) {
  UpdateByType(*Server().GetChargingManagementCoreBatteryPreconditionings(), type, kBatteryPreconditioningLines, logger_,
               [&](ElementUpdate& update) { update.Set("preconditioningState", preconditioningState); });
}

void TROVZuVaServer::Update_batteryPreconditioningEnergies(const Word& type, const Opt<std::uint32_t>& firstStop,
                                                           const Opt<std::uint32_t>& nextStops) {
  UpdateByType(*Server().GetChargingManagementCoreBatteryPreconditioningEnergies(), type, kBatteryPreconditioningEnergyLines, logger_,
               [&](ElementUpdate& update) {
                 update.Set("firstStop", firstStop);
                 update.Set("nextStops", nextStops);
               });
}

// Without a key: all reset objects stand for the one state that the vehicle reports.
void TROVZuVaServer::Update_resetToFactoryData(const Word& resetToFactoryData, const Opt<std::uint64_t>& lastReset) {
  Opt<bool> isFactoryDefault;
  if (resetToFactoryData.has_value()) isFactoryDefault = resetToFactoryData.value() == "origin";
  for (const auto& object : Server().GetFactoryResetResets()->GetResetObjects()) {
    Protected(*object, Absent::removes, kResetLines, logger_, [&](ElementUpdate& update) {
      update.Set("isFactoryDefault", isFactoryDefault);
      Word text;
      if (lastReset.has_value()) {
        const auto date = DateOf(lastReset.value(), logger_);
        object->SetLastReset(date);
        text = date.GetValue();
      }
      update.Set("lastReset", text);
    });
  }
}

}  // namespace trov::zuvaServer
