#include <boost/variant/get.hpp>

#include "someip/cmc/get_texts.h"
#include "someip/cmc/typed_records.h"
#include "someip/listening.h"

// The vehicle is asked: fifteen gets, one algorithm.
namespace trov::chargingManagementCoreListener {
namespace {

constexpr someip::FetchTexts kFetchTexts{.notFound = "[SomeIp][SomeIpGET -> Zuva] Cant get... Service not found...",
                                         .entered = "[SomeIp][SomeIpGET -> Zuva] Entered fetch here...",
                                         .getting = "[SomeIp][SomeIpGET -> Zuva] Getting data from the someip server...",
                                         .lost = "[SomeIp][SomeIpGET -> Zuva] Cant get, service lost - ",
                                         .exception = "[SomeIp][SomeIpGET -> Zuva] Exception - ",
                                         .unknown = "[SomeIp][SomeIpGET -> Zuva] Exception - Unknown"};

constexpr std::chrono::milliseconds kGetTimeout{2000};

}  // namespace

void ChargingManagementCoreListener::FetchData() {
  someip::Fetch(*proxyWrapper, logger, kFetchTexts, [this] {
    for (const auto resource : kGetOrder) ProcessGet(resource, kGetTimeout);
  });
}

void ChargingManagementCoreListener::ProcessGet(SOMEIP_RESOURCE_TYPE resource, const std::chrono::milliseconds& timeout) {
  // clang-format off
  switch (resource) {
    case SOMEIP_RESOURCE_TYPE::ChargingPlugs:                  return ProcessGet_ChargingPlugs(timeout);
    case SOMEIP_RESOURCE_TYPE::ValueControls:                  return ProcessGet_ValueControls(timeout);
    case SOMEIP_RESOURCE_TYPE::SwitchControls:                 return ProcessGet_SwitchControls(timeout);
    case SOMEIP_RESOURCE_TYPE::Views:                          return ProcessGet_Views(timeout);
    case SOMEIP_RESOURCE_TYPE::NotificationMarkers:            return ProcessGet_NotificationMarkers(timeout);
    case SOMEIP_RESOURCE_TYPE::OruUpdateApprovals:             return ProcessGet_OruUpdateApprovals(timeout);
    case SOMEIP_RESOURCE_TYPE::Notifications:                  return ProcessGet_Notifications(timeout);
    case SOMEIP_RESOURCE_TYPE::FactoryResetData:               return ProcessGet_Resets(timeout);
    case SOMEIP_RESOURCE_TYPE::chargingProcessInformation:     return ProcessGet_ChargingProcessInformation(timeout);
    case SOMEIP_RESOURCE_TYPE::valueIndications:               return ProcessGet_ValueIndications(timeout);
    case SOMEIP_RESOURCE_TYPE::pastErrorInformation:           return ProcessGet_PastErrorInformation(timeout);
    case SOMEIP_RESOURCE_TYPE::BatteryCareModes:               return ProcessGet_BatteryCareModes(timeout);
    case SOMEIP_RESOURCE_TYPE::BidirectionalChargingModes:     return ProcessGet_BidirectionalChargingModes(timeout);
    case SOMEIP_RESOURCE_TYPE::BatteryPreconditionings:        return ProcessGet_BatteryPreconditionings(timeout);
    case SOMEIP_RESOURCE_TYPE::BatteryPreconditioningEnergies: return ProcessGet_BatteryPreconditioningEnergies(timeout);
    case SOMEIP_RESOURCE_TYPE::TargetSocChargings: break;  // the other service's
  }
  // clang-format on
}

// A time-out and an honest empty answer look the same here, on purpose: absence in a get is no deletion.
template <class R>
void ChargingManagementCoreListener::ProcessGet(const std::chrono::milliseconds& timeout) {
  constexpr const auto& row = kGot<R>;
  const auto result = proxyWrapper->SomeIp_Get(R::id, timeout);
  const auto& records = boost::get<typename R::Records>(result);
  if (records.empty()) {
    logger.LogInfo() << "[SomeIp][SomeIpGET -> Zuva] Get failed for " << row.word << " OR 0 elements retrieved...";
    return;
  }
  logger.LogInfo() << "[SomeIp][SomeIpGET -> Zuva] There are " << records.size() << " elements in the " << row.word << " Get vector...";
  for (const auto& record : records) PassOnTyped(record, row.noType);
}

// clang-format off
void ChargingManagementCoreListener::ProcessGet_ChargingPlugs(const std::chrono::milliseconds& timeout) { ProcessGet<ChargingPlugs>(timeout); }
void ChargingManagementCoreListener::ProcessGet_ChargingProcessInformation(const std::chrono::milliseconds& timeout) { ProcessGet<ChargingProcessInformation>(timeout); }
void ChargingManagementCoreListener::ProcessGet_NotificationMarkers(const std::chrono::milliseconds& timeout) { ProcessGet<NotificationMarkers>(timeout); }
void ChargingManagementCoreListener::ProcessGet_Notifications(const std::chrono::milliseconds& timeout) { ProcessGet<Notifications>(timeout); }
void ChargingManagementCoreListener::ProcessGet_OruUpdateApprovals(const std::chrono::milliseconds& timeout) { ProcessGet<OruUpdateApprovals>(timeout); }
void ChargingManagementCoreListener::ProcessGet_PastErrorInformation(const std::chrono::milliseconds& timeout) { ProcessGet<PastErrorInformation>(timeout); }
void ChargingManagementCoreListener::ProcessGet_SwitchControls(const std::chrono::milliseconds& timeout) { ProcessGet<SwitchControls>(timeout); }
void ChargingManagementCoreListener::ProcessGet_ValueIndications(const std::chrono::milliseconds& timeout) { ProcessGet<ValueIndications>(timeout); }
void ChargingManagementCoreListener::ProcessGet_Views(const std::chrono::milliseconds& timeout) { ProcessGet<Views>(timeout); }
void ChargingManagementCoreListener::ProcessGet_Resets(const std::chrono::milliseconds& timeout) { ProcessGet<FactoryResetData>(timeout); }
void ChargingManagementCoreListener::ProcessGet_ValueControls(const std::chrono::milliseconds& timeout) { ProcessGet<ValueControls>(timeout); }
void ChargingManagementCoreListener::ProcessGet_BidirectionalChargingModes(const std::chrono::milliseconds& timeout) { ProcessGet<BidirectionalChargingModes>(timeout); }
void ChargingManagementCoreListener::ProcessGet_BatteryCareModes(const std::chrono::milliseconds& timeout) { ProcessGet<BatteryCareModes>(timeout); }
void ChargingManagementCoreListener::ProcessGet_BatteryPreconditionings(const std::chrono::milliseconds& timeout) { ProcessGet<BatteryPreconditionings>(timeout); }
void ChargingManagementCoreListener::ProcessGet_BatteryPreconditioningEnergies(const std::chrono::milliseconds& timeout) { ProcessGet<BatteryPreconditioningEnergies>(timeout); }
// clang-format on

}  // namespace trov::chargingManagementCoreListener
