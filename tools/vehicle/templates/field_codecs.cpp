#include "tools/vehicle/values/make_codec.h"

namespace vehicle {

std::span<const FieldCodec> FieldCodecs() {
  static constexpr std::array kCodecs{
      /*% for service in services %*/
      /*% for field in service.fields %*/
      MakeCodec<${service.namespace}::datatypes::${field.record}>("${field.field}"),
      /*% endfor %*/
      /*% endfor %*/
  };
  return kCodecs;
}

}  // namespace vehicle
