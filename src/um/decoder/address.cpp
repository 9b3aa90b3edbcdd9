#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

/// The nodes of a side by their place in its table.
enum Node : std::uint8_t {
    address,
    wildcard_mask,
    prefix_length,
    any,
    host, // the address again, for one without mask and length
    net_group,
    port,
    port_group,
};

} // namespace

void emit_side(ccv_yang_output *output, const Record &record, Rows side) {
    const std::uint64_t mask = record.ConfigurationMask;
    const auto present = [&](Node node) { return (mask & side[node].leaf.bit.first) != 0; };
    const auto write = [&](Node node) {
        if (present(node)) {
            write_value(output, record, side[node].leaf);
        }
    };
    const bool has_address = present(address);
    if (has_address && (present(wildcard_mask) || present(prefix_length))) {
        write(address);
        write(prefix_length);
        write(wildcard_mask);
    } else {
        write(host);
    }
    write(net_group);
    if (!has_address && !present(net_group)) {
        (void)emit_node(output, record, side[any]);
    }
    write(port_group);
    if (present(port)) {
        (void)emit_node(output, record, side[port]); // cannot fail
    }
}

} // namespace ace::um

void acl_yang_source_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::source);
}

void acl_yang_dest_addr(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    ace::um::emit_side(output, record, ace::um::destination);
}
