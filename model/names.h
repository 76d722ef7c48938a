#pragma once

namespace trov {

/// The words of an enumeration of a vehicle service: `Direct()` from value to word, `Inverse()` from word to value, both a
/// constant `std::unordered_map`. Specialised beside the tables, in "model/name_tables_<service>.h".
template <class Enumeration>
struct Names;

}  // namespace trov
