#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <string_view>
#include <vector>

#include "binding/proxy/field.h"
#include "binding/proxy/proxy.h"
#include "binding/proxy/proxy_impl.h"
#include "binding/serialization/serialization_properties.h"
#include "model/records_${service.snake}.h"
#include "xr/com/rport.h"

/*% set settable = service.fields | selectattr("settable") | list %*/
namespace ${service.namespace} {

/// The vehicle service: its fields in alphabetical order, which is their index on the wire and in the incidents.
class ${service.name} {
 public:
  static constexpr std::string_view kName = "${service.namespace}::${service.name}";
  static constexpr std::array<std::string_view, ${service.fields | length}> kFields{
/*% for field in service.fields %*/
      "${field.field}",
/*% endfor %*/
  };
  static constexpr std::array<std::string_view, ${settable | length}> kSettable{
/*% for field in settable %*/
      "${field.field}",
/*% endfor %*/
  };
  static constexpr xr::com::someip::serialization::Serialization_properties kSerialization{};
  /// One notifier for each field, and as methods the get of each field and the set of those that have one.
  static constexpr xr::com::connector::Service_interface_description kDescription{
      ${service.fields | length}, ${service.fields | length + settable | length}, kName, kFields, kSettable};
/*% for field in service.fields %*/

  struct ${field.field} {
    using Record = datatypes::${field.record};
    using Service = ${service.name};
    static constexpr std::uint16_t kIndex = ${loop.index0};
    static constexpr std::string_view kName = "${field.field}";
    static constexpr bool kSettable = ${field.settable | lower};

    struct Get {
      static std::exception_ptr GetApplicationErrorExceptionPtr(unsigned char, const std::vector<unsigned char>&) { return {}; }
    };
    struct Set {
      static std::exception_ptr GetApplicationErrorExceptionPtr(unsigned char, const std::vector<unsigned char>&) { return {}; }
    };
    struct Notify {};
  };
/*% endfor %*/
};

namespace proxy {

/// The client's side of one instance of the service, as discovery found it.
class ${service.name}Proxy final : public ara::com::internal::proxy::Proxy {
 public:
  using Handle_type = xr::com::cpp_binding::proxy::Proxy_impl<${service.name}>::Handle_type;

  explicit ${service.name}Proxy(const Handle_type& handle);
  ~${service.name}Proxy();

/*% for field in service.fields %*/
  ara::com::internal::proxy::Field<${service.name}::${field.field}> ${field.field};
/*% endfor %*/
};

}  // namespace proxy
}  // namespace ${service.namespace}

// The templates of the fields are compiled once, beside the proxy.
/*% for field in service.fields %*/
extern template class ara::com::internal::proxy::Field<${service.namespace}::${service.name}::${field.field}>;
/*% endfor %*/
