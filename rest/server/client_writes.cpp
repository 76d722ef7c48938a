#include "rest/server/trov_zuva_server.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "ara/rest/ogm.h"
#include "rest/generated/zuva_server.h"

namespace trov::zuvaServer {
namespace {

namespace ogm = ara::rest::ogm;

using enums::SOMEIP_RESPONSE_TYPE;
using Kind = PostAnswer::Kind;

constexpr const char* kNoValue = "no_value";

constexpr PostRow kViewRow{
    .success = {.line = "[Zuva][Zuva -> SomeIp] View Success", .accepted = true},
    .invalid = {.line = "[Zuva][Zuva -> SomeIp] View Invalid params"},
    .failed = {.line = "[Zuva][Zuva -> SomeIp] View Internal error", .answer = kInternalError},
    .other = {.line = "[Zuva][Zuva -> SomeIp] View Failed due to invalid enum status"},
};
constexpr PostRow kSwitchControlRow{
    .success = {.line = "[Zuva][Zuva -> SomeIp] SwitchControl POST successful", .accepted = true},
    .invalid = {.line = "[Zuva][Zuva -> SomeIp] SwitchControl POST failed due to validation", .answer = kNotInRange},
    .failed = {.line = "[Zuva][Zuva -> SomeIp] SwitchControl POST failed due to someip update failure", .answer = kInternalError},
    .other = {.line = "[Zuva][Zuva -> SomeIp] SwitchControl POST failed"},
    .answersBeforeLog = true,
};
constexpr PostRow kValueControlRow{
    .success = {.line = "[Zuva][Zuva -> SomeIp] ValueControl Success", .accepted = true},
    .invalid = {.line = "[Zuva][Zuva -> SomeIp] ValueControl Invalid range", .answer = kNotInRange},
    .failed = {.line = "[Zuva][Zuva -> SomeIp] ValueControl Internal error", .answer = kInternalError},
    .other = {.line = "[Zuva][Zuva -> SomeIp] ValueControl Failed due to invalid enum status"},
};
constexpr PostRow kPastErrorRow{
    .success = {.line = "[Zuva][Zuva -> SomeIp] PastErrInfo Success", .accepted = true},
    .invalid = {.line = "[Zuva][Zuva -> SomeIp] PastErrInfo confirmedByUser field is missing from the payload.",
                .answer = {.kind = Kind::error, .text = "Bad Request: *confirmedByUser* field is missing", .code = 400}},
    .failed = {.line = "[Zuva][Zuva -> SomeIp] PastErrInfo Internal error", .answer = kInternalError},
    .other = {.line = "[Zuva][Zuva -> SomeIp] PastErrInfo Failed due to invalid enum status"},
};
// Never accepted: the framework writes to no reset object, and the client hears 202 through the same door as an error.
constexpr PostRow kResetRow{
    .success = {.line = "[Zuva][Zuva -> SomeIp] ResetToFactory Accepted", .answer = {.kind = Kind::error, .text = "Accepted", .code = 202}},
    .invalid = {.line = "[Zuva][Zuva -> SomeIp] ResetToFactory wrong value in the payload.", .answer = kNotInRange},
    .failed = {.line = "[Zuva][Zuva -> SomeIp] ResetToFactory Internal error", .answer = kInternalError},
    .other = {.line = "[Zuva][Zuva -> SomeIp] ResetToFactory Failed due to invalid enum status"},
};

/// The posted value, none if the field is missing or of another kind.
template <class T>
Opt<typename T::ValueType> Posted(const ogm::Object& posted, std::string_view name) {
  const ogm::Field* const field = posted.Find(name);
  if (!field || !field->HasValue() || field->GetValue().GetType() != T::kKind) return {};
  return static_cast<const T&>(field->GetValue()).GetValue();
}

bool Contains(const std::vector<std::string>& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// Whether the list that the vehicle sent allows the word; without a list every word goes.
bool IsConfigured(const zuva::server::ModelElement& object, std::string_view list, const std::string& word) {
  const auto words = object.Read<ogm::Array>(list);
  if (!words) return true;
  const auto values = (*words)->GetValues();
  return std::any_of(values.begin(), values.end(), [&](const ogm::Value& value) {
    return value.GetType() == ogm::Kind::String && static_cast<const ogm::String&>(value).GetValue() == word;
  });
}

std::string_view TextOf(const Word& word) {
  return word.has_value() ? std::string_view{word.value()} : std::string_view{kNoValue};
}

}  // namespace

template <class T>
void TROVZuVaServer::Wrap(zuva::ServerXObject& object, PostHandler<T> handler, const PostRow& row) {
  object.SetPreUpdateCallback([this, handler, &row, check = object.GetPreUpdateCallback()](
                                  std::shared_ptr<zuva::BaseXObject> target, const ogm::Object& posted, zuva::ServerReply& reply) {
    if (!check(target, posted, reply)) return false;
    const PostStatus status = (this->*handler)(posted, std::static_pointer_cast<T>(std::move(target)));
    return Conclude(status, row, logger_, reply);
  });
}

void TROVZuVaServer::Guard(zuva::ServerXObject& object, PostCheck check, bool expected, const PostAnswer& answer) {
  object.SetPreUpdateCallback([this, check, expected, answer, next = object.GetPreUpdateCallback()](
                                  std::shared_ptr<zuva::BaseXObject> target, const ogm::Object& posted, zuva::ServerReply& reply) {
    if ((this->*check)(posted) == expected) return next(std::move(target), posted, reply);
    Send(answer, reply);
    return false;
  });
}

void TROVZuVaServer::RegisterPreUpdateCallBacks() {
  SetPreupdateCallbacks(Server().GetChargingManagementCoreValueControls()->GetValueControlObjects());
  for (const char* const view : {"popup", "bcamInformationScreen", "bcamInitialInformationScreen", "itSystemScreen"}) {
    SetPreupdateCallbacks(viewObjectMap_.at(view));
  }
  SetPreupdateCallbacks(Server().GetChargingManagementCoreSwitchControls()->GetSwitchControlObjects());
  SetPreupdateCallbacks(Server().GetChargingManagementCorePastErrorInformation()->GetPastErrorInformationObjects());
  SetPreupdateCallbacks(Server().GetFactoryResetResets()->GetResetObjects());
}

void TROVZuVaServer::SetPreupdateCallbacks(const Objects<ValueControlObject>& objects) {
  for (const auto& object : objects) Wrap(*object, &TROVZuVaServer::ValueControl_POSThandler, kValueControlRow);
}

void TROVZuVaServer::SetPreupdateCallbacks(const std::shared_ptr<ViewObject>& object) {
  Wrap(*object, &TROVZuVaServer::View_POSThandler, kViewRow);
}

void TROVZuVaServer::SetPreupdateCallbacks(const Objects<SwitchControlObject>& objects) {
  for (const auto& object : objects) InitSetup(object);
  const auto startStop = std::find_if(objects.begin(), objects.end(),
                                      [](const auto& object) { return object->HasWord("type", "immediateActionStartStopCharging"); });
  if (startStop != objects.end()) Guard(**startStop, &TROVZuVaServer::Startstopcharging_POSThandler, false, kNotInRange);
}

void TROVZuVaServer::SetPreupdateCallbacks(const Objects<PastErrorInformationObject>& objects) {
  for (const auto& object : objects) Wrap(*object, &TROVZuVaServer::PastErrInfo_POSThandler, kPastErrorRow);
}

void TROVZuVaServer::SetPreupdateCallbacks(const Objects<ResetObject>& objects) {
  for (const auto& object : objects) Wrap(*object, &TROVZuVaServer::ResetFactory_POSThandler, kResetRow);
}

void TROVZuVaServer::InitSetup(const std::shared_ptr<SwitchControlObject>& object) {
  Wrap(*object, &TROVZuVaServer::SwitchControl_POSThandler, kSwitchControlRow);
}

template <class Request>
PostStatus TROVZuVaServer::Ask(std::string_view name, Request&& request) const {
  const auto mediator = mediator_.Get();
  const auto response = mediator ? request(*mediator) : SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return Evaluate_SetStatus(name, response) ? POST_SUCCESS : POST_INTERNAL_ERROR;
}

PostStatus TROVZuVaServer::View_POSThandler(const ogm::Object& posted, std::shared_ptr<ViewObject> object) {
  const Word content = Posted<ogm::String>(posted, "content");
  const Word visibility = Posted<ogm::String>(posted, "visibility");
  const bool valid = visibility.has_value() || content.has_value();
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] View - Result for the payload validation checks: " << valid << "!";
  if (!valid) return POST_INVALID;
  const auto type = object->GetWord("type");
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] View - {Type - Content - Visibility} : {" << type << " - " << TextOf(content) << " - "
                    << TextOf(visibility) << "}";
  return Ask("View", [&](auto& mediator) { return mediator.TellSomeIpToUpdate_Views(type, content, visibility); });
}

PostStatus TROVZuVaServer::SwitchControl_POSThandler(const ogm::Object& posted, std::shared_ptr<SwitchControlObject> object) {
  const Word value = Posted<ogm::String>(posted, "switchValue");
  const bool valid = value.has_value() && Validate_SwitchControl(*object, value.value());
  PostStatus status = POST_INVALID;
  if (valid) {
    const auto type = object->GetType();
    logger_.LogInfo() << "[Zuva] Type - SwitchValue: " << type << " - " << value.value();
    status = Ask("SwitchValue", [&](auto& mediator) { return mediator.TellSomeIpToUpdate_SwitchControls(type, value); });
  }
  logger_.LogInfo() << "[Zuva] Result for the switchcontrol validation checks: " << valid << "!";
  return status;
}

PostStatus TROVZuVaServer::ValueControl_POSThandler(const ogm::Object& posted, std::shared_ptr<ValueControlObject> object) {
  Opt<std::uint32_t> value;
  bool valid = false;
  const auto number = Posted<ogm::Int>(posted, "currentValue");
  const bool fits = !number.has_value() || std::in_range<std::uint32_t>(number.value());
  if (number.has_value() && fits) {
    value = static_cast<std::uint32_t>(number.value());
    valid = Validate_ValueControl(*object, value.value());
  }
  const Word specialState = Posted<ogm::String>(posted, "specialState");
  // A special state decides alone: the check of the value no longer counts, unless the vehicle's type cannot hold it.
  if (specialState.has_value()) {
    valid = fits && IsConfigured(*object, "specialStateConfiguration", specialState.value());
  }
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] ValueControl Result for the validation checks: " << valid << "!";
  if (!valid) return POST_INVALID;
  const auto type = object->GetWord("type");
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] {Type - Value - SpecialState} : {" << type << " - " << value.value_or(kAbsentNumber) << " - "
                    << TextOf(specialState) << "}";
  return Ask("ValueControl", [&](auto& mediator) { return mediator.TellSomeIpToUpdate_ValueControls(type, value, specialState); });
}

PostStatus TROVZuVaServer::PastErrInfo_POSThandler(const ogm::Object& posted, std::shared_ptr<PastErrorInformationObject> object) {
  const auto confirmed = Posted<ogm::Bool>(posted, "confirmedByUser");
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] PastErrorInformation - Result for the payload_exists_check checks: " << confirmed.has_value()
                    << "!";
  if (!confirmed.has_value()) return POST_INVALID;
  const auto type = object->GetWord("type");
  logger_.LogInfo() << "[Zuva][Zuva -> SomeIp] PastErrorInformation - {Type - ConfirmedByUser} : {" << type << " - " << confirmed.value()
                    << "}";
  return Ask("PastErrorInformation", [&](auto& mediator) { return mediator.TellSomeIpToUpdate_pastErrorInformation(type, confirmed); });
}

PostStatus TROVZuVaServer::ResetFactory_POSThandler(const ogm::Object& posted, std::shared_ptr<zuva::BaseXObject>) {
  const auto value = Posted<ogm::Bool>(posted, "isFactoryDefault");
  if (!value.has_value()) return POST_SUCCESS;  // nothing is asked for; the object check does not let this through
  logger_.LogInfo() << "[Zuva] Type - resetDataValue: "
                    << " - " << static_cast<int>(value.value());
  if (!value.value()) return POST_INVALID;  // a client can ask for the reset only, not for its undoing
  return Ask("ResetToFactoryData", [](auto& mediator) { return mediator.TellSomeIpToUpdate_ResetStatus(Word{"origin"}); });
}

// Both come before the object check: a value that is no text at all is in neither list.
bool TROVZuVaServer::Startstopcharging_POSThandler(const ogm::Object& posted) const {
  const Word value = Posted<ogm::String>(posted, "switchValue");
  return posted.HasField("switchValue") && !(value.has_value() && Contains(actionWords_, value.value()));
}

bool TROVZuVaServer::Plugflaplockstate_POSThandler(const ogm::Object& posted) const {
  const Word value = Posted<ogm::String>(posted, "switchValue");
  return value.has_value() && Contains(lockWords_, value.value());
}

bool TROVZuVaServer::Validate_SwitchControl(const SwitchControlObject& object, const std::string& value) const {
  return IsConfigured(object, "switchValueConfiguration", value);
}

bool TROVZuVaServer::Validate_ValueControl(const ValueControlObject& object, std::uint32_t value) const {
  const auto fields = object.ToOGM();  // a copy, so that the limits are those of one update of the vehicle
  const auto minimum = Posted<ogm::Int>(*fields, "minValue").value_or(0);
  const auto maximum = Posted<ogm::Int>(*fields, "maxValue").value_or(3000);
  if (value < minimum || value > maximum) return false;
  const auto resolution = Posted<ogm::Int>(*fields, "resolution");
  if (!resolution) return true;
  return *resolution != 0 && value % *resolution == 0;  // of the value itself, not of its distance from the minimum
}

bool TROVZuVaServer::Evaluate_SetStatus(std::string_view name, SOMEIP_RESPONSE_TYPE response) const {
  const auto line = [&](std::string_view text) { logger_.LogInfo() << "[Zuva][Zuva -> Someip] " << name << text; };
  switch (response) {
    case SOMEIP_RESPONSE_TYPE::SET_SUCCESS:
      line(" - Set response received.");
      return true;
    case SOMEIP_RESPONSE_TYPE::SET_DATA_MISMATCH:
      line(" - Response data does not match. Not implemented.");
      return false;
    case SOMEIP_RESPONSE_TYPE::SET_TIMEOUT:
      line(" - Response not received from the setter in due time.");
      return false;
    case SOMEIP_RESPONSE_TYPE::SET_ERROR:
      line(" - Error while setting values on the someip.");
      return false;
  }
  logger_.LogInfo() << "[Zuva][Zuva -> Someip] Set Status Case unknown. Returning false.";
  return false;
}

}  // namespace trov::zuvaServer
