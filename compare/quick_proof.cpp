// Two counts instead of a search.
//
// A text keeps all that it says if each of its nodes is all that fills some part of
// the record. A tip of the text, a leaf or a container without children, fills one
// place of the record at most: the member that it is read into, all TCP flags, the
// ICMP message. No place is filled without a tip. So where tips and filled places are
// as many, each place has the value of one tip and each tip a place: none was stepped
// over, none replaced. As wide as the leaf's type, the place has its whole value.
//
// What a value means also depends on what stands beside it. That is seen to by name;
// nodes are in the module's order here, whatever the order of the text:
//
// - "range" comes last among the forms of a comparison, and each value in it sets the
//   operator: one with a place of its own counts in the record's ranges too. So values
//   under "range" are never more than values of the record's ranges, over all comparisons
//   together, and as many only where no range has a value of another form, say of "eq"
//   beside "end-value". Any other operator comes from the form that fills the one value.
// - "host" without a mask beside it, and "any" without address, mask or group, are as
//   they stand. All of these come before them in their container, so they are its first child.
// - Signs of TCP flags are read as meant unless an unsigned flag follows a negative one.
// - An entry with two actions, or an empty container that fills nothing, is not taken;
//   the one action, with children or without, is what the record's action is read from.
// - User-defined fields stand in one list of at most eight and are kept whole: the name's
//   16 bytes, both numbers' 32 bits. No tip below them counts, and no place.
//
// Text says all of a record if the record consists of nothing but forms that the schema
// has: then each marked member has its leaf, and reading the text marks and fills it
// again. That there is a text is given: a record that holds a number where the schema
// has names alone, or a user-defined field's name that no text may have, was refused
// when it was written. In the base schema every member has a leaf of its own. In the UM
// schema members of a group need each other; a record of other combinations may be said
// or not.
#include "compare/quick_proof.h"

#include <bit>
#include <cstring>

#include "compare/record_marks.h"
#include "compare/translation.h"

namespace aceconv {
namespace {

using Record = ipv4_acl_config_ace;

constexpr std::uint32_t any_code = 0xFFFF;

// ---- What the text says, and the record keeps ----------------------------------

struct Count {
    int places = 0;
    int of_ranges = 0; // those among them

    bool operator==(const Count &) const = default;
};

Count count_places(const Record &record) {
    const RecordMarks &all = record_marks();
    Count count;
    count.places = std::popcount(record.ConfigurationMask & all.single.first) +
                   std::popcount(record.ConfigurationMask2 & all.single.second) +
                   int{has(record, all.icmp)} +
                   int{has(record, all.flag_match | all.flags | all.flag_mask)} +
                   int{has(record, all.hop_type) && record.nexthop == default_hop_code};
    for (const Comparison &row : all.comparisons) {
        if (has(record, row.operation) && record.*row.code == range_code) {
            count.of_ranges += std::popcount(record.ConfigurationMask & (row.first | row.second));
        }
    }
    return count;
}

/// Whether each sign stands in front of a flag, and none is left out behind a "-".
bool signs_are_plain(std::string_view text) {
    bool negative = false;
    char before = ' ';
    for (const char byte : text) {
        const bool is_sign = byte == '+' || byte == '-';
        const bool starts = before == ' ';
        if ((is_sign && !starts) || (!is_sign && byte != ' ' && starts && negative) ||
            (byte == ' ' && (before == '+' || before == '-'))) {
            return false;
        }
        negative = negative || byte == '-';
        before = byte;
    }
    return !text.empty() && before != '+' && before != '-';
}

/// Counts the tips below `parent`; false when one of them may mean something else
/// than it says.
bool count_tips(const ccv_yang_node &parent, Count &tips) {
    const ccv_yang_node *first = first_child(parent);
    const int in_range = node_name(parent) == "range" ? 1 : 0;
    for (const ccv_yang_node *node = first; node != nullptr; node = next_sibling(*node)) {
        const std::string_view name = node_name(*node);
        if (is_leaf(*node)) {
            ++tips.places;
            tips.of_ranges += in_range;
            if ((name == "host" && node != first) ||
                (name == "tcp-bits" && !signs_are_plain(leaf_text(*node)))) {
                return false;
            }
        } else if (first_child(*node) != nullptr) {
            if (name != "udf-entries" && !count_tips(*node, tips)) {
                return false;
            }
        } else if (name != "any") {
            ++tips.places;
        } else if (node != first) {
            return false;
        }
    }
    return true;
}

// ---- What the record holds, and the text says ----------------------------------

bool is_said(const Record &record, const Comparison &row) {
    const Mask marks = record.ConfigurationMask & (row.operation | row.first | row.second);
    if (marks == 0 || marks == row.first) {
        return marks == 0 || row.without_operator;
    }
    const std::uint8_t code = record.*row.code;
    return code == range_code ? marks == (row.operation | row.first | row.second)
                              : marks == (row.operation | row.first) && code >= equal_code &&
                                    code <= row.last_single;
}

bool flags_are_said(const Record &record, const RecordMarks &all) {
    if (!has(record, all.flag_match)) {
        return !has(record, all.flag_mask) && has(record, all.flags) == (record.tcpflags != 0);
    }
    return (record.tcpflagsopr == match_all_code || record.tcpflagsopr == match_any_code) &&
           record.tcpflags_mask != 0 && (record.tcpflags & ~record.tcpflags_mask) == 0 &&
           has(record, all.flags) == (record.tcpflags != 0);
}

bool hops_are_said(const Record &record, const RecordMarks &all) {
    if (!has(record, all.hop_type)) {
        return !has(record, all.first_hop | all.other_hop);
    }
    return record.nexthop == regular_hop_code
               ? has(record, all.first_hop)
               : record.nexthop == default_hop_code && !has(record, all.first_hop | all.other_hop);
}

bool user_fields_are_said(const Record &record, const RecordMarks &all) {
    constexpr std::uint32_t most = 8;
    const std::uint32_t count = record.UDF.count;
    const Mask elements = (Mask{1} << count % second_mask) - 1;
    if (count > most || (record.ConfigurationMask2 & all.user_fields) !=
                            (elements | elements << 8 | elements << 16)) {
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const char *name = record.UDF.elements[i].UDFName;
        const char *end = name + sizeof record.UDF.elements[i].UDFName;
        for (const char *at = name + std::strlen(name); at != end; ++at) {
            if (*at != '\0') {
                return false;
            }
        }
    }
    return true;
}

/// Whether the code tells which of the two bits marks it.
bool message_is_said(const Record &record, const RecordMarks &all) {
    const Mask marks = record.ConfigurationMask & all.icmp;
    const bool any = (record.icmp_type_code & any_code) == any_code;
    return marks == 0 || marks == (any ? all.any_code : all.icmp & ~all.any_code);
}

/// What both schemas want.
bool is_said_by_any(const Record &record, Schema schema, const RecordMarks &all) {
    const Marks &leaves = all.said[schema == Schema::um ? 1 : 0];
    // The base encoder derives the bits of next hops that have no leaf.
    Record plain = record;
    clear_derived_bits(plain);
    if ((plain.ConfigurationMask & ~leaves.first) != 0 ||
        (plain.ConfigurationMask2 & ~leaves.second) != 0) {
        return false;
    }
    for (const Switch &row : all.switches) {
        const bool marked = (record.ConfigurationMask & row.mark.first) != 0 ||
                            (record.ConfigurationMask2 & row.mark.second) != 0;
        if (record.*row.value != (marked ? 1 : 0)) {
            return false;
        }
    }
    return record.capture <= 1 && message_is_said(record, all);
}

/// What the UM schema wants besides.
bool is_said_by_um(const Record &record, const RecordMarks &all) {
    if (!has(record, all.action)) {
        return (record.ConfigurationMask & ~all.remark) == 0 && record.ConfigurationMask2 == 0;
    }
    for (const Comparison &row : all.comparisons) {
        if (!is_said(record, row)) {
            return false;
        }
    }
    for (const Side &side : all.sides) {
        if (has(record, side.mask) && !has(record, side.address)) {
            return false;
        }
    }
    const bool denies = record.grant == 0;
    return (denies || (record.grant == 1 && record.icmp_off == 0 && record.icmp_on == 0)) &&
           has(record, all.capture) == (record.capture != 0) &&
           has(record, all.log) == (record.log == 1 || record.log == 2) &&
           flags_are_said(record, all) && hops_are_said(record, all) &&
           user_fields_are_said(record, all);
}

} // namespace

bool surely_kept(const ccv_yang_node &entry, const Record &record) {
    Count tips;
    bool acts = false;
    for (const ccv_yang_node *node = first_child(entry); node != nullptr;
         node = next_sibling(*node)) {
        if (is_leaf(*node)) {
            tips.places += node_name(*node) == "sequence-number" ? 0 : 1;
        } else if (acts || !count_tips(*node, tips)) {
            return false;
        } else {
            acts = true;
        }
    }
    return tips == count_places(record);
}

bool surely_said(const RecordView &view, const Record &record, Schema schema) {
    const RecordMarks &all = record_marks();
    return view.marks_all(record) && is_said_by_any(record, schema, all) &&
           (schema == Schema::base || is_said_by_um(record, all));
}

} // namespace aceconv
