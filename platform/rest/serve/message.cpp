#include "serve/message.h"

#include <array>
#include <chrono>
#include <utility>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"
#include "serve/clock_text.h"
#include "serve/response.h"

namespace zuva::serve {

namespace ogm = ara::rest::ogm;
using ara::rest::serialize::WriteString;

namespace {

constexpr std::array<std::pair<std::string_view, Message::Action>, 4> kActions{{
    {"get", Message::Action::kGet},
    {"set", Message::Action::kSet},
    {"subscribe", Message::Action::kSubscribe},
    {"unsubscribe", Message::Action::kUnsubscribe},
}};

const ogm::Value* Member(const ogm::Object& object, std::string_view name, ogm::Kind kind) {
  const auto* field = object.Find(name);
  return field && field->HasValue() && field->GetValue().GetType() == kind ? &field->GetValue() : nullptr;
}

const std::string* Text(const ogm::Object& object, std::string_view name) {
  const auto* value = Member(object, name, ogm::Kind::String);
  return value ? &static_cast<const ogm::String&>(*value).GetValue() : nullptr;
}

/// The number that is a member's value, as it stands in the text of a sound document; empty if the name is not written plainly.
std::string_view NumberText(std::string_view text, std::string_view name) {
  constexpr std::string_view kBlanks = " \t\r\n";
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{' || text[i] == '[') ++depth;
    if (text[i] == '}' || text[i] == ']') --depth;
    if (text[i] != '"') continue;
    const auto begin = ++i;
    for (; text[i] != '"'; ++i) i += text[i] == '\\' ? 1 : 0;
    const auto colon = text.find_first_not_of(kBlanks, i + 1);
    if (depth != 1 || text[colon] != ':' || text.substr(begin, i - begin) != name) continue;
    const auto value = text.find_first_not_of(kBlanks, colon + 1);
    return text.substr(value, text.find_first_of(" \t\r\n,}", value) - value);
  }
  return {};
}

/// The client's own id as JSON; empty if there is none that can be told.
std::string RequestId(const ogm::Object& document, std::string_view text) {
  // Not as the tree is written: a client may count in more digits than a number of the tree has.
  if (Member(document, "requestId", ogm::Kind::Real)) return std::string{NumberText(text, "requestId")};
  for (const auto kind : {ogm::Kind::String, ogm::Kind::Int}) {
    if (const auto* value = Member(document, "requestId", kind)) return ara::rest::serialize::ToText(*value);
  }
  return {};
}

std::string Begin(const Echo& echo) {
  std::string text = "{";
  if (!echo.action.empty()) {
    text += "\"action\":";
    WriteString(text, echo.action);
    text += ',';
  }
  if (!echo.requestId.empty()) text.append("\"requestId\":").append(echo.requestId).append(",");
  return text;
}

std::string End(std::string text) {
  return std::move(text.append(",\"ts\":\"").append(Timestamp(std::chrono::system_clock::now())).append("\"}"));
}

}  // namespace

std::optional<Message> ReadMessage(std::string_view text, Echo& echo, std::string& fault) {
  const auto refuse = [&fault](std::string_view reason) {
    fault = reason;
    return std::nullopt;
  };
  auto parsed = ara::rest::serialize::ParseObject(text);
  if (!parsed) return refuse(parsed.error().message());
  Message message;
  message.document = std::move(*parsed);
  const auto& document = *message.document;

  const auto* action = Text(document, "action");
  if (action) echo.action = *action;
  echo.requestId = RequestId(document, text);
  if (echo.requestId.empty()) return refuse("requestId must be a string or a number");
  if (!action) return refuse("action is missing");
  const auto* known = kActions.begin();
  while (known != kActions.end() && known->first != *action) ++known;
  if (known == kActions.end()) return refuse("unknown action");
  message.action = known->second;

  if (message.action == Message::Action::kUnsubscribe) {
    const auto* id = Text(document, "subscriptionId");
    if (!id) return refuse("subscriptionId is missing");
    message.subscriptionId = *id;
    return message;
  }
  const auto* path = Text(document, "path");
  if (!path) return refuse("path is missing");
  message.path = *path;
  if (message.action == Message::Action::kSet) {
    message.value = static_cast<const ogm::Object*>(Member(document, "value", ogm::Kind::Object));
    if (!message.value) return refuse("value must be an object");
  }
  return message;
}

std::string DataAnswer(const Echo& echo, std::string_view data) {
  return End(Begin(echo).append("\"data\":").append(data));
}

std::string SetAnswer(const Echo& echo, std::string_view data) {
  return End(Begin(echo).append("\"status\":200,\"data\":").append(data));
}

std::string StatusAnswer(const Echo& echo, unsigned code, std::string_view message) {
  auto text = Begin(echo).append("\"status\":").append(std::to_string(code)).append(",\"message\":");
  WriteString(text, message);
  return End(std::move(text));
}

std::string SubscriptionAnswer(const Echo& echo, std::string_view subscriptionId) {
  auto text = Begin(echo).append("\"subscriptionId\":");
  WriteString(text, subscriptionId);
  return End(std::move(text));
}

std::string ErrorAnswer(const Echo& echo, unsigned code, std::string_view message) {
  auto text = Begin(echo).append("\"error\":{\"number\":").append(std::to_string(code)).append(",\"reason\":");
  WriteString(text, StatusTitle(code));
  text += ",\"message\":";
  WriteString(text, message);
  return End(std::move(text.append("}")));
}

}  // namespace zuva::serve
