#pragma once

/*% for service in services %*/
#include "model/name_tables_${service.snake}.h"
#include "model/records_${service.snake}.h"
/*% endfor %*/

#include <array>
#include <string_view>

namespace vehicle {

/// The names of a record's members, in the order of its visit.
template <class Record>
struct MemberNames;

/*% for service in services %*/
/*% for record, members in service.records.items() %*/
template <>
struct MemberNames<${service.namespace}::datatypes::${record}> {
  static constexpr std::array<std::string_view, ${members | length}> kNames{
      /*% for member in members %*/
      "${member.member}",
      /*% endfor %*/
  };
};

/*% endfor %*/
/*% endfor %*/
}  // namespace vehicle
