// Makers of the UM schema's rows, by what a node is.
#pragma once

#include "aceconv/keywords.h"
#include "common/leaf_rows.h"
#include "um/schema.h"

namespace ace::um::row {

using namespace ace::row;

constexpr Leaf port_number(const char *name, Field field, Bits present) {
    return keyword_or_number(name, acl_yang_acl_port_um, field, present);
}

constexpr Leaf code_point(const char *name, Field field, Bits present) {
    return keyword_or_number(name, acl_yang_acl_dscp, field, present);
}

constexpr Leaf protocol_number(const char *name, Field field, Bits present) {
    return keyword_or_number(name, acl_yang_acl_protocol_um, field, present);
}

/// A row of its own kind, written when one of `under` is set.
constexpr Row node(Kind kind, const char *name, Bits under = {}, Rows children = {}) {
    return {kind, {name, Read::none, Write::none, nullptr, {}, under}, children};
}

/// A node whose appearance stores `value`.
constexpr Row presence(const char *name, Field field, Bits present, When when,
                       std::uint8_t value = 1) {
    Row row(Kind::presence, {name, Read::constant, Write::none, nullptr, field, present, value});
    row.when = when;
    return row;
}

/// "deny" or "permit".
constexpr Row action(const char *name, std::uint8_t value, Rows children) {
    return {Kind::action,
            {name, Read::constant, Write::none, nullptr, ACE_FIELD(grant), bit(0), value},
            children};
}

/// The bits of all of the rows.
constexpr Bits bits_of(Rows rows) {
    Bits bits;
    for (const Row &row : rows) {
        bits = bits | row.leaf.bit;
    }
    return bits;
}

/// A container of leaves, written when one of them is present.
constexpr Row container(const char *name, Rows leaves, Kind kind = Kind::container) {
    return node(kind, name, bits_of(leaves), leaves);
}

/// A next hop, written when one of its leaves is present and hops are regular.
constexpr Row next_hop(Kind kind, const char *name, Rows leaves) {
    Row row = container(name, leaves, kind);
    row.when = When::regular_next_hops;
    return row;
}

/// The container of a group.
constexpr Row group(const char *name, const OperatorGroup &group, Bits under) {
    Row row = node(Kind::operator_group, name, under);
    row.group = &group;
    return row;
}

/// A form of a group that stands among the group's siblings.
constexpr Row form(const OperatorGroup &group, std::size_t index) {
    Row row = node(Kind::form, group.forms[index].name);
    row.group = &group;
    return row;
}

/// The row with the line that reports its failures.
constexpr Row reported(Row row, const TraceLine &failure) {
    row.failure = &failure;
    return row;
}

/// A rate unit of "police".
constexpr Row rate_unit(const char *name, Field field, Bits present, const UnitLines &lines) {
    Row row(Kind::rate_unit, {name, Read::none, Write::none, nullptr, field, present});
    row.unit = &lines;
    return row;
}

} // namespace ace::um::row
