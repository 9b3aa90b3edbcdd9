// What the emitters of the UM decoder share. The exported emitters themselves
// are declared in aceconv/plugin.h.
#pragma once

#include "common/leaf.h"
#include "um/schema.h"

namespace ace::um {

/// An empty presence container.
void emit_presence(ccv_yang_output *output, const char *name);

/// The content of an operator group: nothing without its first value, else the
/// operator's leaf, or "range"; nothing either for codes that mean nothing.
void emit_operator_group(ccv_yang_output *output, const Record &record, const OperatorGroup &group);

/// The text of a signed flag set, as "+syn -ack".
struct FlagText {
    char text[2080];
};

/// Builds the text of the flags in `mask`, in the order of `table`. Returns
/// ACE_STATUS_NO_KEYWORD when the mask holds a bit without a row, and
/// ACE_STATUS_NO_SPACE when the text does not fit.
[[nodiscard]] std::uint32_t build_flag_text(const ccv_yang_keyword *table, std::uint32_t flags,
                                            std::uint32_t mask, FlagText &built);

/// Writes the leaf "tcp-bits" of a signed flag set, or nothing on a failure.
[[nodiscard]] std::uint32_t acl_yang_tcp_bits_um(ccv_yang_output *output, std::uint32_t flags,
                                                 std::uint32_t mask);

} // namespace ace::um
