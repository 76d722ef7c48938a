#include "tests/system/write_rows.h"

namespace system_test {
namespace {

/// A type or a word with its number.
struct Numbered {
  std::string word, number;
};

Lines ViewLines(const Numbered& type, const Numbered& visibility, End end = End::answered) {
  const SetWords words{"[SomeIp][Zuva -> Someip] Updating the someip field with values received from zuva...",
                       "[SomeIp][Zuva -> Someip] Views set call ended.",
                       "[SomeIp][Zuva -> Someip] Views Set timeout.",
                       "[SomeIp][Zuva -> Someip] Views Set response received.",
                       "[SomeIp][Zuva -> Someip] Exception caught while setting a View in SomeIp: ",
                       "View"};
  return Lines{
             "[Zuva][Zuva -> SomeIp] View - Result for the payload validation checks: true!",
             "[Zuva][Zuva -> SomeIp] View - {Type - Content - Visibility} : {" + type.word + " - no_value - " + visibility.word + "}",
             "[CommMngr][Zuva -> SomeIp] Translated View object {type} " + type.word + " from zuva into {type} " + type.number +
                 " for someip...",
             "[CommMngr][Zuva -> SomeIp] Unable to map View {content} no_value from zuva (or View {content} was not updated in this "
             "request)",
             "[CommMngr][Zuva -> SomeIp] Translated View object {visibility} " + visibility.word + " from zuva into {visibility} " +
                 visibility.number + " for someip...",
             "[SomeIp][Zuva -> Someip] Received View object from ZUVA...",
             "[SomeIp][Zuva -> Someip] View {type}: " + type.number + ". Content {value}: 100000. Visibility value: " + visibility.number} +
         SetLines(words, end) +
         Lines{end == End::answered ? "[Zuva][Zuva -> SomeIp] View Success" : "[Zuva][Zuva -> SomeIp] View Internal error"};
}

const Numbered kPopup{"popup", "0"};
const Numbered kVisible{"requestedViewVisible", "1"};

const Lines kViewWithoutFields{"[Zuva][Zuva -> SomeIp] View - Result for the payload validation checks: false!",
                               "[Zuva][Zuva -> SomeIp] View Invalid params"};

std::vector<WriteRow> PopupRows() {
  constexpr const char* kSentVisible = "00 00 00 10 00 00 00 0c 20 00 00 00 00 00 20 02 00 00 00 01";
  return {
      {.name = "Visible",
       .body = R"({"visibility": "requestedViewVisible"})",
       .sent = kSentVisible,
       .lines = ViewLines(kPopup, kVisible),
       .changes = R"({"visibility": "requestedViewVisible"})"},
      {.name = "Obstructed",
       .body = R"({"visibility": "requestedViewObstructed"})",
       .sent = "00 00 00 10 00 00 00 0c 20 00 00 00 00 00 20 02 00 00 00 02",
       .lines = ViewLines(kPopup, {"requestedViewObstructed", "2"}),
       .changes = R"({"visibility": "requestedViewObstructed"})"},
      {.name = "AsItIs",
       .body = R"({"visibility": "newRequest"})",
       .sent = "00 00 00 10 00 00 00 0c 20 00 00 00 00 00 20 02 00 00 00 03",
       .lines = ViewLines(kPopup, {"newRequest", "3"})},
      {.name = "WithAnId",
       .body = R"({"id": "other", "visibility": "requestedViewVisible"})",
       .sent = kSentVisible,
       .lines = ViewLines(kPopup, kVisible),
       .changes = R"({"visibility": "requestedViewVisible"})"},
      {.name = "ErrorAnswer",
       .body = R"({"visibility": "noView"})",
       .sent = "00 00 00 10 00 00 00 0c 20 00 00 00 00 00 20 02 00 00 00 00",
       .lines = ViewLines(kPopup, {"noView", "0"}),
       .changes = R"({"visibility": "noView"})",
       .fault = R"({"error": 32})"},
      {.name = "Silence",
       .body = R"({"visibility": "requestedViewVisible"})",
       .status = 500,
       .detail = kInternal,
       .sent = kSentVisible,
       .lines = ViewLines(kPopup, kVisible, End::silent),
       .fault = R"("silent")"},
      {.name = "WebSocket",
       .body = R"({"visibility": "requestedViewVisible"})",
       .sent = kSentVisible,
       .lines = ViewLines(kPopup, kVisible),
       .changes = R"({"visibility": "requestedViewVisible"})",
       .overWebSocket = true},
      {.name = "Content", .body = R"({"content": "nothing"})", .status = 409, .detail = kForeign},
      {.name = "TypeFirst", .body = R"({"type": "popup", "visibility": 1})", .status = 409, .detail = kForeign},
      {.name = "TypeLast", .body = R"({"visibility": "requestedViewVisible", "zzz": 1})", .status = 409, .detail = kForeign},
      {.name = "Number", .body = R"({"visibility": 1})", .status = 400, .detail = kWrongKind},
      {.name = "UnknownWord", .body = R"({"visibility": "visible"})", .status = 400, .detail = kNotInRange},
      {.name = "Nothing", .body = "{}", .status = 400, .detail = "Bad Request", .lines = kViewWithoutFields},
      {.name = "IdAlone", .body = R"({"id": "other"})", .status = 400, .detail = "Bad Request", .lines = kViewWithoutFields},
      {.name = "WebSocketWithNothing",
       .body = "{}",
       .status = 400,
       .detail = "Bad Request",
       .lines = kViewWithoutFields,
       .overWebSocket = true},
  };
}

WriteTable View(const char* type, const char* records, const char* members, std::vector<WriteRow> rows, Lines whenGone) {
  return {.resource = "/ChargingManagementCore/views",
          .type = type,
          .field = "views",
          .received = "[SomeIp][SomeIp -> Zuva] Received notification regarding views..",
          .records = records,
          .members = members,
          .rows = std::move(rows),
          .whenGone = std::move(whenGone)};
}

const Numbered kTargetSoc{"immediateChargingOptionsTargetSoc", "0"};

Lines ValueLines(const std::string& value, const std::string& state, End end = End::answered, const Numbered& type = kTargetSoc) {
  const SetWords words{"[SomeIp] Updating the someip field with values received from zuva...",
                       "[SomeIp][Zuva -> Someip] ValueControl set call ended.",
                       "[SomeIp] ValueControls Set timeout",
                       "",
                       "[SomeIp] Exception caught while setting a ValueControl in SomeIp: ",
                       "ValueControl"};
  const bool hasState = state != "no_value";
  Lines lines{"[Zuva][Zuva -> SomeIp] ValueControl Result for the validation checks: true!",
              "[Zuva][Zuva -> SomeIp] {Type - Value - SpecialState} : {" + type.word + " - " + value + " - " + state + "}",
              "[CommMngr] Translated ValueControl object type " + type.word + " from zuva into type " + type.number + " for someip..."};
  if (hasState) {
    lines.emplace_back("[CommMngr] Translated ValueControl object specialState " + state + " from zuva into specialState 0 for someip...");
  }
  return lines +
         Lines{"[SomeIp] Received ValueControl object from ZUVA", "[SomeIp] ValueControl type: " + type.number +
                                                                      ". ValueControl value: " + value +
                                                                      ". ValueControl specialState: " + (hasState ? "0" : "100000")} +
         SetLines(words, end) +
         Lines{end == End::answered ? "[Zuva][Zuva -> SomeIp] ValueControl Success" : "[Zuva][Zuva -> SomeIp] ValueControl Internal error"};
}

const Lines kValueRefused{"[Zuva][Zuva -> SomeIp] ValueControl Result for the validation checks: false!",
                          "[Zuva][Zuva -> SomeIp] ValueControl Invalid range"};

constexpr const char* kStepsFromThree =
    R"([{"type": "immediateChargingOptionsTargetSoc", "currentValue": 40, "minValue": 3, "maxValue": 50, "resolution": 5}])";
constexpr const char* kMembersFromThree = R"({"currentValue": 40, "minValue": 3, "maxValue": 50, "resolution": 5})";

/// What the object check refuses, before any look at the object's own limits.
std::vector<WriteRow> WrongValueRows() {
  return {
      {.name = "UnknownFirst", .body = R"({"aaa": 1, "currentValue": 55})", .status = 409, .detail = kForeign},
      {.name = "UnknownLast", .body = R"({"currentValue": 55, "zzz": 1})", .status = 409, .detail = kForeign},
      {.name = "BadValueBeforeUnknown", .body = R"({"currentValue": 3001, "zzz": 1})", .status = 400, .detail = kNotInRange},
      {.name = "BadKindBeforeUnknown", .body = R"({"currentValue": "55", "zzz": 1})", .status = 400, .detail = kWrongKind},
      {.name = "Limit", .body = R"({"maxValue": 100})", .status = 409, .detail = kForeign},
      {.name = "Text", .body = R"({"currentValue": "55"})", .status = 400, .detail = kWrongKind},
      {.name = "Real", .body = R"({"currentValue": 55.0})", .status = 400, .detail = kWrongKind},
      {.name = "Null", .body = R"({"currentValue": null})", .status = 400, .detail = kWrongKind},
      {.name = "StateAsBool", .body = R"({"specialState": false})", .status = 400, .detail = kWrongKind},
      {.name = "Negative", .body = R"({"currentValue": -1})", .status = 400, .detail = kNotInRange},
      {.name = "AboveAll", .body = R"({"currentValue": 3001})", .status = 400, .detail = kNotInRange},
      {.name = "BeyondThirtyTwoBits", .body = R"({"currentValue": 4294967351})", .status = 400, .detail = kNotInRange},
      {.name = "UnknownState", .body = R"({"specialState": "on"})", .status = 400, .detail = kNotInRange},
      {.name = "StateDoesNotSaveTheValue",
       .body = R"({"currentValue": 3001, "specialState": "off"})",
       .status = 400,
       .detail = kNotInRange},
  };
}

/// What the object's own limits refuse.
std::vector<WriteRow> RefusedValueRows() {
  const auto refused = [](const char* name, const char* body) {
    return WriteRow{.name = name, .body = body, .status = 400, .detail = kNotInRange, .lines = kValueRefused};
  };
  std::vector<WriteRow> rows{
      refused("Below", R"({"currentValue": 15})"),        refused("Above", R"({"currentValue": 105})"),
      refused("BetweenSteps", R"({"currentValue": 57})"), refused("Nothing", "{}"),
      refused("IdAlone", R"({"id": "other"})"),
  };
  rows.push_back(refused("WebSocketAbove", R"({"currentValue": 105})"));
  rows.back().overWebSocket = true;
  for (const char* name : {"StateNotConfigured", "StateNotConfiguredWithGoodValue"}) {
    rows.push_back(refused(name, R"({"specialState": "off"})"));
    rows.back().records = R"([{"type": "immediateChargingOptionsTargetSoc", "currentValue": 80, "specialStateConfiguration": []}])";
    rows.back().members = R"({"currentValue": 80, "specialStateConfiguration": []})";
  }
  rows.back().body = R"({"currentValue": 55, "specialState": "off"})";
  rows.push_back(refused("StepsBeginAtZero", R"({"currentValue": 13})"));  // not at the minimum
  rows.back().records = kStepsFromThree;
  rows.back().members = kMembersFromThree;
  return rows;
}

std::vector<WriteRow> AcceptedValueRows() {
  constexpr const char* kSent55 = "00 00 00 10 00 00 00 0c 20 01 00 00 00 37 20 09 00 00 00 00";
  return {
      {.name = "Value",
       .body = R"({"currentValue": 55})",
       .sent = kSent55,
       .lines = ValueLines("55", "no_value"),
       .changes = R"({"currentValue": 55})"},
      {.name = "LowestValue",
       .body = R"({"currentValue": 20})",
       .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 14 20 09 00 00 00 00",
       .lines = ValueLines("20", "no_value"),
       .changes = R"({"currentValue": 20})"},
      {.name = "HighestValue",
       .body = R"({"currentValue": 100})",
       .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 64 20 09 00 00 00 00",
       .lines = ValueLines("100", "no_value"),
       .changes = R"({"currentValue": 100})"},
      {.name = "State",
       .body = R"({"specialState": "off"})",
       .sent = "00 00 00 10 00 00 00 0c 20 09 00 00 00 00 20 0a 00 00 00 00",
       .lines = ValueLines("100000", "off"),
       .changes = R"({"specialState": "off"})"},
      {.name = "StateLetsAValueOutsideThrough",
       .body = R"({"currentValue": 12, "specialState": "off"})",
       .sent = "00 00 00 16 00 00 00 12 20 01 00 00 00 0c 20 09 00 00 00 00 20 0a 00 00 00 00",
       .lines = ValueLines("12", "off"),
       .changes = R"({"currentValue": 12, "specialState": "off"})"},
      {.name = "WithoutLimitsAllOfTheModel",
       .body = R"({"currentValue": 3000})",
       .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 0b b8 20 09 00 00 00 00",
       .lines = ValueLines("3000", "no_value"),
       .changes = R"({"currentValue": 3000})",
       .records = R"([{"type": "immediateChargingOptionsTargetSoc", "currentValue": 80}])",
       .members = R"({"currentValue": 80})"},
      {.name = "StepsBeginAtZero",
       .body = R"({"currentValue": 15})",
       .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 0f 20 09 00 00 00 00",
       .lines = ValueLines("15", "no_value"),
       .changes = R"({"currentValue": 15})",
       .records = kStepsFromThree,
       .members = kMembersFromThree},
      {.name = "ErrorAnswer",
       .body = R"({"currentValue": 55})",
       .sent = kSent55,
       .lines = ValueLines("55", "no_value"),
       .changes = R"({"currentValue": 55})",
       .fault = R"({"error": 1})"},
      {.name = "Silence",
       .body = R"({"currentValue": 55})",
       .status = 500,
       .detail = kInternal,
       .sent = kSent55,
       .lines = ValueLines("55", "no_value", End::silent),
       .fault = R"("silent")"},
      {.name = "WebSocket",
       .body = R"({"currentValue": 55})",
       .sent = kSent55,
       .lines = ValueLines("55", "no_value"),
       .changes = R"({"currentValue": 55})",
       .overWebSocket = true},
  };
}

}  // namespace

std::vector<WriteTable> ViewWrites() {
  const Numbered care{"bcamScreen", "1"};
  const Numbered stations{"itSystemScreen", "2"};
  const auto accepted = [](const char* sent, const Numbered& type) {
    return std::vector<WriteRow>{{.name = "Visible",
                                  .body = R"({"visibility": "requestedViewVisible"})",
                                  .sent = sent,
                                  .lines = ViewLines(type, kVisible),
                                  .changes = R"({"visibility": "requestedViewVisible"})"}};
  };
  return {
      View("popup", R"([{"type": "popup", "content": "chargingInformationScreen", "visibility": "newRequest"}])",
           R"({"content": "chargingInformationScreen", "visibility": "newRequest"})", PopupRows(), ViewLines(kPopup, kVisible, End::gone)),
      View("bcamScreen", R"([{"type": "bcamScreen", "content": "bcamInformationScreen"}])", R"({"content": "bcamInformationScreen"})",
           accepted("00 00 00 10 00 00 00 0c 20 00 00 00 00 01 20 02 00 00 00 01", care), ViewLines(care, kVisible, End::gone)),
      View("itSystemScreen", R"([{"type": "itSystemScreen", "content": "itSystemPeInformationScreen"}])",
           R"({"content": "itSystemPeInformationScreen"})",
           accepted("00 00 00 10 00 00 00 0c 20 00 00 00 00 02 20 02 00 00 00 01", stations), ViewLines(stations, kVisible, End::gone))};
}

std::vector<WriteTable> ValueControlWrites() {
  auto rows = AcceptedValueRows();
  for (const auto& more : {WrongValueRows(), RefusedValueRows()}) rows.insert(rows.end(), more.begin(), more.end());
  const auto table = [](const char* type, const char* records, const char* members, std::vector<WriteRow> writes, Lines whenGone) {
    return WriteTable{.resource = "/ChargingManagementCore/valueControls",
                      .type = type,
                      .field = "valueControls",
                      .received = "[SomeIp][SomeIp -> Zuva] Received notification regarding valueControls..",
                      .records = records,
                      .members = members,
                      .rows = std::move(writes),
                      .whenGone = std::move(whenGone)};
  };
  // A client may write the navigation's target like any other: the vehicle gets what the navigation would have it sent.
  const Numbered navigation{"immediateChargingOptionsNavTargetSoc", "19"};
  return {table("immediateChargingOptionsTargetSoc",
                R"([{"type": "immediateChargingOptionsTargetSoc", "currentValue": 80, "minValue": 20, "maxValue": 100, "resolution": 5,
                     "specialStateConfiguration": ["off"]}])",
                R"({"currentValue": 80, "minValue": 20, "maxValue": 100, "resolution": 5, "specialStateConfiguration": ["off"]})",
                std::move(rows), ValueLines("55", "no_value", End::gone)),
          table("immediateChargingOptionsNavTargetSoc", R"([{"type": "immediateChargingOptionsNavTargetSoc", "currentValue": 70}])",
                R"({"currentValue": 70})",
                {{.name = "Value",
                  .body = R"({"currentValue": 0})",
                  .sent = "00 00 00 10 00 00 00 0c 20 01 00 00 00 00 20 09 00 00 00 13",
                  .lines = ValueLines("0", "no_value", End::answered, navigation),
                  .changes = R"({"currentValue": 0})"}},
                ValueLines("0", "no_value", End::gone, navigation))};
}

}  // namespace system_test
