#pragma once

#include <memory>
#include <string>

#include "ara/rest/allocator.h"
#include "ara/rest/uri.h"
#include "ara/rest/uuid.h"

namespace trov::zuvaServer {

/// What makes an element take the URI that follows from its resource and its identifier.
inline ara::rest::Uri NoUri() {
  return ara::rest::Uri::Builder{ara::rest::GetDefaultAllocator()}.ToUri();
}

/// An element with nothing but a fresh identity and its type, named after its class. Throws `std::domain_error` for a type that the class
/// does not know.
template <class T>
std::shared_ptr<T> Made(const std::string& type) {
  auto object = T::Make(std::string{T::kModel.className}, ara::rest::Uuid::MakeV4(), NoUri());
  object->SetWord("type", type);
  return object;
}

}  // namespace trov::zuvaServer
