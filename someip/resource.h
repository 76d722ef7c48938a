#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "binding/proxy/field.h"
#include "model/resource_types.h"

/// The resources of a vehicle service as a list of types: the one place where a resource's number meets its field.
namespace trov::someip {

/// @tparam id_ number of the resource; @tparam field_ the proxy's field, such as &Proxy::views; @tparam cache_ samples that the event's
/// cache holds.
template <enums::SOMEIP_RESOURCE_TYPE id_, auto field_, std::size_t cache_>
struct Resource {
 private:
  template <class Proxy, class Description>
  static Description DescriptionOf(ara::com::internal::proxy::Field<Description> Proxy::*);

 public:
  using Description = decltype(DescriptionOf(field_));
  using Record = typename Description::Record;
  using Records = std::vector<Record>;
  using Samples = std::vector<std::shared_ptr<const Records>>;

  static constexpr auto id = id_;
  static constexpr auto field = field_;
  static constexpr std::size_t cacheSize = cache_;
};

template <class... R>
struct ResourceList {
  /// Calls `visit(R{})` for the resource with this number; false if the service does not serve it.
  template <class Visit>
  static bool With(enums::SOMEIP_RESOURCE_TYPE id, Visit&& visit) {
    return ((R::id == id && (visit(R{}), true)) || ...);
  }

  /// `Of<Template>` is `Template<R...>`.
  template <template <class...> class Template>
  using Of = Template<R...>;
};

}  // namespace trov::someip
