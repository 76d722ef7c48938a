#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "ara/log/logger.h"
#include "commmngr/interfaces/types.h"
#include "rest/model_element.h"
#include "zuva/change_scope.h"
#include "zuva/server_resource.h"

namespace trov::zuvaServer {

/// What an empty optional does to its field.
enum class Absent : std::uint8_t {
  removes,  // the presence of a field is information
  stays,    // a new object has nothing to remove
};

/// The log lines of one update's failures.
struct ErrorLines {
  std::string_view domain, other;
  std::string_view prefix = {};  // given: the lines are put together of it and the name of the field in work

  void LogDomain(const ara::log::Logger& logger, std::string_view field, const std::domain_error& error) const;
  void LogOther(const ara::log::Logger& logger, std::string_view field) const;
};

/// The vehicle's values on their way into one element, field after field. Kinds, words and limits are the model's.
class ElementUpdate {
 public:
  ElementUpdate(zuva::server::ModelElement& element, Absent absent) : element_{element}, absent_{absent} {}

  /// Writes the value, or does with an empty optional what `Absent` says. Throws as the setters of the element do.
  template <class T>
  void Set(std::string_view field, const Opt<T>& value) {
    current_ = field;
    if (value.has_value()) {
      Write(field, value.value());
    } else if (absent_ == Absent::removes) {
      element_.Unset(field);
    }
  }

  /// The field that was begun last.
  std::string_view Current() const { return current_; }

 private:
  void Write(std::string_view field, const std::string& word) { element_.SetWord(field, word); }
  void Write(std::string_view field, bool value) { element_.SetFlag(field, value); }
  void Write(std::string_view field, std::uint32_t value) { element_.SetNumber(field, value); }
  void Write(std::string_view field, float value) { element_.SetReal(field, value); }
  void Write(std::string_view field, const std::vector<std::string>& words) { element_.SetWords(field, words); }

  zuva::server::ModelElement& element_;
  Absent absent_;
  std::string_view current_;
};

/// The first element whose type is the key, or null. An element without a type has the empty one. Throws `qe::com::bad_optional_access`
/// for an empty key, unless there is no element to compare it with.
std::shared_ptr<zuva::server::ModelElement> FindByType(zuva::ServerResource& resource, const Word& type);

template <class T>
std::shared_ptr<T> FindByType(zuva::ServerResource& resource, const Word& type) {
  return std::static_pointer_cast<T>(FindByType(resource, type));
}

/// Runs one update's steps on an element, as one event. A step that throws ends them: what was written stays, one line is logged, and
/// nothing is rethrown.
template <class Steps>
void Protected(zuva::server::ModelElement& element, Absent absent, const ErrorLines& lines, const ara::log::Logger& logger, Steps&& steps) {
  ElementUpdate update{element, absent};
  try {
    const zuva::ChangeScope scope{element};
    steps(update);
  } catch (const std::domain_error& error) {
    lines.LogDomain(logger, update.Current(), error);
  } catch (...) {  // the vehicle's data must not end the thread that brings them
    lines.LogOther(logger, update.Current());
  }
}

/// The common form of an update: the element that the key names, if there is one, in one protected run.
template <class Steps>
void UpdateByType(zuva::ServerResource& resource, const Word& type, const ErrorLines& lines, const ara::log::Logger& logger,
                  Steps&& steps) {
  if (const auto element = FindByType(resource, type)) Protected(*element, Absent::removes, lines, logger, steps);
}

}  // namespace trov::zuvaServer
