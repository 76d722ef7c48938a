#pragma once

#include <string_view>

/// The rows in which the members of the SOME/IP families differ. The words stand as they are, mixed prefixes and missing blanks included.
namespace trov::someip {

/// What both listeners say when their find has been started.
inline constexpr std::string_view kFindStarted = "Find Service started...";

/// What a wrapper says; `…Unserved` for a resource that its service does not serve.
struct WrapperTexts {
  std::string_view updateUnserved, subscribeUnserved, cachedSamplesUnserved, receiveHandlerUnserved, cleanupUnserved, getUnserved;
  std::string_view findBegins, findFailed, findRuns, findWithoutHandle;
};

/// What a notification handler says. An empty `noType`: a record without a type is skipped silently.
struct NotificationRow {
  std::string_view first, count, empty, noType;
  bool needsProxy = false;
};

/// What the get of a resource says: its word in both lines, and the line for a record without a type, if any.
struct GetRow {
  std::string_view word, noType;
};

/// What a write to the vehicle says. An empty `response`: no line for a good answer.
struct SetTexts {
  std::string_view updating, ended, timeout, response, exception, unknown;
};

}  // namespace trov::someip
