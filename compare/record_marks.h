// The record's presence bits by what their members are, from the table of fields.
#pragma once

#include <cstdint>

#include "aceconv/ace_record.h"
#include "compare/record_fields.h"

namespace aceconv {

/// Bits of ConfigurationMask; those of the other mask are named so.
using Mask = std::uint64_t;

struct Marks {
    Mask first = 0;
    Mask second = 0; // of ConfigurationMask2
};

/// A value or two that packets are compared with.
struct Comparison {
    Group group;
    std::uint8_t ipv4_acl_config_ace::*code;
    std::uint8_t last_single; // the last operator that has one value
    bool without_operator;    // UM has a form without one
    Mask operation, first, second;
};

struct Side {
    Mask address, mask; // or prefix length
};

/// A member whose only value is 1, since its leaf is empty.
struct Switch {
    std::uint8_t ipv4_acl_config_ace::*value;
    Marks mark;
};

struct RecordMarks {
    Comparison comparisons[7];
    Side sides[2];
    Switch switches[3];
    Mask action, capture, remark, log;
    Mask icmp, any_code; // any_code is one of the two of icmp
    Mask flag_match, flags, flag_mask;
    Mask hop_type, first_hop, other_hop;
    Mask user_fields; // of ConfigurationMask2
    Marks said[2];    // of members that have a leaf, by schema
    Marks single;     // of members that are each filled by one leaf or presence container
};

const RecordMarks &record_marks();

/// The bits that mark one field.
Marks marks_of(const RecordField &field);

/// Operators, ways to match flags, and types of next hops.
constexpr std::uint8_t equal_code = 1;
constexpr std::uint8_t not_equal_code = 4;
constexpr std::uint8_t range_code = 5;
constexpr std::uint8_t match_all_code = 1;
constexpr std::uint8_t match_any_code = 3;
constexpr std::uint8_t regular_hop_code = 1;
constexpr std::uint8_t default_hop_code = 2;

inline bool has(const ipv4_acl_config_ace &record, Mask marks) {
    return (record.ConfigurationMask & marks) != 0;
}

} // namespace aceconv
