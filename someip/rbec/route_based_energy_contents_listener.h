#pragma once

#include <memory>
#include <vector>

#include "commmngr/interfaces/comm_mngr_rbec_side_interface.h"
#include "commmngr/interfaces/route_based_energy_contents_listener_interface.h"
#include "model/guarded.h"
#include "model/records_route_based_energy_contents.h"
#include "someip/abstract_get_futures.h"
#include "someip/rbec/route_based_energy_contents_proxy_interface.h"

#include "ara/log/logging.h"

namespace trov::routeBasedEnergyContents {

/// The navigation's side: takes the target state of charge of the trip, shows it to the REST side and relays it to the vehicle's charging
/// control, at each notification and each synchronisation, changed or not. The REST side hears nothing of the service's loss and return.
///
/// Threads as in ChargingManagementCoreListener; a relay blocks its thread for at most a second and the send.
class RouteBasedEnergyContentsListener final : public RouteBasedEnergyContentsListenerInterface,
                                               public getFutures::Abstract_GetFutures,
                                               public std::enable_shared_from_this<RouteBasedEnergyContentsListener> {
 public:
  using Handle_type = RouteBasedEnergyContentsProxyInterface::Handle_type;

  /// @pre `wrapper` is not empty.
  explicit RouteBasedEnergyContentsListener(std::shared_ptr<RouteBasedEnergyContentsProxyInterface> wrapper);

  /// An empty pointer disconnects: values are then dropped in silence.
  void SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrRBECSideInterface> manager);

  /// @pre the listener is owned by a shared pointer.
  void StartListener() override;
  void FetchData() override;

  void OnServiceFound(std::vector<Handle_type> handles);
  void OnReceived_TargetSocChargings();

 private:
  using Record = ylt::services::routebasedenergycontents::datatypes::DT_targetSocChargings_struct;

  void StartListeningToSomeIp();
  void PassOn(const Record& record);

  std::shared_ptr<RouteBasedEnergyContentsProxyInterface> proxyWrapper;
  ara::log::Logger& logger;
  Guarded<commMngr::CommMngrRBECSideInterface> commMngr;
  bool incomplete = false;  // the find thread's own, see FollowService
};

}  // namespace trov::routeBasedEnergyContents
