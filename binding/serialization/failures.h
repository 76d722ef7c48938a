#pragma once

#include "binding/serialization/serialization_properties.h"

/// The ways in which encoding and decoding fail, one function each, so that the hot loops carry no exception construction.
namespace xr::com::someip::serialization::failures {

[[noreturn]] void read_beyond_end();
[[noreturn]] void seek_beyond_end();
[[noreturn]] void destination_missing();
[[noreturn]] void end_position_invalid();
[[noreturn]] void end_position_overflow();
[[noreturn]] void length_does_not_fit();
[[noreturn]] void length_field_size_invalid();
[[noreturn]] void length_too_small();
[[noreturn]] void length_smaller_than_expected();
[[noreturn]] void length_field_sizes_differ(const Serialization_properties& properties);
[[noreturn]] void wire_type_mismatch();
[[noreturn]] void tag_list_missing();
[[noreturn]] void vector_without_length_field();

}  // namespace xr::com::someip::serialization::failures
