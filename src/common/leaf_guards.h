// Compile-time guards over leaf rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/keyword_guards.h"
#include "common/leaf.h"

namespace ace::guard {

constexpr bool needs_keywords(Read read) {
    return read == Read::enumeration || read == Read::enum_or_u32 || read == Read::bits;
}

constexpr bool needs_keywords(Write write) {
    return write == Write::enumeration || write == Write::enum_or_u32 || write == Write::bits;
}

constexpr bool read_fits(Read read, std::uint8_t width) {
    switch (read) {
    case Read::u8:
        return width == sizeof(std::uint8_t);
    case Read::u16:
        return width == sizeof(std::uint16_t);
    case Read::u32:
    case Read::boolean:
    case Read::ipv4:
        return width == sizeof(std::uint32_t);
    case Read::string:
        return width == sizeof(char *);
    default:
        return width == 1 || width == 2 || width == 4;
    }
}

constexpr bool write_fits(Write write, std::uint8_t width) {
    switch (write) {
    case Write::boolean:
    case Write::ipv4:
        return width == sizeof(std::uint32_t);
    case Write::string:
        return width == sizeof(char *);
    default:
        return width <= sizeof(std::uint32_t);
    }
}

/// A keyword table exactly where one is needed, and reader and writer as wide
/// as the field.
constexpr bool well_formed(const Leaf &leaf) {
    const bool keywords = needs_keywords(leaf.read) || needs_keywords(leaf.write);
    return (leaf.read == Read::none || read_fits(leaf.read, leaf.field.width)) &&
           (leaf.write == Write::none || write_fits(leaf.write, leaf.field.width)) &&
           keywords == (leaf.keywords != nullptr) &&
           (leaf.read == Read::constant || leaf.constant == 0);
}

} // namespace ace::guard
