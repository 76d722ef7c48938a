#pragma once

#include <cstdint>
#include <string_view>

#include "zuva/preconditions.h"
#include "zuva/query.h"

namespace zuva {

enum class Method : std::uint8_t { Get, Head, Post, Put, Delete, Unknown };

/// One request, whatever it came by. Views and pointers belong to whoever made it and outlive its handling.
struct Request {
  Method method = Method::Get;
  std::string_view path;
  Query query;
  const ogm::Object* body = nullptr;  ///< the posted object, with POST
  Preconditions preconditions;        ///< of a POST; those of a GET are the serving side's
};

}  // namespace zuva
