#include "tests/system/write_rows.h"

namespace system_test {
namespace {

Lines PastErrorLines(const std::string& confirmed, End end = End::answered) {
  const SetWords words{"[SomeIp][Zuva -> Someip] Updating the someip field with values received from zuva...",
                       "[SomeIp][Zuva -> Someip] PastErrorInformation set call ended.",
                       "[SomeIp][Zuva -> Someip] PastErrorInformation Set timeout.",
                       "[SomeIp][Zuva -> Someip] PastErrorInformation Set response received.",
                       "[SomeIp][Zuva -> Someip] Exception caught while setting a pastErrorInformation in SomeIp: ",
                       "PastErrorInformation"};
  return Lines{"[Zuva][Zuva -> SomeIp] PastErrorInformation - Result for the payload_exists_check checks: true!",
               "[Zuva][Zuva -> SomeIp] PastErrorInformation - {Type - ConfirmedByUser} : {pastErrorInformation2 - " + confirmed + "}",
               "[CommMngr][Zuva -> SomeIp] Translated pastErrorInformation object {type} pastErrorInformation2 from zuva into {type} 1 for "
               "someip...",
               "[SomeIp][Zuva -> Someip] Received pastErrorInformation object from ZUVA...",
               "[SomeIp][Zuva -> Someip] PastErrorInformation {type}: 1. {confirmedByUser}: " + confirmed} +
         SetLines(words, end) +
         Lines{end == End::answered ? "[Zuva][Zuva -> SomeIp] PastErrInfo Success" : "[Zuva][Zuva -> SomeIp] PastErrInfo Internal error"};
}

std::vector<WriteRow> PastErrorRows() {
  constexpr const char* kConfirmed = R"({"confirmedByUser": true})";
  constexpr const char* kSentConfirmed = "00 00 00 0d 00 00 00 09 20 00 00 00 00 01 00 03 01";
  constexpr const char* kMissing = "Bad Request: *confirmedByUser* field is missing";
  const Lines refused{"[Zuva][Zuva -> SomeIp] PastErrorInformation - Result for the payload_exists_check checks: false!",
                      "[Zuva][Zuva -> SomeIp] PastErrInfo confirmedByUser field is missing from the payload."};
  return {
      {.name = "Confirmed", .body = kConfirmed, .sent = kSentConfirmed, .lines = PastErrorLines("true"), .changes = kConfirmed},
      {.name = "NotConfirmed",
       .body = R"({"confirmedByUser": false})",
       .sent = "00 00 00 0d 00 00 00 09 20 00 00 00 00 01 00 03 00",
       .lines = PastErrorLines("false")},
      {.name = "ErrorAnswer",
       .body = kConfirmed,
       .sent = kSentConfirmed,
       .lines = PastErrorLines("true"),
       .changes = kConfirmed,
       .fault = R"({"error": 1})"},
      {.name = "Silence",
       .body = kConfirmed,
       .status = 500,
       .detail = kInternal,
       .sent = kSentConfirmed,
       .lines = PastErrorLines("true", End::silent),
       .fault = R"("silent")"},
      {.name = "WebSocket",
       .body = kConfirmed,
       .sent = kSentConfirmed,
       .lines = PastErrorLines("true"),
       .changes = kConfirmed,
       .overWebSocket = true},
      {.name = "Foreign", .body = R"({"confirmedByUser": true, "value": "failedByPe"})", .status = 409, .detail = kForeign},
      {.name = "Text", .body = R"({"confirmedByUser": "true"})", .status = 400, .detail = kWrongKind},
      {.name = "Number", .body = R"({"confirmedByUser": 1})", .status = 400, .detail = kWrongKind},
      {.name = "Nothing", .body = "{}", .status = 400, .detail = kMissing, .lines = refused},
      {.name = "IdAlone", .body = R"({"id": "other"})", .status = 400, .detail = kMissing, .lines = refused},
      {.name = "WebSocketNothing", .body = "{}", .status = 400, .detail = kMissing, .lines = refused, .overWebSocket = true},
  };
}

Lines ResetLines(End end = End::answered) {
  // The set tells of views, as it always has.
  const SetWords words{"[SomeIp][Zuva -> Someip] Updating the someip field with values received from zuva...",
                       "[SomeIp][Zuva -> Someip] Views set call ended.",
                       "[SomeIp][Zuva -> Someip] Views Set timeout.",
                       "[SomeIp][Zuva -> Someip] Views Set response received.",
                       "[SomeIp][Zuva -> Someip] Exception caught while setting a ResetToFactoryData in SomeIp: ",
                       "ResetToFactoryData"};
  return Lines{"[Zuva] Type - resetDataValue:  - 1",
               "[CommMngr] Translated ResetToFactoryData object  reset origin from zuva into type 0 for someip...",
               "[SomeIp][Zuva -> Someip] Received FactoryReset object from ZUVA...",
               "[SomeIp][Zuva -> Someip] FactoryReset {resetToFactoryData}: 0"} +
         SetLines(words, end) +
         Lines{end == End::answered ? "[Zuva][Zuva -> SomeIp] ResetToFactory Accepted"
                                    : "[Zuva][Zuva -> SomeIp] ResetToFactory Internal error"};
}

/// The object is the vehicle's alone: it changes when the vehicle tells so, never by the write itself.
std::vector<WriteRow> ResetRows() {
  constexpr const char* kReset = R"({"isFactoryDefault": true})";
  constexpr const char* kSentReset = "00 00 00 0a 00 00 00 06 20 01 00 00 00 00";
  constexpr const char* kMissing = "Conflict: required parameter(s) missing";
  const Lines refused{"[Zuva] Type - resetDataValue:  - 0", "[Zuva][Zuva -> SomeIp] ResetToFactory wrong value in the payload."};
  return {
      {.name = "Reset",
       .body = kReset,
       .status = 202,
       .detail = "Accepted",
       .sent = kSentReset,
       .lines = ResetLines(),
       .changes = R"({"isFactoryDefault": true})"},
      {.name = "ErrorAnswer",
       .body = kReset,
       .status = 202,
       .detail = "Accepted",
       .sent = kSentReset,
       .lines = ResetLines(),
       .fault = R"({"error": 1})"},
      {.name = "Silence",
       .body = kReset,
       .status = 500,
       .detail = kInternal,
       .sent = kSentReset,
       .lines = ResetLines(End::silent),
       .fault = R"("silent")"},
      {.name = "WebSocket",
       .body = kReset,
       .status = 202,
       .detail = "Accepted",
       .sent = kSentReset,
       .lines = ResetLines(),
       .changes = R"({"isFactoryDefault": true})",
       .overWebSocket = true},
      {.name = "Undo", .body = R"({"isFactoryDefault": false})", .status = 400, .detail = kNotInRange, .lines = refused},
      {.name = "WithAnId", .body = R"({"id": "other", "isFactoryDefault": false})", .status = 400, .detail = kNotInRange, .lines = refused},
      {.name = "Foreign", .body = R"({"isFactoryDefault": true, "category": "wifi"})", .status = 409, .detail = kForeign},
      {.name = "ForeignFirst", .body = R"({"aaa": 1, "isFactoryDefault": "true"})", .status = 409, .detail = kForeign},
      {.name = "MissingBeforeForeign", .body = R"({"category": "wifi"})", .status = 409, .detail = kMissing},
      {.name = "Text", .body = R"({"isFactoryDefault": "true"})", .status = 400, .detail = kWrongKind},
      {.name = "Nothing", .body = "{}", .status = 409, .detail = kMissing},
      {.name = "IdAlone", .body = R"({"id": "other"})", .status = 409, .detail = kMissing},
      {.name = "WebSocketNothing", .body = "{}", .status = 409, .detail = kMissing, .overWebSocket = true},
  };
}

}  // namespace

std::vector<WriteTable> ConfirmationWrites() {
  return {{.resource = "/ChargingManagementCore/pastErrorInformation",
           .type = "pastErrorInformation2",
           .field = "pastErrorInformation",
           .received = "[SomeIp][SomeIp -> Zuva] Received notification regarding pastErrorInformation...",
           .records = R"([{"type": "pastErrorInformation2", "value": "failedByPe", "confirmedByUser": false}])",
           .members = R"({"value": "failedByPe", "confirmedByUser": false})",
           .rows = PastErrorRows(),
           .whenGone = PastErrorLines("true", End::gone)},
          {.resource = "/FactoryReset/resets",
           .type = "",
           .field = "resetToFactoryData",
           .received = "[SomeIp][SomeIp -> Zuva] Received notification regarding factoryResetData..",
           .records = R"([{"resetToFactoryData": "notOrigin"}])",
           .members = R"({"category": "eCharging", "isFactoryDefault": false})",
           .rows = ResetRows(),
           .whenGone = ResetLines(End::gone)}};
}

}  // namespace system_test
