// Compile-time guards over the UM schema's tables.
#include "um/schema.h"

#include "common/leaf_guards.h"

namespace ace::um {

namespace {

constexpr bool well_formed(const OperatorGroup &group) {
    return group.operator_code.width == 1 && guard::well_formed(group.first) &&
           guard::well_formed(group.second) && group.first.field.width == group.second.field.width;
}

constexpr bool well_formed(const AddressSide &side) {
    for (const Leaf *leaf : {&side.address, &side.wildcard_mask, &side.prefix_length, &side.host,
                             &side.net_group, &side.port_group}) {
        if (!guard::well_formed(*leaf)) {
            return false;
        }
    }
    return well_formed(side.port) && side.host.bit.index == side.address.bit.index &&
           side.host.field.offset == side.address.field.offset;
}

static_assert(well_formed(source) && well_formed(destination));
static_assert(well_formed(dscp) && well_formed(packet_length) && well_formed(ttl) &&
              well_formed(fragment_offset));
static_assert([] {
    for (const NextHop &hop : next_hops) {
        if (!guard::well_formed(hop.ipv4) || !guard::well_formed(hop.track) ||
            !guard::well_formed(hop.vrf)) {
            return false;
        }
    }
    return true;
}());
static_assert([] {
    for (const Leaf *leaf : {&remark,
                             &igmp_type,
                             &precedence,
                             &fragment_type,
                             &counter,
                             &set_qos_group,
                             &set_ttl,
                             &fragments,
                             &default_hop,
                             &capture,
                             &log,
                             &log_input,
                             &icmp_off,
                             &icmp_on,
                             &protocol,
                             &protocol_eq,
                             &protocol_start,
                             &protocol_end,
                             &icmp_message_name,
                             &police_value,
                             &police_peak_rate,
                             &police_priority}) {
        if (!guard::well_formed(*leaf)) {
            return false;
        }
    }
    return true;
}());

} // namespace

} // namespace ace::um
