#pragma once

#include <memory>
#include <vector>

#include "ara/rest/allocator.h"
#include "ara/rest/exceptions.h"
#include "zuva/server_element.h"
#include "zuva/server_resource.h"

namespace zuva::server {

template <class T>
using ElementList = std::vector<std::shared_ptr<T>, ara::rest::StdAllocator<std::shared_ptr<T>>>;

/// The one element of a resource as its own class; a resource holds elements of one class only.
/// Throws `ara::rest::InvalidArgumentException` "ptr is null" for a null pointer.
template <class T>
std::shared_ptr<T> TypedElement(const std::shared_ptr<zuva::ServerElement>& element) {
  if (!element) throw ara::rest::InvalidArgumentException{"ptr is null"};
  return std::static_pointer_cast<T>(element);
}

/// A copy of the resource's elements, in insertion order; any thread. Throws as `TypedElement` does.
template <class T>
ElementList<T> TypedElements(zuva::ServerResource& resource) {
  ElementList<T> list{ara::rest::StdAllocator<std::shared_ptr<T>>{ara::rest::GetDefaultAllocator()}};
  for (const auto& element : resource.GetElements()) list.push_back(TypedElement<T>(element));
  return list;
}

}  // namespace zuva::server
