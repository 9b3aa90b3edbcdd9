// UTF-8, and the characters that YANG strings may hold.
#pragma once

#include <string>
#include <string_view>

namespace aceconv {

/// Whether `text` is UTF-8 as RFC 3629 has it.
[[nodiscard]] bool is_utf8(std::string_view text) noexcept;

/// Null when `text` is UTF-8 of characters that a YANG string may hold (RFC
/// 7950, section 14), else what is wrong with it.
const char *text_fault(std::string_view text);

/// Appends the UTF-8 form of a code point.
void append_utf8(std::string &text, char32_t character);

} // namespace aceconv
