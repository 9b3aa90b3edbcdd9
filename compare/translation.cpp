#include "compare/translation.h"

#include <cstring>
#include <optional>

#include "aceconv/keywords.h"

namespace aceconv {
namespace {

constexpr std::uint64_t bit(int n) {
    return std::uint64_t{1} << n;
}
constexpr std::uint64_t protocol_bit = bit(1);
constexpr std::uint64_t protocol_operator_bit = bit(53);
constexpr std::uint64_t fragment_type_bit = bit(60);
constexpr std::uint8_t equal = 1;

const ccv_yang_keyword *fragment_types(Schema schema) {
    return schema == Schema::base ? acl_yang_acl_fragment_flags : acl_yang_acl_fragment_type_um;
}

/// The number in `to` of the kind of fragment that `number` is in `from`.
std::optional<std::uint8_t> fragment_type(std::uint8_t number, Schema from, Schema to) {
    for (auto row = fragment_types(from); row->name != nullptr; ++row) {
        if (row->value != number) {
            continue;
        }
        for (auto other = fragment_types(to); other->name != nullptr; ++other) {
            if (std::strcmp(row->name, other->name) == 0) {
                return static_cast<std::uint8_t>(other->value);
            }
        }
    }
    return std::nullopt;
}

void translate_fragment_type(ipv4_acl_config_ace &record, Schema from, Schema to,
                             Translation &result) {
    const auto number = fragment_type(record.FragmentFlags, from, to);
    if (!number) {
        result.untranslated.push_back(
            {"FragmentFlags", from == Schema::base ? "a number without a name, and the um schema "
                                                     "has names alone"
                                                   : "a number without a name"});
        record.ConfigurationMask &= ~fragment_type_bit;
    }
    result.changed = result.changed || number != record.FragmentFlags;
    record.FragmentFlags = number.value_or(0);
}

/// The ends of a range, and what other operators compare with, are numbers of
/// single protocols in both schemas.
void translate_protocol(ipv4_acl_config_ace &record, Schema from, Schema to, Translation &result) {
    if (record.protocol == every_protocol(from)) {
        record.protocol = every_protocol(to);
        result.changed = true;
    } else if (record.protocol == every_protocol(to)) {
        result.untranslated.push_back({"protocol", to == Schema::base
                                                       ? "every protocol in the base schema, a "
                                                         "protocol of its own in the um schema"
                                                       : "every protocol in the um schema, none "
                                                         "in the base schema"});
    }
}

} // namespace

Translation translate(ipv4_acl_config_ace &record, Schema from, Schema to) {
    Translation result;
    if (from == to) {
        return result;
    }
    const std::uint64_t mask = record.ConfigurationMask;
    if ((mask & fragment_type_bit) != 0) {
        translate_fragment_type(record, from, to, result);
    }
    const bool compared =
        (mask & protocol_operator_bit) != 0 && record.proto_oper != equal; // otherwise than equal
    if ((mask & protocol_bit) != 0 && !compared) {
        translate_protocol(record, from, to, result);
    }
    return result;
}

void clear_derived_bits(ipv4_acl_config_ace &record) {
    if ((record.ConfigurationMask & (bit(34) | bit(40))) != 0) {
        record.ConfigurationMask &= ~bit(42);
    }
    if ((record.ConfigurationMask & (bit(35) | bit(41))) != 0) {
        record.ConfigurationMask &= ~bit(43);
    }
}

} // namespace aceconv
