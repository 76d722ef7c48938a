#include "binding/serialization/serializer.h"
#include "model/records_charging_management_core.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <vector>

namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace codec = xr::com::someip::serialization;

constexpr codec::Serialization_properties kProperties{};

// What decodes must come back from its own encoding.
template <class Record>
void Decode(const std::vector<unsigned char>& payload) {
  try {
    const auto records = codec::deserialize<Record>(payload, kProperties);
    std::vector<unsigned char> bytes;
    codec::serialize(bytes, records, kProperties);
    std::vector<unsigned char> twice;
    codec::serialize(twice, codec::deserialize<Record>(bytes, kProperties), kProperties);
    if (bytes != twice) std::abort();
  } catch (const std::exception&) {  // the codec's one way to refuse
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<unsigned char> payload{data, data + size};
  Decode<cmc::DT_views_struct>(payload);
  Decode<cmc::DT_switchControls_struct>(payload);
  Decode<cmc::DT_valueIndications_struct>(payload);
  Decode<cmc::DT_chargingProcessInformation_struct>(payload);
  return 0;
}
