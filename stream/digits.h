// Encodings as text, the way logs hold them: hexadecimal digits, or base64 (RFC 4648).
#pragma once

#include <string_view>

#include "stream/window.h"

namespace aceconv {

enum class Digits { hexadecimal, base64 };

/// The bytes that the digits of `text` stand for. Blanks and ends of lines may stand between
/// bytes, or in base64 between groups of four digits; "0x" before a byte is passed over, and
/// padding ends a piece, behind which another may begin. Reading throws StreamError for anything
/// else, with line and column, once what stands before has been read.
Window bytes_of_digits(Window text, Digits digits);

/// Whether a text that begins so can be nothing but encodings, or their labels, in these digits.
bool begins_with_encoding(std::string_view text, Digits digits);

} // namespace aceconv
