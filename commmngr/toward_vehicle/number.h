#pragma once

#include <string>

#include "commmngr/interfaces/types.h"
#include "model/name_tables_charging_management_core.h"

namespace trov::commMngr {

/// The enumeration value of a REST word, or none for a word outside the table.
template <class E>
Opt<E> Number(const std::string& word) {
  const auto& numbers = Names<E>::Inverse();
  const auto found = numbers.find(word);
  if (found == numbers.end()) return {};
  return found->second;
}

}  // namespace trov::commMngr
