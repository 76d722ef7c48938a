#pragma once

#include "binding/incidents/identity.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What the forms of incidents are made of, item by item in the order of the text: members of the object that the incident is.
namespace xr::com::cpp_binding::log::detail {

void put_identity(json::Json_text& json, std::string_view name, const Identity& identity);
void put_number(json::Json_text& json, std::string_view key, std::int64_t number);
void put_flag(json::Json_text& json, std::string_view key, bool flag);
void put_text(json::Json_text& json, std::string_view key, std::string_view text);
void put_handles(json::Json_text& json, std::string_view key, std::span<const qe::com::runtime::Service_handle> handles);

/// The text of a JSON object of at most `limit` bytes: a longer one ends behind its last member or array element that still fits, with
/// all that is open closed and `"cut":true` as the last member of the whole.
std::string cut_to(std::string text, std::size_t limit);

}  // namespace xr::com::cpp_binding::log::detail
