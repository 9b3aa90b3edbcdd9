// What the record's members are called, how their values read and what part of
// an entry they are: the one table that inspect, convert, check and diff share.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "aceconv/keywords.h"
#include "host/entry.h"

namespace aceconv {

/// Presence bits: 0 to 63 of ConfigurationMask, then those of ConfigurationMask2.
constexpr int second_mask = 64;
constexpr int mask_bits = 128;

/// Whether the bit marks no member, but the second or third next hop as configured.
constexpr bool is_next_hop_bit(int bit) {
    return bit == 42 || bit == 43;
}

/// Members that have a meaning together.
enum class Group : std::uint8_t {
    none,
    action,
    protocol,
    source_address,
    destination_address,
    source_port,
    destination_port,
    dscp,
    tcp,
    packet_length,
    ttl,
    fragment_offset,
    next_hop,
};

/// What a member is within its group.
enum class Part : std::uint8_t {
    whole, // it has no group, or is all of it
    operation,
    first,  // the compared value, or the first one of a range
    second, // the last one of a range
    address,
    address_mask, // or prefix length
    flags,
    flag_mask,
    hop_type,
    first_hop, // its address, VRF or tracked object
    other_hop,
};

struct RecordField {
    const char *name; // as in the bag description; nested ones with a dot
    int first_bit;    // -1: none
    int last_bit;     // of a run of bits that mark the same member
    const ccv_yang_keyword *base_keywords;
    const ccv_yang_keyword *um_keywords;
    bool flags;            // the keywords name bits
    const char *base_leaf; // path below the entry; null where the schema has none
    const char *um_leaf;   // path below "permit" or "deny"
    bool matches;          // packets are compared with it
    Group group = Group::none;
    Part part = Part::whole;

    [[nodiscard]] const char *leaf(Schema schema) const {
        return schema == Schema::base ? base_leaf : um_leaf;
    }
    [[nodiscard]] const ccv_yang_keyword *keywords(Schema schema) const {
        return schema == Schema::base ? base_keywords : um_keywords;
    }
};

std::span<const RecordField> record_fields();
const RecordField *find_field(std::string_view name);

/// The name of `value`: a keyword, the names of the flags set, or "".
std::string keyword_name(const RecordField &field, Schema schema, std::uint64_t value);

/// "5" or "2:24".
std::string bit_name(int bit);

} // namespace aceconv
