#include <cstddef>
#include <cstdint>
#include <exception>

#include "fuzz/fail.h"
#include "tools/vehicle/values/field_codec.h"

// The payload of a field, whose number is the first byte, for every field of both services. What decodes must come back from its own
// encoding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto codecs = vehicle::FieldCodecs();
  const auto& codec = codecs[data[0] % codecs.size()];
  vehicle::Bytes once;
  try {
    once = codec.recoded({data + 1, data + size});
  } catch (const std::exception&) {  // the codec's one way to refuse
    return 0;
  }
  if (codec.recoded(once) != once) fuzz::Fail("an encoding decodes to other records");
  return 0;
}
