// Rules as entries of the UM schema.
#include <array>
#include <cstdio>

#include "testing/generator/rule.h"
#include "testing/generator/rule_writer.h"

namespace aceconv::bench {
namespace {

std::string hex_text(std::uint32_t value) {
    char text[9];
    std::snprintf(text, sizeof text, "%x", value);
    return text;
}

void um_match(Writer &w, const char *container, const Match &match, Keywords table) {
    static constexpr std::array names = {"dscp-value", "eq", "gt", "lt", "neq", "range"};
    if (!match.present) {
        return;
    }
    w.open(container);
    if (match.op == 5) {
        w.open("range");
        w.keyword_or_number("start-value", table, match.first);
        w.keyword_or_number("end-value", table, match.last);
        w.close();
    } else {
        w.keyword_or_number(names[match.op], table, match.first);
    }
    w.close();
}

void um_protocol(Writer &w, const Match &protocol) {
    if (protocol.op == 5) {
        w.open("range");
        w.keyword_or_number("start-protocol", acl_yang_acl_protocol_um, protocol.first);
        w.keyword_or_number("end-protocol", acl_yang_acl_protocol_um, protocol.last);
        w.close();
    } else {
        constexpr std::uint32_t every_protocol = 512; // 0 in the base schema
        w.keyword_or_number(protocol.op == 1 ? "eq" : "protocol", acl_yang_acl_protocol_um,
                            protocol.first == 0 ? every_protocol : protocol.first);
    }
}

void um_side(Writer &w, const char *name, const Side &side) {
    w.open(name);
    switch (side.kind) {
    case Side::Kind::any:
        w.raw("any", "{}");
        break;
    case Side::Kind::host:
        w.address("host", side.address);
        break;
    case Side::Kind::prefix:
        w.address("address", side.address);
        w.number("prefix-length", side.length);
        break;
    case Side::Kind::wildcard:
        w.address("address", side.address);
        w.address("wildcard-mask", wildcard(side.length));
        break;
    case Side::Kind::group:
        w.string("net-group", side.group);
        break;
    }
    w.string_if("port-group", side.port_group);
    um_match(w, "port", side.port, acl_yang_acl_port_um);
    w.close();
}

void um_flags(Writer &w, const Rule &rule) {
    if (rule.flags == 0) {
        return;
    }
    w.open("tcp-flags");
    if (rule.flags_op == 0) {
        w.string("tcp-bits", flag_words(0, rule.flags, false));
    } else {
        w.open(rule.flags_op == 1 ? "match-all" : "match-any");
        w.string("tcp-bits", flag_words(rule.flags, rule.flags_mask, true));
        w.close();
    }
    w.close();
}

void um_icmp(Writer &w, const Rule &rule) {
    if (!rule.icmp) {
        return;
    }
    w.open("icmp");
    if (name_of(acl_yang_acl_icmp_type_code_um, rule.icmp_type_code) != nullptr) {
        w.keyword("message-type-name", acl_yang_acl_icmp_type_code_um, rule.icmp_type_code);
    } else {
        w.number("message-type", rule.icmp_type_code >> 16);
        w.number("message-code", rule.icmp_type_code & 0xFFFF);
    }
    w.close();
}

void um_udf(std::string &text, Writer &w, const Rule &rule) {
    if (rule.udf.empty()) {
        return;
    }
    w.open("udf-entries");
    w.raw("udf", "[");
    for (const Udf &udf : rule.udf) {
        text += &udf == rule.udf.data() ? "{" : ",{";
        w.string("udf-name", udf.name);
        w.string("udf-value", hex_text(udf.value));
        w.string("udf-mask", hex_text(udf.mask));
        w.close();
    }
    text += ']';
    w.close();
}

void um_actions(Writer &w, const Rule &rule) {
    if (rule.police) {
        w.open("police");
        w.number("value", rule.rate);
        w.keyword("unit", acl_yang_acl_rate_unit_um, rule.unit);
        w.number("peak-rate", rule.rate * 2);
        w.keyword("peak-unit", acl_yang_acl_rate_unit_um, rule.unit);
        w.keyword("priority", acl_yang_acl_priority_um, rule.priority);
        w.close();
    }
    if (rule.default_next_hop) {
        w.raw("default", "{}");
    }
    for (std::size_t i = 0; i < rule.next_hops.size(); ++i) {
        w.open("nexthop" + std::to_string(i + 1));
        w.address("ipv4", rule.next_hops[i].address);
        w.string_if("vrf", rule.next_hops[i].vrf);
        w.string_if("track", rule.next_hops[i].track);
        w.close();
    }
    if (rule.capture) {
        w.raw("capture", "{}");
    }
    w.string_if("counter", rule.counter);
    if (rule.log != 0) {
        w.raw(name_of(acl_yang_acl_log, rule.log), "{}");
    }
    if (rule.qos_group.present || rule.set_ttl.present) {
        w.open("set");
        if (rule.qos_group.present) {
            w.number("qos-group", rule.qos_group.first);
        }
        if (rule.set_ttl.present) {
            w.number("ttl", rule.set_ttl.first);
        }
        w.close();
    }
    if (rule.icmp_off) {
        w.raw("icmp-off", "{}");
    }
    if (rule.icmp_on) {
        w.raw("icmp-on", "{}");
    }
}

void um_action(std::string &text, Writer &w, const Rule &rule) {
    w.open(rule.permit ? "permit" : "deny");
    um_protocol(w, rule.protocol);
    um_side(w, "source", rule.source);
    um_side(w, "destination", rule.destination);
    um_flags(w, rule);
    um_icmp(w, rule);
    if (rule.igmp_type != 0) {
        w.keyword_or_number("igmp-type", acl_yang_acl_igmp_type, rule.igmp_type);
    }
    um_match(w, "dscp", rule.dscp, acl_yang_acl_dscp);
    if (rule.precedence.present) {
        w.keyword_or_number("precedence", acl_yang_acl_precedence_um, rule.precedence.first);
    }
    um_match(w, "packet-length", rule.packet_length, nullptr);
    um_match(w, "ttl", rule.ttl, nullptr);
    um_match(w, "fragment-offset", rule.fragment_offset, nullptr);
    if (rule.fragments) {
        w.raw("fragments", "{}");
    }
    if (rule.fragment_type != 0) {
        // The two schemas share the names, not the numbers.
        w.string("fragment-type", acl_yang_acl_fragment_flags[rule.fragment_type - 1].name);
    }
    um_udf(text, w, rule);
    um_actions(w, rule);
    w.close();
}

} // namespace

void append_um(std::string &text, const Rule &rule) {
    text += '{';
    Writer w(text, rule.names);
    w.number("sequence-number", rule.sequence);
    if (!rule.remark_only) {
        um_action(text, w, rule);
    }
    w.string_if("remark", rule.remark);
    w.close();
}

} // namespace aceconv::bench
