#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zuva::serve {

/// The beginning of all frames of one subscription, up to what all subscribers share.
std::shared_ptr<const std::string> SubscriptionPrefix(std::string_view id);
/// The shared rest of a frame, with the time of now; `data` is JSON, and empty for an event without.
std::shared_ptr<const std::string> EventTail(std::string_view event, std::string_view path, std::string_view data);

}  // namespace zuva::serve
