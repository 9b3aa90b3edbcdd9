// The emitters of the UM decoder, as they are called inside it. The exported
// ones, which take a copy of the record, are declared in aceconv/plugin.h.
//
// A failure leaves open what was opened.
#pragma once

#include "um/schema.h"

namespace ace::um {

/// Whether a present row's fields let it be written.
[[nodiscard]] inline bool applies(const Record &record, const Row &row) {
    switch (row.when) {
    case When::non_zero:
        return load(record, row.leaf.field) != 0;
    case When::equal:
        return load(record, row.leaf.field) == row.leaf.constant;
    case When::regular_next_hops:
        return is_present(record, next_hop_bit) && record.nexthop == regular_next_hop;
    default:
        return true;
    }
}

/// A node that is present, or always written, and no plain leaf.
[[nodiscard]] std::uint32_t emit_node(ccv_yang_output *output, const Record &record,
                                      const Row &row);

[[nodiscard]] inline std::uint32_t emit_row(ccv_yang_output *output, const Record &record,
                                            const Row &row) {
    if (!is_present(record, row.leaf.bit)) {
        return 0;
    }
    if (row.kind == Kind::leaf) {
        write_value(output, record, row.leaf);
        return 0;
    }
    return emit_node(output, record, row);
}

/// Those of the rows that are present, up to the first failure, which is reported
/// as the row says.
[[nodiscard]] std::uint32_t emit_rows(ccv_yang_output *output, const Record &record, Rows rows);

// The content of containers, and a leaf of "police".

/// The form that a group's value is given in: nothing without the value, and for
/// operator codes that mean nothing.
void emit_operator_group(ccv_yang_output *output, const Record &record, const OperatorGroup &group);
void emit_side(ccv_yang_output *output, const Record &record, Rows side);
void emit_icmp(ccv_yang_output *output, const Record &record);
[[nodiscard]] std::uint32_t emit_tcp_flags(ccv_yang_output *output, const Record &record);
[[nodiscard]] std::uint32_t emit_udf(ccv_yang_output *output, const Record &record);
[[nodiscard]] std::uint32_t emit_rate_unit(ccv_yang_output *output, const Record &record,
                                           const Row &row);

/// The text of a signed flag set, as "+syn -ack".
struct FlagText {
    char text[2080];
};

/// Builds the text of the flags in `mask`, in the order of `table`. Returns
/// ACE_STATUS_NO_KEYWORD when the mask holds a bit without a row, and
/// ACE_STATUS_NO_SPACE when the text does not fit.
[[nodiscard]] std::uint32_t build_flag_text(const ccv_yang_keyword *table, std::uint32_t flags,
                                            std::uint32_t mask, FlagText &built);

} // namespace ace::um
