#include "ara/rest/serialize/json_serializer.h"
#include "ara/rest/serialize/json_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

// A client's document; what is read must be readable again when written.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto object = ara::rest::serialize::ParseObject({reinterpret_cast<const char*>(data), size});
  if (!object) return 0;
  const auto text = ara::rest::serialize::ToText(**object);
  if (!ara::rest::serialize::ParseObject(text)) std::abort();
  return 0;
}
