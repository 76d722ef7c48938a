#pragma once

#include <boost/system/error_code.hpp>
#include <boost/system/result.hpp>
#include <type_traits>

namespace xr::com::wire {

/// Why bytes from the network are not a message.
enum class Error {
  cut_off = 1,    ///< fewer bytes than the lengths in them promise
  wrong_length,   ///< a length that contradicts its surroundings
  wrong_version,  ///< a protocol version other than 1
  wrong_session,  ///< no session id where one must be
  too_big,        ///< over `kMaximumMessage`
  not_discovery,  ///< not a service discovery message
  broken_option,  ///< an option whose length does not fit its type
};

const boost::system::error_category& error_category() noexcept;

inline boost::system::error_code make_error_code(Error error) noexcept {
  return {static_cast<int>(error), error_category()};
}

template <class T>
using Result = boost::system::result<T>;

}  // namespace xr::com::wire

template <>
struct boost::system::is_error_code_enum<xr::com::wire::Error> : std::true_type {};
