#include "aceconv/plugin.h"
#include "record/bag_frame.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

std::uint32_t emit_part(ccv_yang_output *output, const Record &record, const Part &part) {
    return is_present(record, part.under) ? emit_rows(output, record, part.rows) : 0;
}

/// What the entry matches on, and its policing.
std::uint32_t emit_matches(ccv_yang_output *output, const Record &record) {
    for (const Row &side : action_parts.sides) { // always written
        (void)emit_node(output, record, side);
    }
    return emit_part(output, record, action_parts.matches);
}

/// The action container, closed also after a failure inside it.
std::uint32_t emit_action(ccv_yang_output *output, const Record &record, const Row &action) {
    ccv_yang_container_begin(output, action.leaf.name);
    ccv_yang_presence(output);
    emit_operator_group(output, record, protocol);
    const std::uint32_t status = emit_matches(output, record);
    if (status == 0) { // neither of these can fail
        (void)emit_part(output, record, action_parts.next_hops);
        (void)emit_rows(output, record, action.rows().subspan(action_parts.before_options));
    }
    ccv_yang_container_end(output);
    return status;
}

/// The remark follows whatever became of the action.
std::uint32_t emit_entry(ccv_yang_output *output, const Record &record) {
    std::uint32_t status = 0;
    for (const Row &row : entry.rows()) {
        if (!is_present(record, row.leaf.bit)) {
            continue;
        }
        if (row.kind == Kind::leaf) {
            write_value(output, record, row.leaf);
        } else if (record.grant == row.leaf.constant) {
            status = emit_action(output, record, row);
        }
    }
    return status;
}

} // namespace

} // namespace ace::um

void acl_yang_protocol_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_operator_group(output, record, ace::um::protocol);
}

std::uint32_t acl_yang_ace_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    return ace::um::emit_matches(output, record);
}

void acl_yang_nexthops(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    (void)ace::um::emit_part(output, record, ace::um::action_parts.next_hops);
}

void acl_yang_match_option_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    (void)ace::um::emit_part(output, record, ace::um::action_parts.options);
}

std::uint32_t ccv_custom_decoder_ipv4_acl_ace_um(ccv_yang_output *output,
                                                 const std::uint8_t *encoded,
                                                 std::uint32_t encoded_len) noexcept {
    ace::Record record;
    std::uint32_t status = ace::decode_record(encoded, encoded_len, record);
    if (status != 0) {
        ace::trace(ace::trace_line::decode_failure, status);
        return status;
    }
    status = ace::um::emit_entry(output, record);
    ace::release_record(record);
    return status;
}
