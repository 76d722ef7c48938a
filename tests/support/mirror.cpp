#include "tests/support/mirror.h"

#include <stdexcept>

namespace test_support {

void Mirror::Subscribe(const std::string& path) {
  client_.Send({{"action", "subscribe"}, {"path", path}, {"requestId", path}});
  while (const auto message = client_.Receive()) {
    Take(*message);
    if (message->value("event", "") == "snapshot" && message->value("path", "") == path) return;
  }
  throw std::runtime_error("no snapshot of " + path);
}

void Mirror::CatchUp() {
  while (const auto message = client_.Receive(std::chrono::milliseconds{1})) Take(*message);
}

void Mirror::Take(const nlohmann::json& message) {
  const auto event = message.value("event", "");
  const auto path = message.value("path", "");
  bool follows = true;
  if (event == "snapshot") {
    const auto& data = message["data"];
    if (data.is_array()) return Hold(data);
    for (const auto& resource : data) Hold(resource);
  } else if (event == "added") {
    follows = elements_.emplace(path, message["data"]).second;
  } else if (event == "changed") {
    const auto held = elements_.find(path);
    follows = held != elements_.end();
    if (follows) held->second = message["data"];
  } else if (event == "removed") {
    follows = elements_.erase(path) == 1;
  }
  if (!follows) throw std::runtime_error(event + " does not follow: " + path);
}

void Mirror::Hold(const nlohmann::json& elements) {
  for (const auto& element : elements) elements_[element["uri"]] = element;
}

}  // namespace test_support
