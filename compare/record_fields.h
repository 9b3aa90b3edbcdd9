// What the record's members are called and how their values read: the one
// table that inspect, convert, check and diff share.
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

struct RecordField {
    const char *name; // as in the bag description; nested ones with a dot
    int first_bit;    // -1: none
    int last_bit;     // of a run of bits that mark the same member
    const ccv_yang_keyword *base_keywords;
    const ccv_yang_keyword *um_keywords;
    bool flags;            // the keywords name bits
    const char *base_leaf; // path below the entry; null where the schema has none
    const char *um_leaf;   // path below "permit" or "deny"
};

std::span<const RecordField> record_fields();
const RecordField *find_field(std::string_view name);

/// The name of `value`: a keyword, the names of the flags set, or "".
std::string keyword_name(const RecordField &field, Schema schema, std::uint64_t value);

/// "5" or "2:24".
std::string bit_name(int bit);

} // namespace aceconv
