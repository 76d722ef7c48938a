#pragma once

#include "binding/serialization/json_serializer.h"
#include "binding/serialization/serializer.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// A field's value of any record type: a `const std::vector<Record>`.
using Any_sample = std::shared_ptr<const void>;

struct Decoded_sample {
  Any_sample sample;
  std::size_t bytes;  // what it holds in memory, near enough to bound a queue
};

/// What the runtime does with a record type, so that everything else is compiled once for all.
struct Record_operations {
  Decoded_sample (*decode)(const std::vector<unsigned char>& payload, const someip::serialization::Serialization_properties&);
  void (*write_json)(json::Json_text& to, const void* sample);
};

template <class Record>
struct Operations_of {
  static Decoded_sample decode(const std::vector<unsigned char>& payload,
                               const someip::serialization::Serialization_properties& properties) {
    auto records = std::make_shared<const std::vector<Record>>(someip::serialization::deserialize<Record>(payload, properties));
    // Strings and vectors inside the records hold about what they took on the wire.
    const auto bytes = records->capacity() * sizeof(Record) + payload.size();
    return {std::move(records), bytes};
  }

  static void write_json(json::Json_text& to, const void* sample) {
    json::serialization::Json_serializer::write(to, *static_cast<const std::vector<Record>*>(sample));
  }

  static constexpr Record_operations value{&decode, &write_json};
};

}  // namespace xr::com::cpp_binding::proxy
