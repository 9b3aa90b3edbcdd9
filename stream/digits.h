// Encodings as text, the way logs hold them: hexadecimal digits, or base64 (RFC 4648).
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <utility>

#include "stream/window.h"

namespace aceconv {

enum class Digits { hexadecimal, base64 };

/// The lines of a text by the bytes that their digits stand for.
class DigitLines {
  public:
    /// The digits of a line begin with this byte; in ascending order.
    void note(std::uint64_t byte, std::uint64_t line) { begins_.emplace_back(byte, line); }
    /// The line of a byte that has been read, which does not stand before one asked for earlier.
    std::uint64_t line_of(std::uint64_t byte);

  private:
    std::deque<std::pair<std::uint64_t, std::uint64_t>> begins_; // from the one last asked for
};

/// The bytes that the digits of `text` stand for. Blanks and ends of lines may stand between
/// bytes, or in base64 between groups of four digits; "0x" before a byte is passed over, and
/// padding ends a piece, behind which another may begin. Reading throws StreamError for anything
/// else, with line and column, once what stands before has been read. Lines are noted in `lines`.
Window bytes_of_digits(Window text, Digits digits, std::shared_ptr<DigitLines> lines);

/// Whether a text that begins so can be nothing but encodings, or their labels, in these digits.
bool begins_with_encoding(std::string_view text, Digits digits);

} // namespace aceconv
