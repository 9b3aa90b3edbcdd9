#include "aceconv/plugin.h"
#include "common/trace.h"
#include "record/bag_frame.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// The switches of a deny entry; a permit entry never shows them.
void emit_icmp_switches(ccv_yang_output *output, const Record &record) {
    for (const Leaf *leaf : {&icmp_off, &icmp_on}) {
        if (is_present(record, leaf->bit) && load(record, leaf->field) != 0) {
            emit_presence(output, leaf->name);
        }
    }
}

/// The action container, closed also after a failure inside it.
std::uint32_t emit_action(ccv_yang_output *output, const Record &record) {
    ccv_yang_container_begin(output, record.grant == permit ? "permit" : "deny");
    ccv_yang_presence(output);
    acl_yang_protocol_common(output, record);
    const std::uint32_t status = acl_yang_ace_common(output, record);
    if (status == 0) {
        acl_yang_nexthops(output, record);
        acl_yang_match_option_common(output, record);
        if (record.grant == deny) {
            emit_icmp_switches(output, record);
        }
    }
    ccv_yang_container_end(output);
    return status;
}

std::uint32_t emit_entry(ccv_yang_output *output, const Record &record) {
    std::uint32_t status = 0;
    if (is_present(record, grant_bit) && (record.grant == permit || record.grant == deny)) {
        status = emit_action(output, record);
    }
    write_leaf(output, record, remark);
    return status;
}

} // namespace

} // namespace ace::um

void acl_yang_protocol_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace;
    if (!is_present(record, um::protocol_operator_bit)) {
        write_leaf(output, record, um::protocol);
    } else if (record.proto_oper == um::operator_eq) {
        write_leaf(output, record, um::protocol_eq);
    } else if (record.proto_oper == um::operator_range) {
        ccv_yang_container_begin(output, "range");
        write_leaf(output, record, um::protocol_start);
        write_leaf(output, record, um::protocol_end);
        ccv_yang_container_end(output);
    }
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
