#include "aceconv/plugin.h"
#include "base/schema.h"
#include "common/icmp_message.h"
#include "record/bag_frame.h"

namespace ace::base {

namespace {

/// Containers are written whether or not anything in them is present, and so are
/// those inside "next-hop"; in any other that is empty no row is looked at. Of the
/// record only the ICMP message may change, which is folded before it is written.
void decode_rows(ccv_yang_output *output, std::span<const Row> rows, Record &record) {
    const std::uint64_t mask = record.ConfigurationMask;
    for (const Row &row : rows) {
        const bool present = (mask & row.leaf.bit.first) != 0;
        switch (row.kind) {
        case RowKind::icmp_message:
            if (is_present(record, icmp_any_code)) {
                record.icmp_type_code |= any_code;
                set_present(record, icmp_specific_code);
            }
            [[fallthrough]];
        case RowKind::leaf:
            if (present) {
                write_value(output, record, row.leaf);
            }
            break;
        case RowKind::container:
        case RowKind::next_hop_container:
            ccv_yang_container_begin(output, row.leaf.name);
            if (present || row.kind == RowKind::next_hop_container) {
                decode_rows(output, row.rows(), record);
            }
            ccv_yang_container_end(output);
            break;
        case RowKind::ignored:
            break;
        }
    }
}

} // namespace

} // namespace ace::base

std::uint32_t ccv_custom_decoder_ipv4_acl_ace(ccv_yang_output *output, const std::uint8_t *encoded,
                                              std::uint32_t encoded_len) noexcept {
    ace::Record record;
    const std::uint32_t status = ace::decode_record(encoded, encoded_len, record);
    if (status != 0) {
        return status;
    }
    ace::base::decode_rows(output, ace::base::entry_rows, record);
    ace::release_record(record);
    return 0;
}
