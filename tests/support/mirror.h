#pragma once

#include "tests/support/ws_client.h"

namespace test_support {

/// What a client holds that does nothing but take every event as it comes: all elements of the services it has subscribed to.
/// For one thread.
class Mirror {
 public:
  explicit Mirror(WsClient client) : client_{std::move(client)} {}

  /// Subscribes to a service, and waits for its snapshot. Throws std::runtime_error if none comes.
  void Subscribe(const std::string& service);
  /// Takes all events that have come.
  void CatchUp();
  /// The elements by their paths.
  const std::map<std::string, nlohmann::json>& Elements() const { return elements_; }

 private:
  void Take(const nlohmann::json& message);

  WsClient client_;
  std::map<std::string, nlohmann::json> elements_;
};

}  // namespace test_support
