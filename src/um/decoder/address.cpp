#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// The content of "source" or "destination".
void emit_side(ccv_yang_output *output, const Record &record, const AddressSide &side) {
    const bool has_address = is_present(record, side.address.bit);
    const bool is_network =
        is_present(record, side.wildcard_mask.bit) || is_present(record, side.prefix_length.bit);
    if (has_address && is_network) {
        write_value(output, record, side.address);
        write_leaf(output, record, side.prefix_length);
        write_leaf(output, record, side.wildcard_mask);
    } else if (has_address) {
        write_value(output, record, side.host);
    }
    if (is_present(record, side.net_group.bit)) {
        write_value(output, record, side.net_group);
    } else if (!has_address) {
        emit_presence(output, "any");
    }
    write_leaf(output, record, side.port_group);
    if (is_present(record, side.port.operator_bit)) {
        ccv_yang_container_begin(output, "port");
        emit_operator_group(output, record, side.port);
        ccv_yang_container_end(output);
    }
}

} // namespace

} // namespace ace::um

void acl_yang_source_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::source);
}

void acl_yang_dest_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::destination);
}
