#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"
#include "fuzz/fail.h"
#include "serve/message.h"

namespace {

using ara::rest::serialize::ParseObject;
using ara::rest::serialize::ToText;

/// What is read must be the same when it is written and read again.
void CheckDocument(std::string_view text) {
  const auto object = ParseObject(text);
  if (!object) return;
  if (!nlohmann::json::accept(text)) fuzz::Fail("a document is read that is no JSON");
  const auto once = ToText(**object);
  const auto again = ParseObject(once);
  if (!again) fuzz::Fail("what is written cannot be read: " + once);
  const auto twice = ToText(**again);
  // By value where the texts differ: the zero below zero has no whole number.
  if (twice != once && nlohmann::json::parse(twice) != nlohmann::json::parse(once)) {
    fuzz::Fail("what is written reads as something else: " + once + " and " + twice);
  }
}

/// The answer that repeats what can be told of a message must be JSON, whatever the message is.
void CheckMessage(std::string_view text) {
  zuva::serve::Echo echo;
  std::string fault;
  zuva::serve::ReadMessage(text, echo, fault);
  const auto answer = zuva::serve::ErrorAnswer(echo, 400, fault);
  if (!nlohmann::json::accept(answer)) fuzz::Fail("an answer is no JSON: " + answer);
}

}  // namespace

// A client's text, as the document of a write and as the message of a WebSocket.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text{reinterpret_cast<const char*>(data), size};
  CheckDocument(text);
  CheckMessage(text);
  return 0;
}
