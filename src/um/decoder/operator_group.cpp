#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// The first value under another name than "start-value".
void emit_first_as(ccv_yang_output *output, const Record &record, const OperatorGroup &group,
                   const char *name) {
    Leaf leaf = group.first;
    leaf.name = name;
    write_value(output, record, leaf);
}

} // namespace

void emit_operator_group(ccv_yang_output *output, const Record &record,
                         const OperatorGroup &group) {
    if (!is_present(record, group.first.bit)) {
        return;
    }
    if (group.plain_value != nullptr && !is_present(record, group.operator_bit)) {
        emit_first_as(output, record, group, group.plain_value);
        return;
    }
    const std::uint32_t code = load(record, group.operator_code);
    if (code == operator_range) {
        ccv_yang_container_begin(output, "range");
        write_value(output, record, group.first);
        write_leaf(output, record, group.second);
        ccv_yang_container_end(output);
        return;
    }
    for (const ccv_yang_keyword &row : operator_names) {
        if (row.value == code) {
            emit_first_as(output, record, group, row.name);
        }
    }
}

} // namespace ace::um

void acl_yang_dscp_fields(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_operator_group(output, record, ace::um::dscp);
}

void acl_yang_packet_length(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_operator_group(output, record, ace::um::packet_length);
}

void acl_yang_ttl(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_operator_group(output, record, ace::um::ttl);
}

void acl_yang_fragment_offset(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_operator_group(output, record, ace::um::fragment_offset);
}
