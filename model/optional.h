#pragma once

#include <optional>
#include <type_traits>
#include <utility>

namespace qe::com {

/// Thrown when the value of an empty optional is read.
class bad_optional_access : public std::bad_optional_access {
 public:
  const char* what() const noexcept override { return "qe::com::bad_optional_access"; }
};

/// The optional of the communication layer: `std::optional`, but every access to the value is checked.
///
/// Each record member is one: a member that a sender left out is absent, and absence is information. Reading an absent value
/// by `value()`, `*` or `->` throws `bad_optional_access`; nothing reads indeterminate storage.
template <class T>
class optional : public std::optional<T> {
 public:
  using std::optional<T>::optional;

  T& value() & { return Checked(*this); }
  const T& value() const& { return Checked(*this); }
  T&& value() && { return std::move(Checked(*this)); }

  T& operator*() & { return value(); }
  const T& operator*() const& { return value(); }
  T&& operator*() && { return std::move(*this).value(); }

  T* operator->() { return &value(); }
  const T* operator->() const { return &value(); }

  // Declared here, since the standard's own comparisons are ambiguous for a class derived from std::optional.
  friend bool operator==(const optional& left, const optional& right) {
    return left.has_value() == right.has_value() && (!left.has_value() || *left == *right);
  }
  friend bool operator==(const optional& left, std::nullopt_t) noexcept { return !left.has_value(); }
  template <class U, std::enable_if_t<!std::is_base_of_v<std::optional<T>, U> && std::is_convertible_v<const U&, T>, int> = 0>
  friend bool operator==(const optional& left, const U& right) {
    return left.has_value() && *left == right;
  }

 private:
  template <class Self>
  static auto& Checked(Self& self) {
    if (!self.has_value()) throw bad_optional_access{};
    return self.std::template optional<T>::operator*();
  }
};

}  // namespace qe::com
