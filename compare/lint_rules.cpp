#include "compare/lint_rules.h"

#include <algorithm>
#include <bit>

namespace aceconv {

namespace {

using Record = ipv4_acl_config_ace;
using As = Compared::As;

constexpr Mask bit(int n) {
    return Mask{1} << n;
}

/// The sides of an address and what their leaves fill.
struct SideFields {
    const char *name;
    SideAddress (*of)(const Record &);
    const char *length, *wildcard;
};
constexpr SideFields sides[] = {{"source", source_of, "spfx_len", "smask"},
                                {"destination", destination_of, "dpfx_len", "dmask"}};

std::string quad(std::uint32_t address) {
    return std::to_string(address >> 24) + "." + std::to_string(address >> 16 & 255) + "." +
           std::to_string(address >> 8 & 255) + "." + std::to_string(address & 255);
}

/// Adds a warning about the leaf that fills `field`, or about no single one.
void warn(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings, const char *field,
          std::string text) {
    const char *leaf = field == nullptr ? nullptr : find_field(field)->leaf(entry.schema);
    warnings.push_back({&rule, leaf == nullptr ? "" : leaf, std::move(text), std::nullopt});
}

// ---- Addresses -------------------------------------------------------------------------

void check_prefix_length(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    for (const SideFields &side : sides) {
        const SideAddress address = side.of(entry.record);
        if (address.has_length && address.length > 32) {
            warn(rule, entry, warnings, side.length,
                 std::string(side.name) + " prefix length " + std::to_string(address.length) +
                     ", and an address has 32 bits");
        }
    }
}

/// The bits that are set are the last ones.
bool is_prefix_wildcard(std::uint32_t wildcard) {
    return (wildcard & (wildcard + 1)) == 0;
}

void check_mask_holes(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    for (const SideFields &side : sides) {
        const SideAddress address = side.of(entry.record);
        if (!address.has_address || !address.has_wildcard || is_prefix_wildcard(address.wildcard)) {
            continue;
        }
        std::string text = std::string(side.name) + " wildcard mask " + quad(address.wildcard) +
                           " has holes: the bits that are compared are no prefix";
        if (is_prefix_wildcard(~address.wildcard)) {
            text += "; that of prefix length " + std::to_string(std::popcount(address.wildcard)) +
                    " is " + quad(~address.wildcard);
        }
        warn(rule, entry, warnings, side.wildcard, text);
    }
}

void check_two_masks(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    for (const SideFields &side : sides) {
        const SideAddress address = side.of(entry.record);
        if (address.has_length && address.has_wildcard && address.length <= 32 &&
            prefix_bits(address.length) != ~address.wildcard) {
            warn(rule, entry, warnings, side.wildcard,
                 std::string(side.name) + " prefix length " + std::to_string(address.length) +
                     " and wildcard mask " + quad(address.wildcard) + " contradict each other");
        }
    }
}

// ---- Numbers ---------------------------------------------------------------------------

const char *operator_name(std::uint8_t code) {
    for (const ccv_yang_keyword *row = acl_yang_acl_operator; row->name != nullptr; ++row) {
        if (row->value == code) {
            return row->name;
        }
    }
    return nullptr;
}

void check_reversed_range(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    for (const ComparedField &field : compared_fields()) {
        if (compared(entry.record, field, entry.schema).as == As::backwards) {
            const Interval range = field.values(entry.record);
            warn(rule, entry, warnings, field.first_member,
                 std::string(field.name) + " range from " + std::to_string(range.first) + " to " +
                     std::to_string(range.last) + " runs backwards");
        }
    }
}

std::string what_is_missing(const Record &record, const Comparison &marks) {
    const std::uint8_t code = record.*marks.code;
    if (!has(record, marks.operation)) {
        return has(record, marks.first) ? "has a value without an operator"
                                        : "has the last value of a range without an operator";
    }
    if (operator_name(code) == nullptr) {
        return "is compared by an unknown operator, " + std::to_string(code);
    }
    if (code != range_code) {
        return std::string("is compared by ") + operator_name(code) + " without a value";
    }
    return std::string("range lacks its ") + (has(record, marks.first)    ? "last value"
                                              : has(record, marks.second) ? "first value"
                                                                          : "values");
}

void check_incomplete(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    for (const SideFields &side : sides) {
        const SideAddress address = side.of(entry.record);
        if (!address.has_address && (address.has_length || address.has_wildcard)) {
            warn(rule, entry, warnings, address.has_length ? side.length : side.wildcard,
                 std::string(side.name) + " has a " +
                     (address.has_length ? "prefix length" : "wildcard mask") +
                     " without an address");
        }
    }
    for (const ComparedField &field : compared_fields()) {
        if (compared(entry.record, field, entry.schema).as == As::unclear) {
            warn(rule, entry, warnings, field.first_member,
                 std::string(field.name) + " " + what_is_missing(entry.record, *field.marks));
        }
    }
}

void check_never_met(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    const Record &record = entry.record;
    for (const ComparedField &field : compared_fields()) {
        if (compared(record, field, entry.schema).as == As::no_number) {
            const Interval values = field.values(record);
            const std::uint8_t code =
                has(record, field.marks->operation) ? record.*field.marks->code : equal_code;
            warn(rule, entry, warnings, field.first_member,
                 std::string(field.name) + " " + operator_name(code) + " " +
                     std::to_string(values.first) +
                     (code == range_code ? " to " + std::to_string(values.last) : "") +
                     ", which no packet has: it is from 0 to " + std::to_string(field.highest));
        }
    }
    if (impossible_precedence(record)) {
        warn(rule, entry, warnings, "tos_byte",
             "precedence " + std::to_string(record.tos_byte) +
                 ", which no packet has: it is from 0 to 7");
    }
    if (impossible_message(record)) {
        warn(rule, entry, warnings, "icmp_type_code",
             "ICMP type " + std::to_string(record.icmp_type_code >> 16) + " code " +
                 std::to_string(record.icmp_type_code & 0xFFFF) +
                 ", which no packet has: both are from 0 to 255");
    }
}

// ---- Matches that belong to a protocol -------------------------------------------------

struct ProtocolMatch {
    Mask marks;
    const char *what;
    std::span<const std::uint8_t> protocols;
    const char *names;
    bool one_needed; // to tell which of several protocols is meant
};

/// The protocols of the entry are none of those that have what it compares.
void check_protocol(const ProtocolMatch &match, const LintRule &rule, const LintSubject &entry,
                    LintWarnings &warnings) {
    const Compared found = compared_protocol(entry.record, entry.schema);
    if (!has(entry.record, match.marks)) {
        return;
    }
    const auto say = [&](const std::string &in, const char *end) {
        warn(rule, entry, warnings, nullptr,
             std::string(match.what) + " compared in " + in + ", not in " + match.names + end);
    };
    const auto in_run = [&](std::uint8_t protocol) {
        return std::any_of(found.numbers.begin(), found.numbers.end(), [&](Interval run) {
            return run.contains({protocol, protocol});
        });
    };
    if (found.as == As::nothing && match.one_needed) {
        say("every protocol", " alone");
    } else if (found.as == As::numbers &&
               std::none_of(match.protocols.begin(), match.protocols.end(), in_run)) {
        const Interval run = found.numbers[0];
        const bool one = run.first == run.last && found.numbers[1].empty();
        say(one ? "protocol " + std::to_string(run.first) : "other protocols", "");
    }
}

constexpr std::uint8_t with_ports[] = {6, 17, 33, 132, 136};
constexpr std::uint8_t icmp[] = {1};
constexpr std::uint8_t igmp[] = {2};
constexpr std::uint8_t tcp[] = {6};

constexpr ProtocolMatch ports = {bit(4) | bit(5) | bit(9) | bit(10) | bit(49) | bit(50),
                                 "ports are", with_ports, "TCP, UDP, DCCP, SCTP or UDP-Lite", true};
constexpr ProtocolMatch icmp_message = {bit(18) | bit(19), "an ICMP message is", icmp, "ICMP",
                                        false};
constexpr ProtocolMatch igmp_type = {bit(12), "an IGMP message is", igmp, "IGMP", false};
constexpr ProtocolMatch tcp_flags = {bit(20) | bit(21) | bit(22), "TCP flags are", tcp, "TCP",
                                     false};

template <const ProtocolMatch &match>
void check_match(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    check_protocol(match, rule, entry, warnings);
}

// ---- The entry in its list -------------------------------------------------------------

void check_no_action(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    if (!has_action(entry.record) && !is_remark(entry.record)) {
        warn(rule, entry, warnings, "grant", "it neither permits nor denies");
    }
}

std::string shown(const EarlierEntry &entry) {
    return (entry.sequence ? "entry " + std::to_string(*entry.sequence)
                           : "entry #" + std::to_string(entry.ordinal)) +
           (entry.line != 0 ? " (line " + std::to_string(entry.line) + ")" : "");
}

void check_duplicate(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    if (entry.same != nullptr) {
        warnings.push_back({&rule, "", "says the same as " + shown(*entry.same), *entry.same});
    }
}

void check_shadowed(const LintRule &rule, const LintSubject &entry, LintWarnings &warnings) {
    if (entry.around != nullptr) {
        const bool redundant = entry.around->permits == (entry.record.grant != 0);
        warnings.push_back({&rule, "",
                            shown(*entry.around) +
                                (entry.around->permits ? " permits" : " denies") +
                                " every packet that it matches: " +
                                (redundant ? "it is redundant" : "it never takes effect"),
                            *entry.around});
    }
}

// clang-format off
constexpr LintRule rules[] = {
    {"prefix-length",      "A prefix length is above 32.", check_prefix_length},
    {"two-masks",          "A prefix length and a wildcard mask of one address contradict each other.", check_two_masks},
    {"mask-holes",         "The bits that a wildcard mask compares are no prefix.", check_mask_holes},
    {"reversed-range",     "The first value of a range is above its last one.", check_reversed_range},
    {"never-met",          "A number is compared that no packet can have.", check_never_met},
    {"incomplete",         "A comparison lacks its operator, a value or its address.", check_incomplete},
    {"port-protocol",      "Ports are compared, and the protocol is not given or none of those that have them.", check_match<ports>},
    {"icmp-protocol",      "An ICMP message is compared in another protocol.", check_match<icmp_message>},
    {"igmp-protocol",      "An IGMP message is compared in another protocol.", check_match<igmp_type>},
    {"tcp-flags-protocol", "TCP flags are compared in another protocol.", check_match<tcp_flags>},
    {"no-action",          "The entry neither permits nor denies, and is more than a remark.", check_no_action},
    {duplicate_rule,       "An earlier entry of the list says the same, remarks aside.", check_duplicate},
    {shadowed_rule,        "An earlier entry of the list takes every packet that the entry matches.", check_shadowed},
    {empty_list_rule,      "A list has no entries.", nullptr},
};
// clang-format on

} // namespace

std::span<const LintRule> lint_rules() {
    return rules;
}

const LintRule *find_lint_rule(std::string_view name) {
    const auto found = std::find_if(std::begin(rules), std::end(rules),
                                    [&](const LintRule &rule) { return name == rule.name; });
    return found == std::end(rules) ? nullptr : found;
}

bool is_remark(const Record &record) {
    const RecordMarks &marks = record_marks();
    const Mask notes = marks.remark | bit(52);
    return has(record, marks.remark) && (record.ConfigurationMask & ~notes) == 0 &&
           record.ConfigurationMask2 == 0;
}

bool has_action(const Record &record) {
    return has(record, record_marks().action) && record.grant <= 1;
}

} // namespace aceconv
