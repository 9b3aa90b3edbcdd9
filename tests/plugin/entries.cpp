#include "entries.h"

#include "aceconv/keywords.h"

namespace aceconv::test {

const std::vector<Leaf> base_leaves = {
    {"grant='@'", "grant=$ | 0", "e:grant=@", acl_yang_acl_grant, "permit", 1},
    {"protocol-operator='@'", "proto_oper=$ | 53", "e:protocol-operator=@", acl_yang_acl_operator,
     "range", 5},
    {"protocol='@'", "protocol=$ | 1", "u:protocol=$", acl_yang_acl_protocol, "ip-in-ip", 4},
    {"protocol2='@'", "protocol2=$ | 54", "u:protocol2=$", acl_yang_acl_protocol, "200", 200},
    {"source-network{source-address=192.0.2.1}", "saddr=192.0.2.1 | 2",
     "a:source-address=192.0.2.1"},
    {"source-network{source-wild-card-bits=0.0.0.255}", "smask=0.0.0.255 | 3",
     "a:source-wild-card-bits=0.0.0.255"},
    {"source-network{source-prefix-length=24}", "spfx_len=24 | 36", "u:source-prefix-length=24"},
    {"destination-network{destination-address=198.51.100.7}", "daddr=198.51.100.7 | 7",
     "a:destination-address=198.51.100.7"},
    {"destination-network{destination-wild-card-bits=0.0.3.255}", "dmask=0.0.3.255 | 8",
     "a:destination-wild-card-bits=0.0.3.255"},
    {"destination-network{destination-prefix-length=4000000000}", "dpfx_len=4000000000 | 37",
     "u:destination-prefix-length=4000000000"},
    {"source-port{source-operator='@'}", "sopr=$ | 4", "e:source-operator=@", acl_yang_acl_operator,
     "equal", 1},
    {"source-port{first-source-port='@'}", "sport1=$ | 5", "u:first-source-port=$",
     acl_yang_acl_port, "www", 80},
    {"source-port{second-source-port='@'}", "sport2=$ | 6", "u:second-source-port=$",
     acl_yang_acl_port, "8080", 8080},
    {"destination-port{destination-operator='@'}", "dopr=$ | 9", "e:destination-operator=@",
     acl_yang_acl_operator, "not-equal", 4},
    {"destination-port{first-destination-port='@'}", "dport1=$ | 10", "u:first-destination-port=$",
     acl_yang_acl_port, "65535", 65535},
    {"destination-port{second-destination-port='@'}", "dport2=$ | 11",
     "u:second-destination-port=$", acl_yang_acl_port, "bgp", 179},
    {"icmp{icmp-type-code='@'}", "icmp_type_code=$ | %", "E:icmp-type-code=@",
     acl_yang_acl_icmp_type_code, "host-unreachable", 0x30001},
    {"tcp{tcp-bits-match-operator='@'}", "tcpflagsopr=$ | 20", "E:tcp-bits-match-operator=@",
     acl_yang_acl_tcp_bits_match, "match-any", 3},
    {"tcp{tcp-bits='@'}", "tcpflags=^ | 21", "b:tcp-bits=@", acl_yang_acl_tcp_bits, "ack", 4},
    {"tcp{tcp-bits-mask='@'}", "tcpflags_mask=^ | 22", "b:tcp-bits-mask=@", acl_yang_acl_tcp_bits,
     "urg", 5},
    {"packet-length{packet-length-operator='@'}", "plenopr=$ | 24", "e:packet-length-operator=@",
     acl_yang_acl_operator, "less-than", 3},
    {"packet-length{packet-length-min=1500}", "plen1=1500 | 25", "u:packet-length-min=1500"},
    {"packet-length{packet-length-max=40001}", "plen2=40001 | 26", "u:packet-length-max=40001"},
    {"time-to-live{time-to-live-operator='@'}", "ttloper=$ | 27", "e:time-to-live-operator=@",
     acl_yang_acl_operator, "greater-than", 2},
    {"time-to-live{time-to-live-min=254}", "ttl1=254 | 28", "u:time-to-live-min=254"},
    {"time-to-live{time-to-live-max=255}", "ttl2=255 | 29", "u:time-to-live-max=255"},
    {"fragment-offset{fragment-offset-operator='@'}", "frag_offset_oper=$ | 56",
     "e:fragment-offset-operator=@", acl_yang_acl_operator, "range", 5},
    {"fragment-offset{fragment-offset-1=300}", "frag_offset1=300 | 57", "u:fragment-offset-1=300"},
    {"fragment-offset{fragment-offset-2=60002}", "frag_offset2=60002 | 58",
     "u:fragment-offset-2=60002"},
    {"fragment-type='@'", "FragmentFlags=$ | 60", "E:fragment-type=@", acl_yang_acl_fragment_flags,
     "dont-fragment last-fragment", 9},
    {"next-hop{next-hop-type='@'}", "nexthop=$ | 32", "e:next-hop-type=@",
     acl_yang_acl_nexthop_type, "regular-next-hop", 1},
    {"next-hop{next-hop-1{next-hop=10.0.0.1}}", "nexthop1=10.0.0.1 | 33", "a:next-hop=10.0.0.1"},
    {"next-hop{next-hop-1{vrf-name=red}}", "vrf1='red' | 39", "s:vrf-name='red'"},
    {"next-hop{next-hop-1{track-name=t1}}", "track1='t1' | 44", "s:track-name='t1'"},
    {"next-hop{next-hop-2{next-hop=10.0.0.2}}", "nexthop2=10.0.0.2 | 34 42", "a:next-hop=10.0.0.2"},
    {"next-hop{next-hop-2{vrf-name=green}}", "vrf2='green' | 40 42", "s:vrf-name='green'"},
    {"next-hop{next-hop-2{track-name=t2}}", "track2='t2' | 45", "s:track-name='t2'"},
    {"next-hop{next-hop-3{next-hop=10.0.0.3}}", "nexthop3=10.0.0.3 | 35 43", "a:next-hop=10.0.0.3"},
    {"next-hop{next-hop-3{vrf-name=blue}}", "vrf3='blue' | 41 43", "s:vrf-name='blue'"},
    {"next-hop{next-hop-3{track-name=t3}}", "track3='t3' | 46", "s:track-name='t3'"},
    {"counter-name=hits", "counter_name='hits' | 51", "s:counter-name='hits'"},
    {"igmp-message-type='@'", "igmp_type=$ | 12", "E:igmp-message-type=@", acl_yang_acl_igmp_type,
     "v3-report", 34},
    {"dscp{dscp-operator='@'}", "dscp_op=$ | 14", "e:dscp-operator=@", acl_yang_acl_operator,
     "greater-than", 2},
    {"dscp{dscp-min='@'}", "dscp=$ | 15", "u:dscp-min=$", acl_yang_acl_dscp, "af11", 10},
    {"dscp{dscp-max='@'}", "dscp2=$ | 16", "u:dscp-max=$", acl_yang_acl_dscp, "200", 200},
    {"precedence='@'", "tos_byte=$ | 17", "E:precedence=@", acl_yang_acl_precedence, "network", 7},
    {"log-option='@'", "log=$ | 13", "e:log-option=@", acl_yang_acl_log, "log-input", 2},
    {"capture=true", "capture=1 | 38", "B:capture=1"},
    {"icmp-off", "icmp_off=1 | 30", "_:icmp-off="},
    {"qos-group=50000", "qos_group=50000 | 55", "u:qos-group=50000"},
    {"set-ttl=60003", "SetTTL=60003 | 59", "u:set-ttl=60003"},
    {"fragments", "frags=1 | 23", "_:fragments="},
    {"remark='no bogons here'", "remark='no bogons here' | 31", "s:remark='no bogons here'"},
    {"source-prefix-group=inside", "net_src_obj='inside' | 47", "s:source-prefix-group='inside'"},
    {"destination-prefix-group=outside", "net_dst_obj='outside' | 48",
     "s:destination-prefix-group='outside'"},
    {"source-port-group=high", "port_src_obj='high' | 49", "s:source-port-group='high'"},
    {"destination-port-group=web", "port_dst_obj='web' | 50", "s:destination-port-group='web'"},
    {"sequence-str=ten", "SequenceStr='ten' | 52", "s:sequence-str='ten'"},
    {"sequence-number=10", "|", ""},
};

const std::vector<Row> um_leaves = {
    {"range{start-protocol=gre}", "protocol=47 proto_oper=5 | 1 53"},
    {"range{end-protocol=100}", "protocol2=100 proto_oper=5 | 53 54"},
    {"source{address=192.0.2.0}", "saddr=192.0.2.0 | 2"},
    {"source{wildcard-mask=0.0.0.255}", "smask=0.0.0.255 | 3"},
    {"source{prefix-length=24}", "spfx_len=24 | 36"},
    {"source{net-group=inside}", "net_src_obj='inside' | 47"},
    {"source{port-group=high}", "port_src_obj='high' | 49"},
    {"source{port{range{start-value=Telnet}}}", "sopr=5 sport1=23 | 4 5"},
    {"source{port{range{end-value=1023}}}", "sopr=5 sport2=1023 | 4 6"},
    {"destination{host=198.51.100.7}", "daddr=198.51.100.7 | 7"},
    {"destination{wildcard-mask=0.0.3.255}", "dmask=0.0.3.255 | 8"},
    {"destination{prefix-length=22}", "dpfx_len=22 | 37"},
    {"destination{net-group=outside}", "net_dst_obj='outside' | 48"},
    {"destination{port-group=web}", "port_dst_obj='web' | 50"},
    {"destination{port{range{start-value=RADIUS}}}", "dopr=5 dport1=1812 | 9 10"},
    {"destination{port{range{end-value=RADIUS_ACCT}}}", "dopr=5 dport2=1813 | 9 11"},
    {"tcp-flags{match-any{tcp-bits='+syn -ack'}}",
     "tcpflagsopr=3 tcpflags=2 tcpflags_mask=0x12 | 20 21 22"},
    {"icmp{message-type-name=TTLExceeded}", "icmp_type_code=0xB0000 | 18"},
    {"igmp-type=dvmrp", "igmp_type=19 | 12"},
    {"dscp{range{start-value=af11}}", "dscp_op=5 dscp=10 | 14 15"},
    {"dscp{range{end-value=ef}}", "dscp_op=5 dscp2=46 | 14 16"},
    {"precedence=FlashOverride", "tos_byte=4 | 17"},
    {"packet-length{range{start-value=64}}", "plenopr=5 plen1=64 | 24 25"},
    {"packet-length{range{end-value=1500}}", "plenopr=5 plen2=1500 | 24 26"},
    {"ttl{range{start-value=10}}", "ttloper=5 ttl1=10 | 27 28"},
    {"ttl{range{end-value=20}}", "ttloper=5 ttl2=20 | 27 29"},
    {"fragment-offset{range{start-value=256}}", "frag_offset_oper=5 frag_offset1=256 | 56 57"},
    {"fragment-offset{range{end-value=8191}}", "frag_offset_oper=5 frag_offset2=8191 | 56 58"},
    {"fragments", "frags=1 | 23"},
    {"fragment-type='dont-fragment first-fragment'", "FragmentFlags=5 | 60"},
    {"udf-entries{udf[{udf-name=offset-a udf-value=0x1F udf-mask=ff}{udf-name=b}]}",
     "UDF=offset-a:1f:ff,b:0:0 | 2:0-1 2:8-9 2:16-17"},
    {"police{value=1000}", "PoliceValue=1000 | 2:24"},
    {"police{unit=kbps}", "PoliceUnit=2 | 2:25"},
    {"police{peak-rate=2000}", "PolicePeakValue=2000 | 2:26"},
    {"police{peak-unit=mbps}", "PolicePeakUnit=3 | 2:27"},
    {"police{priority=medium}", "Priority=3 | 2:28"},
    {"nexthop1{ipv4=10.0.0.1}", "nexthop=1 nexthop1=10.0.0.1 | 32 33"},
    {"nexthop1{vrf=red}", "nexthop=1 vrf1='red' | 32 39"},
    {"nexthop1{track=t1}", "nexthop=1 track1='t1' | 32 44"},
    {"nexthop2{ipv4=10.0.0.2}", "nexthop2=10.0.0.2 | 34"},
    {"nexthop2{vrf=green}", "vrf2='green' | 40"},
    {"nexthop2{track=t2}", "track2='t2' | 45"},
    {"nexthop3{ipv4=10.0.0.3}", "nexthop3=10.0.0.3 | 35"},
    {"nexthop3{vrf=blue}", "vrf3='blue' | 41"},
    {"nexthop3{track=t3}", "track3='t3' | 46"},
    {"capture{}", "capture=1 | 38"},
    {"counter=hits", "counter_name='hits' | 51"},
    {"log-input{}", "log=2 | 13"},
    {"set{qos-group=512}", "qos_group=512 | 55"},
    {"set{ttl=300}", "SetTTL=300 | 59"},
    {"icmp-off{}", "icmp_off=1 | 30"},
    {"icmp-on{}", "icmp_on=1 | 2:29"},
};

namespace {

// Joins members with members and bits with bits.
Entry join(const std::vector<Entry> &rows, const char *members, const char *bits) {
    Entry entry{"", members};
    std::string all_bits = bits;
    for (const auto &[tree, record] : rows) {
        const size_t bar = record.find('|');
        entry.tree += tree + ' ';
        entry.record += record.substr(0, bar) + ' ';
        all_bits += record.substr(bar + 1) + ' ';
    }
    entry.record += '|' + all_bits;
    return entry;
}

} // namespace

std::string filled(const char *pattern, uint32_t value, const std::string &name) {
    std::string text;
    for (const char *c = pattern; *c != '\0'; ++c) {
        text += *c == '@'   ? name
                : *c == '$' ? std::to_string(value)
                : *c == '^' ? std::to_string(1U << value)
                : *c == '%' ? ((value & 0xFFFFU) == 0xFFFF ? "19" : "18")
                            : std::string(1, *c);
    }
    return text;
}

Entry entry_of(const Leaf &leaf) {
    return {filled(leaf.tree, leaf.value, leaf.name), filled(leaf.record, leaf.value, leaf.name)};
}

Entry base_entry() {
    std::vector<Entry> rows;
    for (const Leaf &leaf : base_leaves) {
        rows.push_back(entry_of(leaf));
    }
    return join(rows, "", "");
}

Entry um_entry(const std::string &action) {
    std::vector<Entry> rows;
    for (const Row &row : um_leaves) {
        rows.push_back({row.tree, row.record});
    }
    const bool deny = action == "deny";
    if (!deny) {
        rows.resize(rows.size() - 2); // the ICMP switches belong to "deny"
    }
    Entry entry = join(rows, deny ? "remark='x' " : "remark='x' grant=1 ", " 0 31");
    entry.tree = "sequence-number=10 " + action + "{" + entry.tree + "} remark=x";
    return entry;
}

const Entry um_typical = {"sequence-number=10 permit{protocol=tcp destination{address=192.0.2.0 "
                          "wildcard-mask=0.0.0.255 port{eq=WWW}}} remark='web servers'",
                          "grant=1 protocol=6 daddr=192.0.2.0 dmask=0.0.0.255 dopr=1 dport1=80 "
                          "remark='web servers' | 0 1 7-10 31"};

const char *const um_typical_emitted =
    "permit{ ! E:protocol=tcp source{ any{ ! } } destination{ a:address=192.0.2.0 "
    "a:wildcard-mask=0.0.0.255 port{ E:eq=WWW } } } s:remark='web servers'";

const char *const full_record =
    "grant=0 proto_oper=5 protocol=6 protocol2=400 saddr=10.1.1.1 smask=0.0.0.1 spfx_len=24 "
    "daddr=10.2.2.2 dmask=0.0.0.2 dpfx_len=4000000000 sopr=5 sport1=80 sport2=65535 dopr=2 "
    "dport1=443 dport2=444 log=2 capture=7 dscp_op=5 dscp=10 dscp2=200 prec=9 tos_byte=5 "
    "icmp_type_code=0x30001 tcpflagsopr=3 tcpflags=0x12 tcpflags_mask=0x21 frags=1 igmp_type=34 "
    "plenopr=5 plen1=40000 plen2=40001 ttloper=5 ttl1=200 ttl2=201 icmp_off=1 qos_group=50000 "
    "nexthop=1 nexthop1=1.1.1.1 nexthop2=2.2.2.2 nexthop3=3.3.3.3 vrf1='v1' vrf2='v2' vrf3='v3' "
    "track1='t1' track2='t2' track3='t3' net_src_obj='ns' net_dst_obj='nd' port_src_obj='ps' "
    "port_dst_obj='pd' counter_name='cn' remark='re' SequenceStr='ss' frag_offset_oper=5 "
    "frag_offset1=60001 frag_offset2=60002 UDF=u:1:ffffffff,abcdefghijklmnop:0:ff SetTTL=60003 "
    "FragmentFlags=4 PoliceValue=1 PoliceUnit=2 PolicePeakValue=3 PolicePeakUnit=4 Priority=1 "
    "icmp_on=1 |";

} // namespace aceconv::test
