// One CBOR item at a time, and the small rules of the deterministic form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "host/cbor_head.h"

namespace aceconv {

/// An item's head, and the content of a string. Elements of arrays and maps
/// follow as items of their own.
struct Item {
    CborKind kind;       // negative numbers count as other
    std::uint64_t value; // the number, or the bytes, elements or pairs that it counts
    std::size_t size;    // bytes taken in the encoding
};

enum class ItemStatus : std::uint8_t { ok, cut_off, malformed };

[[nodiscard]] ItemStatus read_item(std::span<const std::uint8_t> bytes, Item &item) noexcept;

/// Whether a number, string, array or map has the shortest possible head
/// (RFC 8949, section 4.2.1).
[[nodiscard]] bool is_shortest(const Item &item) noexcept;

} // namespace aceconv
