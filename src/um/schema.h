// The UM schema as tables that both directions interpret. Rows stand in the
// order in which the encoder tests their names; the decoder writes in the same
// order where nothing else is said.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "common/leaf.h"
#include "common/trace.h"

namespace ace::um {

// ---- Operator groups --------------------------------------------------------

/// When a range sets its operator: on entry, or at each child that it has, so
/// that an empty one sets nothing.
enum class RangeOperator : std::uint8_t { on_entry, per_child };

/// A value under an operator, a range of two, or a value alone.
struct OperatorGroup {
    std::span<const ccv_yang_keyword> forms; // operator codes, and the nodes that stand for them
    Field code;
    Bits code_bit;
    Leaf first;  // the start of a range; in other forms the value, under the form's name
    Leaf second; // the end of a range
    RangeOperator range_operator = RangeOperator::on_entry;
    bool range_without_start = false;         // is written as well
    const TraceLine *unknown_value = nullptr; // a range's other children stop the walk with it
};

inline constexpr std::uint32_t range_form = 5;
inline constexpr const char *range_name = "range";
/// A value alone, which leaves operator and bit as they are; no operator code.
inline constexpr std::uint32_t plain_form = 256;

extern const OperatorGroup protocol, dscp, packet_length, ttl, fragment_offset;

// ---- Rows -------------------------------------------------------------------

enum class Kind : std::uint8_t {
    leaf,
    presence,       // a node without a value; its children are stepped over
    container,      // of leaves
    form,           // of a group that has no container of its own
    operator_group, // the container of one
    side,           // "source" or "destination"
    tcp_flags,
    icmp,
    udf_entries,
    police,
    rate_unit,      // a leaf of it: a name, looked up by its place in the table
    first_next_hop, // says besides that the hops are regular ones
    next_hop,
    action, // "deny" or "permit"
    ignored,
};

/// What has to hold for a row to be written, besides its bits: of its field, or
/// that next hops are given and regular ones.
enum class When : std::uint8_t { always, non_zero, equal, regular_next_hops };

/// What is reported of a rate unit: encoding, a name without a row; decoding, a
/// number without one, and no memory for the name.
struct UnitLines {
    const TraceLine &unknown, &missing, &not_copied;
};

struct Row {
    Kind kind;
    When when = When::always;
    Leaf leaf; // of a container its name, and bits one of which has it written
    const OperatorGroup *group = nullptr;
    const UnitLines *unit = nullptr;
    const TraceLine *failure = nullptr; // of a side: encoding another child; of flags and
                                        // fields: decoding what cannot be written
    const Row *children = nullptr;
    std::size_t child_count = 0;
    /// By start_of a name, the place of the first child that starts like it.
    std::array<std::uint8_t, 32> starts{};

    /// Most rows are plain leaves and stand in the tables as such.
    constexpr Row(const Leaf &row_leaf) : kind(Kind::leaf), leaf(row_leaf) {} // NOLINT
    constexpr Row(Kind row_kind, const Leaf &row_leaf, std::span<const Row> rows = {})
        : kind(row_kind), leaf(row_leaf), children(rows.data()), child_count(rows.size()) {
        starts.fill(static_cast<std::uint8_t>(child_count));
        for (std::size_t i = child_count; i > 0; --i) {
            starts[start_of(rows[i - 1].leaf.name)] = static_cast<std::uint8_t>(i - 1);
        }
    }

    [[nodiscard]] constexpr std::span<const Row> rows() const { return {children, child_count}; }
    static constexpr std::size_t start_of(const char *name) {
        return static_cast<unsigned char>(name[0]) % 32;
    }
};

using Rows = std::span<const Row>;

/// An entry; its children "deny" and "permit" hold theirs.
extern const Row entry;

/// Rows one after another, and the bits one of which has any of them written.
struct Part {
    Rows rows;
    Bits under;
};

/// The children of an action, in the parts that are written one by one.
struct ActionParts {
    Rows sides; // always written
    Part matches, next_hops, options;
    std::size_t before_options; // how many children
};
extern const ActionParts action_parts;

/// The children of "source" and of "destination"; they are written in another order.
extern const Rows source, destination;

extern const Row tcp_flags, police;

inline constexpr Bits next_hop_bit = bit(32);
inline constexpr std::uint8_t regular_next_hop = 1;
/// The order in which the children of a next hop are written.
inline constexpr std::array<std::uint8_t, 3> next_hop_emission = {0, 2, 1};

// ---- ICMP: a message name, or type and code as numbers ----------------------

struct IcmpNumber {
    const char *name;
    std::uint8_t shift; // of its 16 bits in the message
};

extern const Leaf icmp_message_name;
extern const std::array<IcmpNumber, 2> icmp_numbers;

// ---- TCP flags --------------------------------------------------------------

inline constexpr Bits tcp_operator_bit = bit(20);
inline constexpr Bits tcp_flags_bit = bit(21);
inline constexpr Bits tcp_mask_bit = bit(22);

/// A container of a signed flag text.
struct TcpMatch {
    const char *name;
    std::uint8_t code;
    const TraceLine &failure; // of writing the text
};

extern const std::array<TcpMatch, 2> tcp_matches;
inline constexpr const char *tcp_bits = "tcp-bits";

// ---- User-defined fields ----------------------------------------------------

/// Element i of the first eight has the bits i, 8+i and 16+i of ConfigurationMask2.
inline constexpr std::uint32_t udf_bit_elements = 8;
inline constexpr const char *udf_list = "udf";

struct UdfLeaf {
    const char *name;
    std::uint32_t ace_udf_element::*number = nullptr; // hexadecimal text; else the field's name
    const TraceLine *failure = nullptr;               // of writing the number
};

extern const std::array<UdfLeaf, 3> udf_leaves;

// ---- Rate units -------------------------------------------------------------

inline constexpr std::uint32_t rate_unit_count = 5;
inline constexpr const char *rate_unit_table = "acl_yang_acl_rate_unit_um";

} // namespace ace::um
