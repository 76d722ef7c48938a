#include "tests/system/write_rows.h"

namespace system_test {
namespace {

struct Switch {
  std::string type, typeNumber, value, valueNumber;
};

Lines SwitchLines(const Switch& posted, End end = End::answered) {
  const SetWords words{"[SomeIp]Updating the someip field with values received from zuva...",
                       "[SomeIp] SwitchControls either wait timeout expired or info is already available !!!!!!..",
                       "[SomeIp] SwitchControls Set timeout",
                       "",
                       "[SomeIp] Exception caught while setting a SwitchControl in SomeIp: ",
                       "SwitchValue"};
  return Lines{"[Zuva] Type - SwitchValue: " + posted.type + " - " + posted.value,
               "[CommMngr] Translated SwitchControl object type " + posted.type + " from zuva into type " + posted.typeNumber +
                   " for someip...",
               "[CommMngr] Translated SwitchControl object value " + posted.value + " from zuva into value " + posted.valueNumber +
                   " for someip...",
               "[SomeIp]Received SwitchControl object from ZUVA...",
               "[SomeIp] SwitchControl type: " + posted.typeNumber + ". SwitchControl value: " + posted.valueNumber} +
         SetLines(words, end) +
         Lines{"[Zuva] Result for the switchcontrol validation checks: true!",
               end == End::answered ? "[Zuva][Zuva -> SomeIp] SwitchControl POST successful"
                                    : "[Zuva][Zuva -> SomeIp] SwitchControl POST failed due to someip update failure"};
}

const Lines kSwitchRefused{"[Zuva] Result for the switchcontrol validation checks: false!",
                           "[Zuva][Zuva -> SomeIp] SwitchControl POST failed due to validation"};

WriteTable Table(const char* type, const char* records, const char* members, std::vector<WriteRow> rows, Lines whenGone) {
  return {.resource = "/ChargingManagementCore/switchControls",
          .type = type,
          .field = "switchControls",
          .received = "[SomeIp] Received notification regarding switchControls..",
          .records = records,
          .members = members,
          .rows = std::move(rows),
          .whenGone = std::move(whenGone)};
}

WriteTable BatteryCare() {
  const Switch activated{"batteryCareModesBcamActivation", "32", "activated", "21"};
  constexpr const char* kSentActivated = "00 00 00 10 00 00 00 0c 20 01 00 00 00 15 20 04 00 00 00 20";
  constexpr const char* kBody = R"({"switchValue": "activated"})";
  std::vector<WriteRow> rows{
      {.name = "Activated", .body = kBody, .sent = kSentActivated, .lines = SwitchLines(activated), .changes = kBody},
      {.name = "WithoutListAnyWord",
       .body = R"({"switchValue": "chargingImmedieateActionTime"})",
       .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 12 20 04 00 00 00 20",
       .lines = SwitchLines({"batteryCareModesBcamActivation", "32", "chargingImmedieateActionTime", "18"}),
       .changes = R"({"switchValue": "chargingImmedieateActionTime"})",
       .records = R"([{"type": "batteryCareModesBcamActivation", "switchValue": "deactivated"}])",
       .members = R"({"switchValue": "deactivated"})"},
      {.name = "ErrorAnswer",
       .body = kBody,
       .sent = kSentActivated,
       .lines = SwitchLines(activated),
       .changes = kBody,
       .fault = R"({"error": 9})"},
      {.name = "Silence",
       .body = kBody,
       .status = 500,
       .detail = kInternal,
       .sent = kSentActivated,
       .lines = SwitchLines(activated, End::silent),
       .fault = R"("silent")"},
      {.name = "WebSocket",
       .body = kBody,
       .sent = kSentActivated,
       .lines = SwitchLines(activated),
       .changes = kBody,
       .overWebSocket = true},
      {.name = "Foreign", .body = R"({"switchValue": "activated", "restrictionReason": "error"})", .status = 409, .detail = kForeign},
      {.name = "Number", .body = R"({"switchValue": 21})", .status = 400, .detail = kWrongKind},
      {.name = "UnknownWord", .body = R"({"switchValue": "chargingImmediateActionTime"})", .status = 400, .detail = kNotInRange},
      {.name = "NotConfigured", .body = R"({"switchValue": "once"})", .status = 400, .detail = kNotInRange, .lines = kSwitchRefused},
      {.name = "Nothing", .body = "{}", .status = 400, .detail = kNotInRange, .lines = kSwitchRefused},
      {.name = "WebSocketNotConfigured",
       .body = R"({"switchValue": "once"})",
       .status = 400,
       .detail = kNotInRange,
       .lines = kSwitchRefused,
       .overWebSocket = true},
  };
  return Table("batteryCareModesBcamActivation",
               R"([{"type": "batteryCareModesBcamActivation", "switchValue": "deactivated",
                    "switchValueConfiguration": ["activated", "deactivated"]}])",
               R"({"switchValue": "deactivated", "switchValueConfiguration": ["activated", "deactivated"]})", std::move(rows),
               SwitchLines(activated, End::gone));
}

/// The outermost check lets the four actions through, and posts without a value.
WriteTable StartStop() {
  const Switch stop{"immediateActionStartStopCharging", "30", "stopCharging", "20"};
  constexpr const char* kBody = R"({"switchValue": "stopCharging"})";
  std::vector<WriteRow> rows{{.name = "Stop",
                              .body = kBody,
                              .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 14 20 04 00 00 00 1e",
                              .lines = SwitchLines(stop),
                              .changes = kBody}};
  const struct {
    const char *name, *body, *word, *number, *sent;
  } starts[] = {{"Start", R"({"switchValue": "startImmediateCharging"})", "startImmediateCharging", "12",
                 "00 00 00 10 00 00 00 0c 20 01 00 00 00 0c 20 04 00 00 00 1e"},
                {"StartForATime", R"({"switchValue": "startImmediateActionTime"})", "startImmediateActionTime", "15",
                 "00 00 00 10 00 00 00 0c 20 01 00 00 00 0f 20 04 00 00 00 1e"},
                {"StartModeSelection", R"({"switchValue": "startChargeModeSelection"})", "startChargeModeSelection", "32",
                 "00 00 00 10 00 00 00 0c 20 01 00 00 00 20 20 04 00 00 00 1e"}};
  for (const auto& start : starts) {
    rows.push_back({.name = start.name,
                    .body = start.body,
                    .sent = start.sent,
                    .lines = SwitchLines({stop.type, stop.typeNumber, start.word, start.number}),
                    .changes = start.body});
  }
  for (const auto& more : std::vector<WriteRow>{
           {.name = "NoAction", .body = R"({"switchValue": "off"})", .status = 400, .detail = kNotInRange},
           {.name = "ActionOfNoList", .body = R"({"switchValue": "startImmediateActionSoc"})", .status = 400, .detail = kNotInRange},
           {.name = "Number", .body = R"({"switchValue": 20})", .status = 400, .detail = kNotInRange},
           {.name = "NoActionBeforeForeign", .body = R"({"aaa": 1, "switchValue": "off"})", .status = 400, .detail = kNotInRange},
           {.name = "ForeignWithAction", .body = R"({"aaa": 1, "switchValue": "stopCharging"})", .status = 409, .detail = kForeign},
           {.name = "ForeignAlone", .body = R"({"aaa": 1})", .status = 409, .detail = kForeign},
           {.name = "Nothing", .body = "{}", .status = 400, .detail = kNotInRange, .lines = kSwitchRefused},
           {.name = "WebSocketNoAction",
           .body = R"({"switchValue": "off"})",
           .status = 400,
           .detail = kNotInRange,
           .overWebSocket = true}}) {
    rows.push_back(more);
  }
  return Table("immediateActionStartStopCharging",
               R"([{"type": "immediateActionStartStopCharging", "switchValue": "noneOrImmediateActionStopped"}])",
               R"({"switchValue": "noneOrImmediateActionStopped"})", std::move(rows), SwitchLines(stop, End::gone));
}

/// A lock's outermost check lets two words through and nothing else. Its answer tells which report of the vehicle has made the control.
std::vector<WriteRow> LockRows(const Switch& unlocking, const char* sentUnlocking, const char* sentLocking, unsigned status,
                               const char* detail) {
  const Switch locking{unlocking.type, unlocking.typeNumber, "locking", "9"};
  constexpr const char* kUnlocking = R"({"switchValue": "unlocking"})";
  constexpr const char* kLocking = R"({"switchValue": "locking"})";
  return {
      {.name = "Unlocking", .body = kUnlocking, .sent = sentUnlocking, .lines = SwitchLines(unlocking), .changes = kUnlocking},
      {.name = "Locking", .body = kLocking, .sent = sentLocking, .lines = SwitchLines(locking), .changes = kLocking},
      {.name = "NoLockWord", .body = R"({"switchValue": "unlocked"})", .status = status, .detail = detail},
      {.name = "UnknownWord", .body = R"({"switchValue": "ajar"})", .status = status, .detail = detail},
      {.name = "Number", .body = R"({"switchValue": 10})", .status = status, .detail = detail},
      {.name = "Nothing", .body = "{}", .status = status, .detail = detail},
      {.name = "ForeignAlone", .body = R"({"aaa": 1})", .status = status, .detail = detail},
      {.name = "ForeignWithLockWord", .body = R"({"aaa": 1, "switchValue": "locking"})", .status = 409, .detail = kForeign},
      {.name = "WebSocketNoLockWord", .body = R"({"switchValue": "unlocked"})", .status = status, .detail = detail, .overWebSocket = true},
      {.name = "WebSocket",
       .body = kLocking,
       .sent = sentLocking,
       .lines = SwitchLines(locking),
       .changes = kLocking,
       .overWebSocket = true},
  };
}

WriteTable LockOfAPlug() {
  const Switch unlocking{"frontLeft1PlugLockState", "10", "unlocking", "10"};
  auto rows = LockRows(unlocking, "00 00 00 10 00 00 00 0c 20 01 00 00 00 0a 20 04 00 00 00 0a",
                       "00 00 00 10 00 00 00 0c 20 01 00 00 00 09 20 04 00 00 00 0a", 500, kInternal);
  return Table("frontLeft1PlugLockState", R"([{"type": "frontLeft1PlugLockState", "switchValue": "locked"}])",
               R"({"switchValue": "locked"})", std::move(rows), SwitchLines(unlocking, End::gone));
}

WriteTable LockOfAReport() {
  const Switch unlocking{"rearRight1FlapLockState", "26", "unlocking", "10"};
  auto rows = LockRows(unlocking, "00 00 00 10 00 00 00 0c 20 01 00 00 00 0a 20 04 00 00 00 1a",
                       "00 00 00 10 00 00 00 0c 20 01 00 00 00 09 20 04 00 00 00 1a", 400, kNotInRange);
  rows.push_back({.name = "LockWordNotConfigured",
                  .body = R"({"switchValue": "locking"})",
                  .status = 400,
                  .detail = kNotInRange,
                  .lines = kSwitchRefused,
                  .records = R"([{"type": "rearRight1FlapLockState", "switchValue": "locked", "switchValueConfiguration": ["unlocking"]}])",
                  .members = R"({"switchValue": "locked", "switchValueConfiguration": ["unlocking"]})"});
  return Table("rearRight1FlapLockState", R"([{"type": "rearRight1FlapLockState", "switchValue": "locked"}])",
               R"({"switchValue": "locked"})", std::move(rows), SwitchLines(unlocking, End::gone));
}

}  // namespace

std::vector<WriteTable> SwitchControlWrites() {
  return {BatteryCare(), StartStop(), LockOfAPlug(), LockOfAReport()};
}

}  // namespace system_test
