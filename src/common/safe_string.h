// Bounds-checked string calls: the one place that knows the library behind them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ace {

/// Compares exactly, case included. A non-zero status is the library's, and
/// `equal` is then false.
[[nodiscard]] std::uint32_t compare(const char *text, const char *literal, bool &equal);

/// True when a node's name is `literal`. Most names differ in their first
/// character, which costs no call.
[[nodiscard]] inline bool name_is(const char *name, const char *literal) {
    bool equal = false;
    return name[0] == literal[0] && compare(name, literal, equal) == 0 && equal;
}

/// Fills `size` bytes with zero.
[[nodiscard]] std::uint32_t clear(char *destination, std::size_t size);

/// Copies at most `size` - 1 characters and terminates them.
[[nodiscard]] std::uint32_t copy_cut(char *destination, std::size_t size, const char *text);

} // namespace ace
