#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ara/rest/ogm.h"

namespace zuva::serve {

/// A client's message, in the style of the W3C Vehicle Information Service.
struct Message {
  enum class Action : std::uint8_t { kGet, kSet, kSubscribe, kUnsubscribe };

  Action action = Action::kGet;
  std::string path;                                     ///< but for unsubscribe
  std::string subscriptionId;                           ///< of unsubscribe
  ara::rest::Pointer<ara::rest::ogm::Object> document;  ///< the whole message; holds the value
  const ara::rest::ogm::Object* value = nullptr;        ///< of set
};

/// What an answer repeats of its message, so far as that could be read.
struct Echo {
  std::string action;     ///< empty: none
  std::string requestId;  ///< as JSON; empty: none
};

/// Reads one text frame. Without a message `fault` says what is wrong with it; the echo is filled as far as the message is sound.
std::optional<Message> ReadMessage(std::string_view text, Echo& echo, std::string& fault);

/// Answers. Each is a whole text frame with the time of now.
std::string DataAnswer(const Echo& echo, std::string_view data);                      ///< to get
std::string SetAnswer(const Echo& echo, std::string_view data);                       ///< 200 with the element after the write
std::string StatusAnswer(const Echo& echo, unsigned code, std::string_view message);  ///< a code below 400 that is no document
std::string SubscriptionAnswer(const Echo& echo, std::string_view subscriptionId);    ///< to subscribe and unsubscribe
std::string ErrorAnswer(const Echo& echo, unsigned code, std::string_view message);

}  // namespace zuva::serve
