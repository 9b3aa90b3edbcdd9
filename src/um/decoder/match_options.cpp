#include "aceconv/plugin.h"
#include "um/decoder/emit.h"

namespace ace::um {

namespace {

void emit_next_hop(ccv_yang_output *output, const Record &record, const NextHop &hop) {
    const Leaf *leaves[] = {&hop.ipv4, &hop.vrf, &hop.track};
    bool configured = false;
    for (const Leaf *leaf : leaves) {
        configured = configured || is_present(record, leaf->bit);
    }
    if (!configured) {
        return;
    }
    ccv_yang_container_begin(output, hop.name);
    ccv_yang_presence(output);
    for (const Leaf *leaf : leaves) {
        write_leaf(output, record, *leaf);
    }
    ccv_yang_container_end(output);
}

} // namespace

} // namespace ace::um

void acl_yang_nexthops(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace::um;
    if (!ace::is_present(record, next_hop_bit)) {
        return;
    }
    if (record.nexthop == default_next_hop) {
        emit_presence(output, default_hop.name);
    } else if (record.nexthop == regular_next_hop) {
        for (const NextHop &hop : next_hops) {
            emit_next_hop(output, record, hop);
        }
    }
}

void acl_yang_match_option_common(ccv_yang_output *output, ipv4_acl_config_ace record) noexcept {
    using namespace ace;
    // The presence bit alone decides about "capture".
    if (is_present(record, um::capture.bit)) {
        um::emit_presence(output, um::capture.name);
    }
    write_leaf(output, record, um::counter);
    if (is_present(record, um::log.bit)) {
        for (const Leaf *leaf : {&um::log, &um::log_input}) {
            if (record.log == leaf->constant) {
                um::emit_presence(output, leaf->name);
            }
        }
    }
    if (is_present(record, um::set_qos_group.bit) || is_present(record, um::set_ttl.bit)) {
        ccv_yang_container_begin(output, "set");
        write_leaf(output, record, um::set_qos_group);
        write_leaf(output, record, um::set_ttl);
        ccv_yang_container_end(output);
    }
}
