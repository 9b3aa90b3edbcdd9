// Heads of CBOR items (RFC 8949, section 3) in their shortest form (section 4.2.1),
// the only one that is written here. Other heads are libcbor's matter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <endian.h>
#include <iterator>

namespace aceconv {

enum class CborKind : std::uint32_t {
    number, // unsigned; this and what follows as the upper three bits have it
    negative,
    bytes,
    text,
    array,
    map,
    tag,
    other,     // simple values, floats
    indefinite // starts and breaks of items of indefinite length
};

struct CborHead {
    CborKind kind;
    std::uint32_t size;  // bytes
    std::uint64_t value; // a number, or how many bytes, elements or pairs follow
};

/// The longest head, in bytes.
constexpr std::size_t max_cbor_head = 9;

/// The least values that need 1, 2, 4 and 8 bytes behind a head's first.
constexpr std::uint64_t least_cbor_values[] = {24, UINT8_MAX + 1, UINT16_MAX + 1,
                                               std::uint64_t{UINT32_MAX} + 1};

/// Reads the head that starts at `at`. False when that is cut off, of indefinite length or
/// not in its shortest form.
[[nodiscard]] inline bool read_cbor_head(const std::uint8_t *at, const std::uint8_t *end,
                                         CborHead &head) noexcept {
    if (at == end) {
        return false;
    }
    const unsigned info = *at & 0x1FU;
    head.kind = static_cast<CborKind>(*at >> 5U);
    if (info < 24) {
        head.size = 1;
        head.value = info;
        return true;
    }
    const unsigned power = info - 24;
    if (power >= std::size(least_cbor_values)) {
        return false;
    }
    const unsigned width = 1U << power;
    const auto left = static_cast<std::size_t>(end - at);
    head.size = 1 + width;
    head.value = 0;
    if (left >= max_cbor_head) {
        std::memcpy(&head.value, at + 1, sizeof head.value);
        head.value = be64toh(head.value) >> (64 - 8 * width);
    } else if (left >= head.size) {
        for (unsigned i = 1; i <= width; ++i) {
            head.value = head.value << 8U | at[i];
        }
    }
    return head.value >= least_cbor_values[power];
}

/// Reads a number and returns where it ends; null when there is none, or read_cbor_head is false.
[[nodiscard]] inline const std::uint8_t *
read_cbor_number(const std::uint8_t *at, const std::uint8_t *end, std::uint64_t &value) noexcept {
    if (at != end && *at < 24) { // most of them
        value = *at;
        return at + 1;
    }
    CborHead head;
    if (!read_cbor_head(at, end, head) || head.kind != CborKind::number) {
        return nullptr;
    }
    value = head.value;
    return at + head.size;
}

/// Writes a head in its shortest form and returns where it ends; max_cbor_head bytes are
/// overwritten.
inline std::uint8_t *put_cbor_head(std::uint8_t *at, CborKind kind, std::uint64_t value) noexcept {
    const auto first = static_cast<std::uint32_t>(kind) << 5U;
    if (value < 24) {
        *at = static_cast<std::uint8_t>(first | value);
        return at + 1;
    }
    const unsigned power = value <= UINT8_MAX    ? 0
                           : value <= UINT16_MAX ? 1
                           : value <= UINT32_MAX ? 2
                                                 : 3;
    const unsigned size = 1U << power;
    *at = static_cast<std::uint8_t>(first | (24 + power));
    const std::uint64_t big_endian = htobe64(value << (64 - 8 * size));
    std::memcpy(at + 1, &big_endian, sizeof big_endian);
    return at + 1 + size;
}

} // namespace aceconv
