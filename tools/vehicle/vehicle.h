#pragma once

#include "tools/vehicle/reporter.h"
#include "tools/vehicle/scenario/player.h"
#include "tools/vehicle/server/service_server.h"
#include "tools/vehicle/session/session_clock.h"

#include <boost/asio/io_context.hpp>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace vehicle {

/// The simulated vehicle: the values of all fields, the faults in force, and what scenario and commands do to them.
/// Tells the reporter all that happens. For the thread of its io_context.
class Vehicle final : public FieldHost {
 public:
  /// Opens the sockets and offers nothing yet. Throws boost::system::system_error.
  Vehicle(boost::asio::io_context& context, const xr::com::wire::Deployment& deployment, const boost::asio::ip::address_v4& address,
          const Scenario& scenario, double speed, Reporter& reporter);

  /// Offers both services and begins the scenario's time line.
  void Start();
  /// Withdraws the offers and ends the run of the io_context.
  void Stop();
  /// One command of standard input; a wrong one is told as the event "refused".
  void Command(std::string_view line);
  void Execute(const Action& action);

 private:
  struct Repetition;

  void OnGet(const std::string& field, Reply reply) override;
  void OnSet(const std::string& field, const Bytes& payload, Reply reply) override;
  Bytes PresentValue(const std::string& field) override { return values_.at(field); }
  bool AcceptsSubscription(const std::string& field) override { return !refusing_.contains(field); }
  void OnOffered(const std::string& service, bool offered) override;
  void OnSubscribed(const Subscription& subscription, bool isNew) override;
  void OnSubscriptionRefused(const std::string& field, const std::string& reason) override;
  void OnUnsubscribed(const Subscription& subscription, const std::string& reason) override;
  void OnConnection(const Endpoint& peer, bool open) override;

  void Do(const SetValues& action);
  void Do(const SetFaults& action);
  void Do(const OfferServices& action);
  void Do(const StopOfferServices& action);
  void Do(const BreakTcp& action);
  void Do(const Crash& action);
  void Do(const Restart& action);
  void Do(const Quit& action);
  void Do(const SendPayload& action);
  void Do(const RepeatNotification& action);
  void Do(const SendMessage& action);
  void Do(const SendDiscovery& action);

  /// What the session says: changes of records that are held, told where there is one.
  void Say(const nlohmann::json& words);
  void TellNext(const std::shared_ptr<Repetition>& repetition);
  void TakeSet(const std::string& field, const Bytes& payload, const Reply& reply);
  /// Runs `answer` when the behaviour's delay is over.
  void Later(std::chrono::milliseconds delay, std::function<void()> answer);

  boost::asio::io_context& context_;
  Reporter& reporter_;
  std::map<std::string, Bytes> values_;  // the payload of each field
  std::map<std::string, Behaviour> onGet_, onSet_;
  std::set<std::string> refusing_;
  Player player_;
  std::optional<SessionClock> session_;
  ServiceServer server_;
};

}  // namespace vehicle
