#include "tests/support/mirror.h"

#include <stdexcept>

namespace test_support {

void Mirror::Subscribe(const std::string& service) {
  client_.Send({{"action", "subscribe"}, {"path", service}, {"requestId", service}});
  while (const auto message = client_.Receive()) {
    Take(*message);
    if (message->value("event", "") == "snapshot" && message->value("path", "") == service) return;
  }
  throw std::runtime_error("no snapshot of " + service);
}

void Mirror::CatchUp() {
  while (const auto message = client_.Receive(std::chrono::milliseconds{1})) Take(*message);
}

void Mirror::Take(const nlohmann::json& message) {
  const auto event = message.value("event", "");
  if (event == "snapshot") {
    for (const auto& resource : message["data"])
      for (const auto& element : resource) elements_[element["uri"]] = element;
  } else if (event == "added" || event == "changed") {
    elements_[message["path"]] = message["data"];
  } else if (event == "removed") {
    elements_.erase(message["path"].get<std::string>());
  }
}

}  // namespace test_support
