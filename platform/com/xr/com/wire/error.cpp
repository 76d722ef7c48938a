#include "xr/com/wire/error.h"

#include <string>

namespace xr::com::wire {
namespace {

class Category final : public boost::system::error_category {
 public:
  const char* name() const noexcept override { return "someip"; }

  std::string message(int value) const override {
    switch (static_cast<Error>(value)) {
      case Error::cut_off:
        return "cut off";
      case Error::wrong_length:
        return "wrong length";
      case Error::wrong_version:
        return "wrong protocol version";
      case Error::wrong_session:
        return "no session id";
      case Error::too_big:
        return "too big";
      case Error::not_discovery:
        return "no service discovery message";
      case Error::broken_option:
        return "broken option";
    }
    return "unknown";
  }
};

}  // namespace

const boost::system::error_category& error_category() noexcept {
  static const Category category;
  return category;
}

}  // namespace xr::com::wire
