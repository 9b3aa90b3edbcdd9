// Bounds-checked string calls: the one place that knows the library behind them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ace {

/// Compares exactly, case included; the texts are equal when status and
/// `difference` are 0. `difference` is 0 before the call; a non-zero status is the
/// library's.
[[nodiscard]] std::uint32_t compare(const char *text, const char *literal, int &difference);

/// True when a node's name is `literal`. Most names differ in their first
/// character, which costs no call.
[[nodiscard]] inline bool name_is(const char *name, const char *literal) {
    if (name[0] != literal[0]) {
        return false;
    }
    int difference = 0;
    return compare(name, literal, difference) == 0 && difference == 0;
}

/// Fills `size` bytes with zero.
[[nodiscard]] std::uint32_t clear(char *destination, std::size_t size);

/// Copies at most `size` - 1 characters and terminates them.
[[nodiscard]] std::uint32_t copy_cut(char *destination, std::size_t size, const char *text);

} // namespace ace
