#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "commmngr/interfaces/comm_mngr_someip_side_interface.h"
#include "commmngr/interfaces/trov_listener_interface.h"
#include "model/guarded.h"
#include "someip/abstract_get_futures.h"
#include "someip/cmc/charging_management_core_proxy_interface.h"
#include "someip/texts.h"

#include "ara/log/logging.h"

namespace trov::chargingManagementCoreListener {

/// The vehicle's side of ChargingManagementCore: finds the service, hears its notifications, fetches its state, sends its sets.
///
/// Threads: StartListener on the starter's thread; OnServiceFound on the find thread; the OnReceived_* on their event's strand, one at a
/// time each; FetchData on the synchroniser's thread; the Update_* on any thread, which they block for at most a second and the send. It
/// has no lock of its own. Its callbacks hold it weakly: one that finds it gone returns.
class ChargingManagementCoreListener final : public getFutures::Abstract_GetFutures,
                                             public TROVListenerInterface,
                                             public std::enable_shared_from_this<ChargingManagementCoreListener> {
 public:
  using Handle_type = ChargingManagementCoreProxyInterface::Handle_type;
  using SOMEIP_RESPONSE_TYPE = enums::SOMEIP_RESPONSE_TYPE;

  /// @pre `wrapper` is not empty.
  explicit ChargingManagementCoreListener(std::shared_ptr<ChargingManagementCoreProxyInterface> wrapper);

  /// An empty pointer disconnects: updates are then dropped in silence.
  void SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrSomeipSideInterface> manager);

  void FetchData() override;

  /// @pre the listener is owned by a shared pointer.
  void StartListener() override;
  SOMEIP_RESPONSE_TYPE Update_ValueControls(cmc::DT_ChargingManagementCore_valueControls_type type, const Opt<std::uint32_t>& value,
                                            const Opt<cmc::DT_ChargingManagementCore_valueControls_specialState>& specialState,
                                            const std::string& source) override;
  SOMEIP_RESPONSE_TYPE Update_SwitchControls(cmc::DT_ChargingManagementCore_switchControls_type type,
                                             const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& value) override;
  SOMEIP_RESPONSE_TYPE Update_Views(cmc::DT_ChargingManagementCore_views_type type,
                                    const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                                    const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) override;
  SOMEIP_RESPONSE_TYPE Update_pastErrorInformation(cmc::DT_ChargingManagementCore_pastErrorInformation_type type,
                                                   const Opt<bool>& confirmedByUser) override;
  SOMEIP_RESPONSE_TYPE Update_FactoryResetInfo(
      cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData resetToFactoryData) override;

  /// Hears the whole list of offered instances at each change. The proxy is made once, from the first instance of the first list that has
  /// one; later changes tell the registry only. If that throws, the next list begins where it ended.
  void OnServiceFound(std::vector<Handle_type> handles);

  void OnReceived_ChargingPlugs();
  void OnReceived_ValueControls();
  void OnReceived_SwitchControls();
  void OnReceived_Views();
  void OnReceived_NotificationMarkers();
  void OnReceived_OruUpdateApprovals();
  void OnReceived_Notifications();
  void OnReceived_FactoryResetData();
  void OnReceived_chargingProcessInformation();
  void OnReceived_valueIndications();
  void OnReceived_pastErrorInformation();
  void OnReceived_BatteryCareModes();
  void OnReceived_BatteryPreconditionings();
  void OnReceived_BatteryPreconditioningEnergies();
  void OnReceived_BidirectionalChargingModes();

 private:
  void StartListeningToSomeIp();
  void Listen(enums::SOMEIP_RESOURCE_TYPE resource, void (ChargingManagementCoreListener::*handler)(), std::string_view subscribed);

  template <class R>
  void OnReceived();
  template <class R>
  void ProcessGet(const std::chrono::milliseconds& timeout);
  void ProcessGet(enums::SOMEIP_RESOURCE_TYPE resource, const std::chrono::milliseconds& timeout);
  template <class Record>
  void PassOnTyped(const Record& record, std::string_view noType);
  template <class R>
  SOMEIP_RESPONSE_TYPE Set(const typename R::Record& record, const someip::SetTexts& texts);

  void ProcessGet_ChargingPlugs(const std::chrono::milliseconds& timeout);
  void ProcessGet_ChargingProcessInformation(const std::chrono::milliseconds& timeout);
  void ProcessGet_NotificationMarkers(const std::chrono::milliseconds& timeout);
  void ProcessGet_Notifications(const std::chrono::milliseconds& timeout);
  void ProcessGet_OruUpdateApprovals(const std::chrono::milliseconds& timeout);
  void ProcessGet_PastErrorInformation(const std::chrono::milliseconds& timeout);
  void ProcessGet_SwitchControls(const std::chrono::milliseconds& timeout);
  void ProcessGet_ValueIndications(const std::chrono::milliseconds& timeout);
  void ProcessGet_Views(const std::chrono::milliseconds& timeout);
  void ProcessGet_Resets(const std::chrono::milliseconds& timeout);
  void ProcessGet_ValueControls(const std::chrono::milliseconds& timeout);
  void ProcessGet_BidirectionalChargingModes(const std::chrono::milliseconds& timeout);
  void ProcessGet_BatteryCareModes(const std::chrono::milliseconds& timeout);
  void ProcessGet_BatteryPreconditionings(const std::chrono::milliseconds& timeout);
  void ProcessGet_BatteryPreconditioningEnergies(const std::chrono::milliseconds& timeout);

  std::shared_ptr<ChargingManagementCoreProxyInterface> proxyWrapper;
  ara::log::Logger& logger;
  Guarded<commMngr::CommMngrSomeipSideInterface> commMngr;
  std::string lastValueOne{"noUpdate"};
  std::string lastValueTwo{"noUpdate"};
  bool incomplete = false;  // the find thread's own, see FollowService
};

}  // namespace trov::chargingManagementCoreListener
