#include <cstddef>
#include <cstdint>

#include "fuzz/fail.h"
#include "xr/com/wire/deployment.h"

// The deployment file. It is refused with its own exception and no other; what is taken still has every field of every service.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace xr::com::wire;
  static const auto usual = default_deployment();
  try {
    const auto deployment = parse_deployment({reinterpret_cast<const char*>(data), size});
    for (const auto& service : usual.services) {
      const auto* const found = deployment.find_service(service.name);
      if (!found || found->fields.size() != service.fields.size()) fuzz::Fail("a service has lost fields");
    }
  } catch (const Deployment_error&) {
  }
  return 0;
}
