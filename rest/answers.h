#pragma once

/// The texts of the answers to a refused POST. Clients see them as they stand.
namespace zuva::server {

inline constexpr const char* kMissingParameter = "Conflict: required parameter(s) missing";
inline constexpr const char* kForeignParameter = "Conflict: not allowed parameter(s) included";
inline constexpr const char* kBadMessage = "Bad Message";
inline constexpr const char* kValueNotAllowed = "Bad Request: value not in allowed range";

}  // namespace zuva::server
