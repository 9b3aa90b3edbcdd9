// A leaf of either schema as one row: its name, how it is read and written, and
// where its value stands in the record.
#pragma once

#include <cstddef>
#include <cstdint>

#include "aceconv/ace_record.h"
#include "aceconv/host/yang_access.h"

namespace ace {

using Record = ipv4_acl_config_ace;

/// How an encoder reads a leaf. Keyword readers deliver 32 bits, of which the
/// field's low-order bits are stored; the others write the field in place.
enum class Read : std::uint8_t {
    none,
    enumeration, // a keyword
    enum_or_u32, // a keyword or a number
    bits,        // a set of keywords
    u8,
    u16,
    u32,
    boolean,
    ipv4,
    string,
    constant, // the leaf's appearance says it all: `constant` is stored
};

/// How a decoder writes a leaf, its value widened to 32 bits without sign.
enum class Write : std::uint8_t {
    none,
    enumeration,
    enum_or_u32,
    bits,
    u32,
    boolean,
    ipv4,
    string,
    empty, // written only when the field is non-zero
};

/// Where a member of the record stands, in bytes.
struct Field {
    std::uint16_t offset;
    std::uint8_t width;
};

#define ACE_FIELD(member)                                                                          \
    (::ace::Field{static_cast<std::uint16_t>(offsetof(ipv4_acl_config_ace, member)),               \
                  static_cast<std::uint8_t>(sizeof(ipv4_acl_config_ace::member))})

/// Presence bits, those of ConfigurationMask and of ConfigurationMask2; most sets
/// are of one bit.
struct Bits {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
};

constexpr Bits bit(unsigned number) {
    return {std::uint64_t{1} << number, 0};
}
constexpr Bits bit2(unsigned number) {
    return {0, std::uint64_t{1} << number};
}
constexpr Bits operator|(Bits a, Bits b) {
    return {a.first | b.first, a.second | b.second};
}

struct Leaf {
    const char *name;
    Read read;
    Write write;
    const ccv_yang_keyword *keywords;
    Field field;
    Bits bit;
    std::uint8_t constant = 0;
};

/// Whether one of the bits is set.
inline bool is_present(const Record &record, Bits bits) {
    return ((record.ConfigurationMask & bits.first) | (record.ConfigurationMask2 & bits.second)) !=
           0;
}

/// Sets all of the bits.
inline void set_present(Record &record, Bits bits) {
    record.ConfigurationMask |= bits.first;
    record.ConfigurationMask2 |= bits.second;
}

/// The member of type T at `field`.
template <typename T>
T &member(Record &record, Field field) {
    return *reinterpret_cast<T *>(reinterpret_cast<unsigned char *>(&record) + field.offset);
}

template <typename T>
const T &member(const Record &record, Field field) {
    return *reinterpret_cast<const T *>(reinterpret_cast<const unsigned char *>(&record) +
                                        field.offset);
}

/// A number of 1, 2 or 4 bytes, widened without sign.
inline std::uint32_t load(const Record &record, Field field) {
    switch (field.width) {
    case 1:
        return member<std::uint8_t>(record, field);
    case 2:
        return member<std::uint16_t>(record, field);
    default:
        return member<std::uint32_t>(record, field);
    }
}

/// Stores the low-order bits of `value`.
inline void store(Record &record, Field field, std::uint32_t value) {
    switch (field.width) {
    case 1:
        member<std::uint8_t>(record, field) = static_cast<std::uint8_t>(value);
        break;
    case 2:
        member<std::uint16_t>(record, field) = static_cast<std::uint16_t>(value);
        break;
    default:
        member<std::uint32_t>(record, field) = value;
        break;
    }
}

/// Reads `node` into the leaf's field. A string replaces and releases an
/// earlier one, but only once it has been read.
[[nodiscard]] std::uint32_t read_value(Record &record, ccv_yang_node *node, const Leaf &leaf);

/// Sets the leaf's presence bit and then reads it: a failed read leaves the bit
/// set in a record that its owner discards.
[[nodiscard]] inline std::uint32_t read_leaf(Record &record, ccv_yang_node *node,
                                             const Leaf &leaf) {
    set_present(record, leaf.bit);
    return read_value(record, node, leaf);
}

/// Writes the leaf, whatever its presence bit says, under the name `name`.
void write_value(ccv_yang_output *output, const Record &record, const Leaf &leaf, const char *name);

/// The same under the leaf's own name.
inline void write_value(ccv_yang_output *output, const Record &record, const Leaf &leaf) {
    write_value(output, record, leaf, leaf.name);
}

/// Writes the leaf when its presence bit is set.
inline void write_leaf(ccv_yang_output *output, const Record &record, const Leaf &leaf) {
    if (is_present(record, leaf.bit)) {
        write_value(output, record, leaf);
    }
}

} // namespace ace
