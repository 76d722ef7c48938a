#include <cstddef>
#include <cstdint>
#include <string_view>

#include <boost/asio/ip/address.hpp>

#include "serve/config.h"
#include "serve/host_rules.h"
#include "serve/http_request.h"
#include "serve/tokens.h"

// The configuration file of the serving side. It is refused with its own exception and no other; one that is taken must serve for the rules
// on hosts, origins and tokens.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace serve = zuva::serve;
  try {
    const auto config = serve::ParseConfig({reinterpret_cast<const char*>(data), size});
    const serve::HostRules rules{config};
    rules.KindOf("car:80", boost::asio::ip::make_address("::1"));
    rules.AllowsOrigin("http://app", "car");
    serve::HttpRequest request;
    request.authorization = "Bearer w";
    serve::Tokens{config}.RightsOf(request);
  } catch (const serve::ConfigError&) {
  }
  return 0;
}
