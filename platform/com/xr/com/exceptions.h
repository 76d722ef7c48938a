#pragma once

#include <stdexcept>

namespace xr::com {

/// What keeps a call from being carried out, as opposed to an answer of the service.
class Infrastructure_exception : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// The instance is not offered, or its connection does not stand.
class Service_not_available_exception : public Infrastructure_exception {
 public:
  Service_not_available_exception() : Infrastructure_exception{"Service not available exception"} {}
};

/// A message could not be sent, or its answer could not be used.
class Transport_exception : public Infrastructure_exception {
 public:
  explicit Transport_exception(int code) : Infrastructure_exception{"Transport exception"}, code_{code} {}

  /// The return code of the answer, or a local one (see `Reply`).
  int code() const noexcept { return code_; }

 private:
  int code_;
};

/// An argument that no service description allows.
class Invalid_argument_exception : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

}  // namespace xr::com
