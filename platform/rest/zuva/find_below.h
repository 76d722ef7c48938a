#pragma once

#include <memory>
#include <string>

#include "ara/rest/uuid.h"
#include "zuva/base_x_object.h"

/// The three finders, once for all levels: depth first, in insertion order.
namespace zuva::impl {

struct ByName {
  const std::string& text;
  bool Is(const BaseXObject& object) const { return object.GetName() == text; }
  std::shared_ptr<BaseXObject> Below(const auto& parent) const { return parent.FindByNameRecursive(text); }
};

struct ByUuid {
  const std::string& text;
  bool Is(const BaseXObject& object) const { return ara::rest::Uuid::Parse(text) == object.GetUuid(); }
  std::shared_ptr<BaseXObject> Below(const auto& parent) const { return parent.FindByUuidRecursive(text); }
};

struct ByUri {
  const std::string& text;
  bool Is(const BaseXObject& object) const { return object.GetUri().GetText() == text; }
  std::shared_ptr<BaseXObject> Below(const auto& parent) const { return parent.FindByUriRecursive(text); }
};

std::shared_ptr<BaseXObject> FindIn(const auto& list, const auto& wanted) {
  for (const auto& object : list) {
    if (wanted.Is(*object)) return object;
  }
  return nullptr;
}

std::shared_ptr<BaseXObject> FindBelow(const auto& list, const auto& wanted) {
  for (const auto& object : list) {
    if (wanted.Is(*object)) return object;
    if (auto found = wanted.Below(*object)) return found;
  }
  return nullptr;
}

}  // namespace zuva::impl
