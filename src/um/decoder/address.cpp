#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

void emit_side(ccv_yang_output *output, const Record &record, Rows side) {
    const auto present = [&](SideRow row) { return is_present(record, side[row].leaf.bit); };
    const auto write = [&](SideRow row) { write_leaf(output, record, side[row].leaf); };
    const bool has_address = present(side_address);
    if (has_address && (present(side_wildcard_mask) || present(side_prefix_length))) {
        write(side_address);
        write(side_prefix_length);
        write(side_wildcard_mask);
    } else {
        write(side_host);
    }
    write(side_net_group);
    if (!has_address && !present(side_net_group)) {
        (void)emit_node(output, record, side[side_any]);
    }
    write(side_port_group);
    (void)emit_row(output, record, side[side_port]); // cannot fail
}

} // namespace ace::um

void acl_yang_source_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::source);
}

void acl_yang_dest_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::destination);
}
