#pragma once

#include "tests/support/ws_client.h"

namespace test_support {

/// What a client holds that does nothing but take every event as it comes: all elements of what it has subscribed to, services or
/// resources. For one thread.
class Mirror {
 public:
  explicit Mirror(WsClient client) : client_{std::move(client)} {}

  /// Subscribes, and waits for the snapshot. Throws std::runtime_error if none comes.
  void Subscribe(const std::string& path);
  /// Takes all events that have come. Throws std::runtime_error at one that does not follow from those before it.
  void CatchUp();
  bool IsOpen() const { return client_.IsOpen(); }
  /// The elements by their paths.
  const std::map<std::string, nlohmann::json>& Elements() const { return elements_; }

 private:
  void Take(const nlohmann::json& message);
  void Hold(const nlohmann::json& elements);

  WsClient client_;
  std::map<std::string, nlohmann::json> elements_;
};

}  // namespace test_support
