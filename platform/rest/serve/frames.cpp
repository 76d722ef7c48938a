#include "serve/frames.h"

#include <chrono>

#include "ara/rest/serialize/json_writer.h"
#include "serve/clock_text.h"

namespace zuva::serve {

using ara::rest::serialize::WriteString;

std::shared_ptr<const std::string> SubscriptionPrefix(std::string_view id) {
  auto prefix = std::make_shared<std::string>("{\"action\":\"subscription\",\"subscriptionId\":");
  WriteString(*prefix, id);
  *prefix += ',';
  return prefix;
}

std::shared_ptr<const std::string> EventTail(std::string_view event, std::string_view path, std::string_view data) {
  auto tail = std::make_shared<std::string>("\"event\":\"");
  tail->reserve(96 + path.size() + data.size());
  tail->append(event).append("\",\"path\":");
  WriteString(*tail, path);
  if (!data.empty()) tail->append(",\"data\":").append(data);
  tail->append(",\"ts\":\"").append(Timestamp(std::chrono::system_clock::now())).append("\"}");
  return tail;
}

}  // namespace zuva::serve
