#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

const ccv_yang_keyword *find_form(const OperatorGroup &group, std::uint32_t code) {
    for (const ccv_yang_keyword &form : group.forms) {
        if (form.value == code) {
            return &form;
        }
    }
    return nullptr;
}

void emit_range(ccv_yang_output *output, const Record &record, const OperatorGroup &group) {
    if (is_present(record, group.first.bit) || group.range_without_start) {
        ccv_yang_container_begin(output, range_name);
        write_leaf(output, record, group.first);
        write_leaf(output, record, group.second);
        ccv_yang_container_end(output);
    }
}

} // namespace

void emit_operator_group(ccv_yang_output *output, const Record &record,
                         const OperatorGroup &group) {
    // Without an operator that is the plain form; groups that have none go by the
    // operator's code alone.
    const ccv_yang_keyword *form = nullptr;
    if (!is_present(record, group.code_bit)) {
        form = find_form(group, plain_form);
    }
    if (form == nullptr) {
        const std::uint32_t code = member<std::uint8_t>(record, group.code);
        if (code == range_form) {
            emit_range(output, record, group);
            return;
        }
        form = find_form(group, code);
    }
    if (form != nullptr && is_present(record, group.first.bit)) {
        write_value(output, record, group.first, form->name);
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
