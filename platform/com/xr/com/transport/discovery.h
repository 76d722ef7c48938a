#pragma once

#include <boost/asio/io_context.hpp>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "xr/com/transport/alarm.h"
#include "xr/com/transport/counted_warnings.h"
#include "xr/com/transport/find.h"
#include "xr/com/transport/find_thread.h"
#include "xr/com/transport/known_instances.h"
#include "xr/com/transport/sd_channel.h"
#include "xr/com/transport/search.h"
#include "xr/com/wire/deployment.h"

namespace xr::com::transport {

/// Hears what becomes of the instances. Called on the transport thread.
class Instance_observer {
 public:
  virtual ~Instance_observer() = default;

  virtual void instance_offered(Instance_key key, const Offer& offer) = 0;
  /// Some are not offered any more: `Discovery::find_offer` says which.
  virtual void instances_lost() = 0;
  virtual void subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer) = 0;
  /// What a find hands to the application for one instance.
  virtual std::shared_ptr<runtime::Port_source> port_source(Instance_key key, const Offer& offer) = 0;
};

/// The client role of service discovery: looks for services, keeps the list of offered instances and tells the finds of its changes.
/// Belongs to the transport thread.
class Discovery {
 public:
  Discovery(boost::asio::io_context& io, const wire::Deployment& deployment, Sd_channel& channel, Find_thread& find_thread,
            Instance_observer& observer, Counted_warnings& warnings);

  /// Begins, or takes up again what an exception has cut short.
  void start();
  void stop();

  /// Adds a find, which `start` then serves. @throws std::bad_alloc, with nothing added.
  void add_find(const std::weak_ptr<Find>& find);
  const Offer* find_offer(Instance_key key) const { return known_.find(key); }

 private:
  struct Wanted {
    std::weak_ptr<Find> find;
    bool stale;  ///< its list has changed and is not queued yet
  };

  void received(const wire::Sd_entry& entry, const wire::Endpoint& peer);
  void offered(const wire::Sd_entry& entry, const wire::Endpoint& peer);
  void withdrawn(const wire::Sd_entry& entry, const wire::Endpoint& peer);
  void rebooted(const wire::Endpoint& peer);
  bool moves(const std::vector<wire::Sd_entry>& entries, const wire::Endpoint& peer) const;
  void expired();
  void watch_expiry();
  void lost(Instance_key key, std::string_view reason);

  void note_change(Instance_key key, bool changed);
  void settle();
  void tell(const std::shared_ptr<Find>& find);
  void ask(const wire::Service_deployment& service);
  bool is_sought(std::uint16_t service) const;
  bool is_found(const Find& find) const;

  const wire::Deployment& deployment_;
  Sd_channel& channel_;
  Find_thread& find_thread_;
  Instance_observer& observer_;
  Counted_warnings& warnings_;
  Known_instances known_;
  Alarm expiry_;
  std::vector<Wanted> finds_;
  std::map<std::uint16_t, Search> searches_;  // by service id
};

}  // namespace xr::com::transport
