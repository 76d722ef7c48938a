#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "model/enumerations_${service.snake}.h"
#include "model/optional.h"
#include "model/structure_tag.h"

// Every record is a plain value whose members are all optional. `visit` calls the visitor once per member, in the order of
// declaration, with the member and its tag; `get_tlv_tags` gives the tags in that order.
namespace ${service.namespace}::datatypes {

using uuid16 = std::array<unsigned char, 16>;
using Tag = xr::com::someip::serialization::Structure_tag;
/*% for name in service.references %*/

// A link to an element of another resource. Its members are mandatory and have no tags.
struct ${name} {
  std::uint16_t idPart1 = 0;
  std::uint16_t idPart2 = 0;
  std::uint16_t idPart3 = 0;
  uuid16 uuid{};

  template <class Visitor>
  void visit(Visitor&& visitor) {
    visit_members(*this, visitor);
  }
  template <class Visitor>
  void visit(Visitor&& visitor) const {
    visit_members(*this, visitor);
  }

  bool operator==(const ${name}&) const = default;

 private:
  template <class Self, class Visitor>
  static void visit_members(Self& self, Visitor& visitor) {
    visitor(self.idPart1);
    visitor(self.idPart2);
    visitor(self.idPart3);
    visitor(self.uuid);
  }
};
/*% endfor %*/
/*% for name, members in service.records.items() %*/

struct ${name} {
/*% for member in members %*/
  qe::com::optional<${member.type}> ${member.member};
/*% endfor %*/

  static const std::array<Tag, ${members | length}>& get_tlv_tags() {
    static const std::array<Tag, ${members | length}> tags{
/*% for member in members %*/
        Tag{Tag::Wire_type::${member.wire | wire}, ${member.id}},
/*% endfor %*/
    };
    return tags;
  }

  template <class Visitor>
  void visit(Visitor&& visitor) {
    visit_members(*this, visitor);
  }
  template <class Visitor>
  void visit(Visitor&& visitor) const {
    visit_members(*this, visitor);
  }

  bool operator==(const ${name}&) const = default;

 private:
  template <class Self, class Visitor>
  static void visit_members(Self& self, Visitor& visitor) {
/*% for member in members %*/
    visitor(self.${member.member}, Tag{Tag::Wire_type::${member.wire | wire}, ${member.id}});
/*% endfor %*/
  }
};
/*% endfor %*/

}  // namespace ${service.namespace}::datatypes
