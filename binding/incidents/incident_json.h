#pragma once

#include "binding/incidents/identity.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <span>
#include <string_view>

/// What the forms of incidents are made of, item by item in the order of the text. Kept out of the templates, so that only one
/// source sees the JSON library.
namespace xr::com::cpp_binding::log::detail {

void put_identity(nlohmann::ordered_json& json, std::string_view name, const Identity& identity);
void put_number(nlohmann::ordered_json& json, std::string_view key, std::int64_t number);
void put_flag(nlohmann::ordered_json& json, std::string_view key, bool flag);
void put_text(nlohmann::ordered_json& json, std::string_view key, std::string_view text);
void put_handles(nlohmann::ordered_json& json, std::string_view key, std::span<const qe::com::runtime::Service_handle> handles);

}  // namespace xr::com::cpp_binding::log::detail
