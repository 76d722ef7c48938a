#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>

#include "commmngr/interfaces/types.h"
#include "model/name_tables_charging_management_core.h"

#include "ara/log/logging.h"

/// What all translations toward REST are made of. Tables are only read, so everything here may run on any thread.
namespace trov::commMngr {

/// How a translated member is told in the log: `open`, the number, ",", the word and "}"; or `open` and the word alone; nothing if `open`
/// is empty.
struct Line {
  std::string_view open;
  bool number = true;
};

inline constexpr Line kSilent{};

/// "[CommMngr][Someip -> Zuva] <label> {value,mappedvalue} = {", joined at compile time.
template <std::size_t N>
class Mapped {
 public:
  consteval explicit Mapped(const char (&label)[N]) {
    auto* out = std::copy(kTag.begin(), kTag.end(), text_.begin());
    out = std::copy(label, label + N - 1, out);
    std::copy(kOpen.begin(), kOpen.end(), out);
  }
  constexpr operator Line() const { return {std::string_view{text_.data(), text_.size()}}; }

 private:
  static constexpr std::string_view kTag = "[CommMngr][Someip -> Zuva] ";
  static constexpr std::string_view kOpen = " {value,mappedvalue} = {";
  std::array<char, kTag.size() + N - 1 + kOpen.size()> text_{};
};

template <class E>
void Tell(const ara::log::Logger& logger, const Line& line, E number, std::string_view word) {
  if (line.open.empty()) return;
  auto stream = logger.LogInfo();
  stream << line.open;
  if (line.number) {
    stream << number << "," << word << "}";
  } else {
    stream << word;
  }
}

/// The word of a member; an absent or unknown number gives none, silently.
template <class E>
Word Translated(const ara::log::Logger& logger, const Opt<E>& value, const Line& line) {
  if (!value) return {};
  const auto& words = Names<E>::Direct();
  const auto found = words.find(*value);
  if (found == words.end()) return {};
  Tell(logger, line, *value, found->second);
  return found->second;
}

/// The word of the member by which the REST side finds its object. Without one nothing can be done with the other members: `invalid` is
/// told.
/// @throws qe::com::bad_optional_access if the member is absent.
template <class E>
Word Key(const ara::log::Logger& logger, const Opt<E>& type, const Line& line, std::string_view invalid) {
  [[maybe_unused]] const E number = type.value();
  auto word = Translated(logger, type, line);
  if (!word) logger.LogInfo() << invalid;
  return word;
}

/// One enumerated member of a tuple: the same index on both sides.
template <std::size_t I, class Raw, class MappedTuple>
void Translate(const ara::log::Logger& logger, const Raw& raw, MappedTuple& mapped, const Line& line) {
  std::get<I>(mapped) = Translated(logger, std::get<I>(raw), line);
}

/// One number or text of a tuple, copied as it came and told behind `open` if there is one.
template <std::size_t I, class Raw, class MappedTuple>
void Copy(const ara::log::Logger& logger, const Raw& raw, MappedTuple& mapped, std::string_view open = {}) {
  const auto& value = std::get<I>(raw);
  std::get<I>(mapped) = value;
  if (value && !open.empty()) logger.LogInfo() << open << *value;
}

}  // namespace trov::commMngr
