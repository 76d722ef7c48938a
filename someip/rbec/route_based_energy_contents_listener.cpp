#include "someip/rbec/route_based_energy_contents_listener.h"

#include <utility>

#include <boost/variant/get.hpp>

#include "someip/listening.h"
#include "someip/rbec/route_based_energy_contents_proxy_wrapper.h"

namespace trov::routeBasedEnergyContents {
namespace {

constexpr someip::NotificationRow kNotified{
    .first = "[RBEC_Listener][SomeIp -> Zuva] Received notification regarding TargetSocChargings..",
    .count = "[RBEC_Listener][SomeIp -> Zuva] TargetSocChargings notification: There are ",
    .empty = "[RBEC_Listener][SomeIp -> Zuva] TargetSocChargings notification: There are no elements in the CachedSamples. Returning...",
    .noType = {}};

constexpr someip::FetchTexts kFetchTexts{.notFound = "[RBEC_Listener][SomeIpGET -> Zuva] Cant get... Service not found...",
                                         .entered = "[RBEC_Listener][SomeIpGET -> Zuva] Entered fetch here...",
                                         .getting = "[RBEC_Listener][SomeIpGET -> Zuva] Getting data from the someip server...",
                                         .lost = "[RBEC_Listener][SomeIpGET -> Zuva] Cant get... Service lost - ",
                                         .exception = "[RBEC_Listener][SomeIpGET -> Zuva] Exception - ",
                                         .unknown = "[RBEC_Listener][SomeIpGET -> Zuva] Exception - Unknown"};

constexpr std::chrono::milliseconds kGetTimeout{2000};

}  // namespace

RouteBasedEnergyContentsListener::RouteBasedEnergyContentsListener(std::shared_ptr<RouteBasedEnergyContentsProxyInterface> wrapper)
    : proxyWrapper{std::move(wrapper)}, logger{ara::log::CreateLogger("RBECL", "Route Based Energy Contents proxy")} {}

void RouteBasedEnergyContentsListener::SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrRBECSideInterface> manager) {
  commMngr.Set(std::move(manager));
}

void RouteBasedEnergyContentsListener::StartListener() {
  proxyWrapper->StartFindService([weak = weak_from_this()](std::vector<Handle_type> handles) {
    if (const auto self = weak.lock()) self->OnServiceFound(std::move(handles));
  });
  logger.LogInfo() << someip::kFindStarted;
}

void RouteBasedEnergyContentsListener::OnServiceFound(std::vector<Handle_type> handles) {
  someip::FollowService(
      *proxyWrapper, handles, logger, incomplete, [this] { StartListeningToSomeIp(); }, [] {}, [] {});
}

void RouteBasedEnergyContentsListener::StartListeningToSomeIp() {
  // The handler goes in first, so that no first sample finds the event without one.
  proxyWrapper->SetReceiveHandler(TargetSocChargings::id, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->OnReceived_TargetSocChargings();
  });
  proxyWrapper->Subscribe(TargetSocChargings::id);
  logger.LogInfo() << "[RBEC_Listener] Subscribed to TargetSocChargings resource..";
}

void RouteBasedEnergyContentsListener::OnReceived_TargetSocChargings() {
  someip::HandleSamples<TargetSocChargings>(*proxyWrapper, logger, kNotified, [this](const Record& record) { PassOn(record); });
}

void RouteBasedEnergyContentsListener::FetchData() {
  someip::Fetch(*proxyWrapper, logger, kFetchTexts, [this] {
    const auto result = proxyWrapper->SomeIp_Get(TargetSocChargings::id, kGetTimeout);
    // An empty answer ends the fetch without a line, unlike in the other listener.
    for (const auto& record : boost::get<TargetSocChargings::Records>(result)) PassOn(record);
  });
}

// Presence decides, not the value: a target of 0 counts. Any other record is skipped silently.
void RouteBasedEnergyContentsListener::PassOn(const Record& record) {
  using Type = ylt::services::routebasedenergycontents::datatypes::DT_RouteBasedEnergyContents_targetSocChargings_type;
  if (!record.type || *record.type != Type::targetSocCharging || !record.targetSoc) return;
  const auto manager = commMngr.Get();
  if (!manager) return;
  const std::uint32_t targetSoc = *record.targetSoc;
  manager->TellZuvaToUpdate_NavTargetSoc(targetSoc);
  manager->TellSomeIpToUpdate_NavTargetSoc(targetSoc);  // the next notification or cycle repeats it, so the result is not looked at
}

}  // namespace trov::routeBasedEnergyContents
