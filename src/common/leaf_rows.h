// Makers of leaf rows, by how a leaf is read and written.
#pragma once

#include "common/leaf.h"

namespace ace::row {

/// A keyword alone.
constexpr Leaf keyword(const char *name, const ccv_yang_keyword *table, Field field, Bits present) {
    return {name, Read::enumeration, Write::enumeration, table, field, present};
}

/// A keyword or a number, written as a keyword where one exists.
constexpr Leaf keyword_or_number(const char *name, const ccv_yang_keyword *table, Field field,
                                 Bits present) {
    return {name, Read::enum_or_u32, Write::enum_or_u32, table, field, present};
}

/// A keyword or a number, always written as a number.
constexpr Leaf named_number(const char *name, const ccv_yang_keyword *table, Field field,
                            Bits present) {
    return {name, Read::enum_or_u32, Write::u32, table, field, present};
}

/// A set of keywords.
constexpr Leaf flags(const char *name, const ccv_yang_keyword *table, Field field, Bits present) {
    return {name, Read::bits, Write::bits, table, field, present};
}

/// A number as wide as its field.
constexpr Leaf number(const char *name, Field field, Bits present) {
    const Read read = field.width == 1 ? Read::u8 : field.width == 2 ? Read::u16 : Read::u32;
    return {name, read, Write::u32, nullptr, field, present};
}

constexpr Leaf address(const char *name, Field field, Bits present) {
    return {name, Read::ipv4, Write::ipv4, nullptr, field, present};
}

constexpr Leaf text(const char *name, Field field, Bits present) {
    return {name, Read::string, Write::string, nullptr, field, present};
}

constexpr Leaf boolean(const char *name, Field field, Bits present) {
    return {name, Read::boolean, Write::boolean, nullptr, field, present};
}

/// A leaf without a value.
constexpr Leaf empty(const char *name, Field field, Bits present) {
    return {name, Read::constant, Write::empty, nullptr, field, present, 1};
}

} // namespace ace::row
