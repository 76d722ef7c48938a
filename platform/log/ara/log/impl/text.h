#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ara::log::impl {

/// The longest head of `text` of at most `limit` bytes that does not end within a UTF-8 character (RFC 3629).
std::string_view CutOnCharacter(std::string_view text, std::size_t limit) noexcept;

/// Appends `text` with its control characters as `\xNN`, so that one record stays one line.
void AppendEscaped(std::string& out, std::string_view text);

}  // namespace ara::log::impl
