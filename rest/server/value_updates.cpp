#include "rest/server/trov_zuva_server.h"

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "rest/generated/zuva_server.h"
#include "rest/server/element_update.h"

namespace trov::zuvaServer {
namespace {

using zuva::server::charging_management_core::ImmediateChargingOptionObject;
using zuva::server::charging_management_core::ValueControlObject;

constexpr ErrorLines kValueControlLines{
    .domain = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating valueControl object: ",
    .other = "[ZuVa] Unknown exception caught while updating valueControl object.",
};
constexpr ErrorLines kValueIndicationLines{
    .domain = "[ZuVa] Domain error exception caught while updating valueIndication object: ",
    .other = "[ZuVa] Unknown exception caught while updating valueIndication object.",
};
constexpr ErrorLines kChargingProcessLines{
    .domain = "[ZuVa] Domain error exception caught while updating ChargingProcessInformation object: ",
    .other = "[ZuVa] Unknown exception caught while updating ChargingProcessInformation object.",
};
constexpr ErrorLines kBidirectionalLines{
    .domain = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating BidirectionalChargingModes object: ",
    .other = "[ZuVa] Unknown exception caught while updating BidirectionalChargingModes object.",
};

/// The field of each member of a tuple. The first member is the key.
template <class Tuple>
using Fields = std::array<std::string_view, std::tuple_size_v<Tuple>>;

constexpr Fields<types::ValueControlsMappedTuple> kValueControlFields{
    "type",
    "currentValue",
    "minValue",
    "maxValue",
    "unitPercent",
    "unitDistance",
    "unitTime",
    "resolution",
    "restrictionReason",
    "specialState",
    "specialStateConfiguration",
};
constexpr std::size_t kSpecialStateConfiguration = 10;
constexpr Fields<types::ValueIndicationsMappedTuple> kValueIndicationFields{
    "type",     "currentValue", "maxValue",  "minValue",   "currentTimeDateValue", "unitPercent",
    "unitTime", "unitSpeed",    "unitPower", "unitEnergy", "restrictionReason",
};
constexpr Fields<types::ChargingProcessInformationMappedTuple> kChargingProcessFields{
    "type",
    "currentChargeState",
    "chargeBulkThreshold",
    "chargeMode",
    "profileChargeReason",
    "chargeType",
    "chargingScenario",
    "activeTargetSoc",
    "chargeTimeDisplay",
    "evseid",
    "chargeRateCuteness",
};
constexpr std::size_t kEvseid = 9;
constexpr Fields<types::BidirectionalChargingModesMappedTuple> kBidirectionalFields{
    "type",
    "information",
    "notification",
    "chargingMode",
    "operatingHoursThreshold",
    "numbersOfCyclesThreshold",
    "amountOfEnergyThreshold",
    "quotaThreshold",
};

/// Sets every member but the key, in their order.
template <class Tuple, std::size_t... I>
void SetMembers(ElementUpdate& update, const Fields<Tuple>& fields, const Tuple& values, std::index_sequence<I...>) {
  (update.Set(fields[I + 1], std::get<I + 1>(values)), ...);
}

template <class Tuple>
void UpdateMembers(zuva::ServerResource& resource, const Fields<Tuple>& fields, const Tuple& values, const ErrorLines& lines,
                   const ara::log::Logger& logger) {
  UpdateByType(resource, std::get<0>(values), lines, logger, [&](ElementUpdate& update) {
    SetMembers(update, fields, values, std::make_index_sequence<std::tuple_size_v<Tuple> - 1>{});
  });
}

}  // namespace

void TROVZuVaServer::Update_ValueControls(types::ValueControlsMappedTuple&& control) {
  // "off" is the only special state that clients know: any list of the vehicle's that is not empty stands for it.
  if (auto& states = std::get<kSpecialStateConfiguration>(control); states.has_value() && !states.value().empty()) {
    states = std::vector<std::string>{"off"};
  }
  UpdateMembers(*Server().GetChargingManagementCoreValueControls(), kValueControlFields, control, kValueControlLines, logger_);
}

void TROVZuVaServer::Update_valueIndications(types::ValueIndicationsMappedTuple&& indication) {
  if (!std::get<0>(indication).has_value()) return;
  UpdateMembers(*Server().GetChargingManagementCoreValueIndications(), kValueIndicationFields, indication, kValueIndicationLines, logger_);
}

void TROVZuVaServer::Update_chargingProcessInformation(types::ChargingProcessInformationMappedTuple&& process) {
  if (!std::get<0>(process).has_value()) return;
  if (auto& evseid = std::get<kEvseid>(process); evseid.has_value() && evseid.value().empty()) evseid.reset();  // the same as none
  UpdateMembers(*Server().GetChargingManagementCoreChargingProcessInformation(), kChargingProcessFields, process, kChargingProcessLines,
                logger_);
}

void TROVZuVaServer::Update_BidirectionalChargingModes(types::BidirectionalChargingModesMappedTuple&& mode) {
  UpdateMembers(*Server().GetChargingManagementCoreBidirectionalChargingModes(), kBidirectionalFields, mode, kBidirectionalLines, logger_);
}

void TROVZuVaServer::Update_NavTargetSoc(const std::uint8_t& targetSoc) {
  const auto option = FindByType<ImmediateChargingOptionObject>(*Server().GetChargingManagementCoreImmediateChargingOptions(),
                                                                Word{"immediateChargingOption"});
  const auto control = option ? std::static_pointer_cast<ValueControlObject>(option->FindEmbedded("navTargetSoc")) : nullptr;
  if (!control) {
    logger_.LogInfo() << "[ZuVa][RBEC -> Zuva] Can't find navtargetsoc object. Exiting method.";
    return;
  }
  control->SetCurrentValue(targetSoc);
}

}  // namespace trov::zuvaServer
