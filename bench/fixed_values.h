#pragma once

#include "tools/vehicle/server/service_server.h"

#include <boost/asio/io_context.hpp>

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace bench {

/// Something to say in each field that the bridge reads: what a car says between its arrival at a charger and the end of the charge.
std::map<std::string, vehicle::Bytes> ValuesOfEveryField();

/// The vehicle's side without anything of its own to do: both services offered on 127.0.0.2, payloads as they are behind the server
/// role. A set is taken and answered at once, and told to nobody. All on the thread that runs `Context()`.
class FixedValues final : public vehicle::FieldHost {
 public:
  explicit FixedValues(const std::filesystem::path& deployment, std::map<std::string, vehicle::Bytes> payloads = {});

  /// Of all fields that were never set the value is an array of no records.
  void Set(const std::string& field, vehicle::Bytes payload) { payloads_[field] = std::move(payload); }
  /// From now on no set is answered.
  void IgnoreSets() { ignoresSets_ = true; }
  /// Sends a new value. What has come to the vehicle meanwhile is answered behind it.
  void Notify(const std::string& field, vehicle::Bytes payload);
  /// Whether the bridge has subscribed to all the fields that it reads, and has got each of them once.
  bool IsKnown() const { return subscribed_.size() >= kFieldsTheBridgeReads && got_.size() >= kFieldsTheBridgeReads; }
  boost::asio::io_context& Context() { return context_; }

 private:
  static constexpr std::size_t kFieldsTheBridgeReads = 16;

  void OnGet(const std::string& field, vehicle::Reply reply) override;
  void OnSet(const std::string& field, const vehicle::Bytes& payload, vehicle::Reply reply) override;
  vehicle::Bytes PresentValue(const std::string& field) override;
  bool AcceptsSubscription(const std::string&) override { return true; }
  void OnOffered(const std::string&, bool) override {}
  void OnSubscribed(const vehicle::Subscription& subscription, bool) override { subscribed_.insert(subscription.field); }
  void OnSubscriptionRefused(const std::string&, const std::string&) override {}
  void OnUnsubscribed(const vehicle::Subscription& subscription, const std::string&) override { subscribed_.erase(subscription.field); }
  void OnConnection(const vehicle::Endpoint&, bool) override {}

  boost::asio::io_context context_{1};
  std::map<std::string, vehicle::Bytes> payloads_;
  std::set<std::string> subscribed_, got_;
  bool ignoresSets_ = false;
  vehicle::ServiceServer server_;
};

}  // namespace bench
