#include "binding/serialization/failures.h"

#include <stdexcept>
#include <string>

namespace xr::com::someip::serialization::failures {

void read_beyond_end() {
  throw std::out_of_range{"Read beyond the end of the data buffer"};
}

void seek_beyond_end() {
  throw std::out_of_range{"Seek beyond the end of the data buffer"};
}

void destination_missing() {
  throw std::invalid_argument{"destination cannot be NULL"};
}

void end_position_invalid() {
  throw std::out_of_range{"Deserialization calculated invalid end position."};
}

void end_position_overflow() {
  throw std::overflow_error{"Deserialization detected std::size_t overflow."};
}

void length_does_not_fit() {
  throw std::overflow_error{"Calculated record length does not fit into configured length field"};
}

void length_field_size_invalid() {
  throw std::invalid_argument{"Invalid value for length field size."};
}

void length_too_small() {
  throw std::out_of_range{
      "Violation of [PRS_SOMEIP_00900]: Record length given by sender is too small. "
      "This is possibly due to a mismatch between the data models of sender and receiver."};
}

void length_smaller_than_expected() {
  throw std::out_of_range{
      "Violation of [PRS_SOMEIP_00900]: Record length provided by sender is smaller than expected. "
      "This is possibly due to a mismatch between the data models of sender and receiver."};
}

void length_field_sizes_differ(const Serialization_properties& properties) {
  throw std::runtime_error{
      "Violation of COM.PRS_SOMEIP_00215: All length fields must have same size and not be 0 when wire type 4 is used (" +
      std::to_string(properties.arrayLengthFieldSize) + ", " + std::to_string(properties.recordLengthFieldSize) + ", " +
      std::to_string(properties.stringLengthFieldSize) + ")"};
}

void wire_type_mismatch() {
  throw std::runtime_error{"Invalid source tag wire type"};
}

void tag_list_missing() {
  throw std::runtime_error{"Deserialization of a type in TLV mode, but no tag list generated. This is an error in the generator."};
}

void vector_without_length_field() {
  throw std::invalid_argument{
      "Vectors must have a length field that deserializer can also deserialize it. "
      "Violation of PRS_SOMEIP_00376 & PRS_SOMEIP_00107!"};
}

}  // namespace xr::com::someip::serialization::failures
