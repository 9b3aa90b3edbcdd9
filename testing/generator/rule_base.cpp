// Rules as entries of the base schema.
#include "testing/generator/rule.h"
#include "testing/generator/rule_writer.h"

namespace aceconv::bench {
namespace {

struct MatchNames {
    const char *container;
    const char *op;
    const char *first;
    const char *last;
};

void base_match(Writer &w, const MatchNames &names, const Match &match, Keywords table) {
    if (!match.present) {
        return;
    }
    w.open(names.container);
    if (match.op != 0) {
        w.keyword(names.op, acl_yang_acl_operator, match.op);
    }
    w.keyword_or_number(names.first, table, match.first);
    if (match.op == 5) {
        w.keyword_or_number(names.last, table, match.last);
    }
    w.close();
}

void base_network(Writer &w, const std::string &side_name, const Side &side) {
    if (side.kind == Side::Kind::any || side.kind == Side::Kind::group) {
        return;
    }
    w.open(side_name + "-network");
    w.address(side_name + "-address", side.address);
    if (side.kind == Side::Kind::wildcard) {
        w.address(side_name + "-wild-card-bits", wildcard(side.length));
    } else if (side.kind == Side::Kind::prefix) {
        w.number(side_name + "-prefix-length", side.length);
    }
    w.close();
}

void base_flags(Writer &w, const Rule &rule) {
    if (rule.flags == 0) {
        return;
    }
    w.open("tcp");
    if (rule.flags_op != 0) {
        w.keyword_or_number("tcp-bits-match-operator", acl_yang_acl_tcp_bits_match, rule.flags_op);
    }
    w.string("tcp-bits", flag_words(0, rule.flags, false));
    if (rule.flags_op != 0) {
        w.string("tcp-bits-mask", flag_words(0, rule.flags_mask, false));
    }
    w.close();
}

void base_next_hops(Writer &w, const Rule &rule) {
    if (!rule.default_next_hop && rule.next_hops.empty()) {
        return;
    }
    w.open("next-hop");
    w.keyword("next-hop-type", acl_yang_acl_nexthop_type, rule.default_next_hop ? 2 : 1);
    for (std::size_t i = 0; i < rule.next_hops.size(); ++i) {
        w.open("next-hop-" + std::to_string(i + 1));
        w.address("next-hop", rule.next_hops[i].address);
        w.string_if("vrf-name", rule.next_hops[i].vrf);
        w.string_if("track-name", rule.next_hops[i].track);
        w.close();
    }
    w.close();
}

void base_action(Writer &w, const Rule &rule) {
    w.keyword("grant", acl_yang_acl_grant, rule.permit ? 1 : 0);
    if (rule.protocol.op != 0) {
        w.keyword("protocol-operator", acl_yang_acl_operator, rule.protocol.op);
    }
    w.keyword_or_number("protocol", acl_yang_acl_protocol, rule.protocol.first);
    if (rule.protocol.op == 5) {
        w.keyword_or_number("protocol2", acl_yang_acl_protocol, rule.protocol.last);
    }
    base_network(w, "source", rule.source);
    base_network(w, "destination", rule.destination);
    base_match(w, {"source-port", "source-operator", "first-source-port", "second-source-port"},
               rule.source.port, acl_yang_acl_port);
    base_match(w,
               {"destination-port", "destination-operator", "first-destination-port",
                "second-destination-port"},
               rule.destination.port, acl_yang_acl_port);
    if (rule.icmp) {
        w.open("icmp");
        w.keyword_or_number("icmp-type-code", acl_yang_acl_icmp_type_code, rule.icmp_type_code);
        w.close();
    }
    base_flags(w, rule);
    base_match(
        w, {"packet-length", "packet-length-operator", "packet-length-min", "packet-length-max"},
        rule.packet_length, nullptr);
    base_match(w, {"time-to-live", "time-to-live-operator", "time-to-live-min", "time-to-live-max"},
               rule.ttl, nullptr);
    base_match(
        w,
        {"fragment-offset", "fragment-offset-operator", "fragment-offset-1", "fragment-offset-2"},
        rule.fragment_offset, nullptr);
    if (rule.fragment_type != 0) {
        w.keyword_or_number("fragment-type", acl_yang_acl_fragment_flags,
                            acl_yang_acl_fragment_flags[rule.fragment_type - 1].value);
    }
    base_next_hops(w, rule);
    w.string_if("counter-name", rule.counter);
    if (rule.igmp_type != 0) {
        w.keyword_or_number("igmp-message-type", acl_yang_acl_igmp_type, rule.igmp_type);
    }
    base_match(w, {"dscp", "dscp-operator", "dscp-min", "dscp-max"}, rule.dscp, acl_yang_acl_dscp);
    if (rule.precedence.present) {
        w.keyword_or_number("precedence", acl_yang_acl_precedence, rule.precedence.first);
    }
    if (rule.log != 0) {
        w.keyword("log-option", acl_yang_acl_log, rule.log);
    }
    if (rule.capture) {
        w.raw("capture", "true");
    }
    if (rule.icmp_off) {
        w.raw("icmp-off", "[null]");
    }
    if (rule.qos_group.present) {
        w.number("qos-group", rule.qos_group.first);
    }
    if (rule.set_ttl.present) {
        w.number("set-ttl", rule.set_ttl.first);
    }
    if (rule.fragments) {
        w.raw("fragments", "[null]");
    }
}

} // namespace

void append_base(std::string &text, const Rule &rule) {
    text += '{';
    Writer w(text, rule.names);
    w.number("sequence-number", rule.sequence);
    if (!rule.remark_only) {
        base_action(w, rule);
    }
    w.string_if("remark", rule.remark);
    w.string_if("source-prefix-group", rule.source.group);
    w.string_if("destination-prefix-group", rule.destination.group);
    w.string_if("source-port-group", rule.source.port_group);
    w.string_if("destination-port-group", rule.destination.port_group);
    if (rule.sequence_text) {
        w.string("sequence-str", std::to_string(rule.sequence));
    }
    w.close();
}

} // namespace aceconv::bench
