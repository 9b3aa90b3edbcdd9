#include "entries.h"

namespace aceconv::test {

const std::vector<Row> base_leaves = {
    {"grant=permit", "grant=1 | 0"},
    {"protocol-operator=range", "proto_oper=5 | 53"},
    {"protocol=ip-in-ip", "protocol=4 | 1"},
    {"protocol2=200", "protocol2=200 | 54"},
    {"source-network{source-address=192.0.2.1}", "saddr=192.0.2.1 | 2"},
    {"source-network{source-wild-card-bits=0.0.0.255}", "smask=0.0.0.255 | 3"},
    {"source-network{source-prefix-length=24}", "spfx_len=24 | 36"},
    {"destination-network{destination-address=198.51.100.7}", "daddr=198.51.100.7 | 7"},
    {"destination-network{destination-wild-card-bits=0.0.3.255}", "dmask=0.0.3.255 | 8"},
    {"destination-network{destination-prefix-length=22}", "dpfx_len=22 | 37"},
    {"source-port{source-operator=equal}", "sopr=1 | 4"},
    {"source-port{first-source-port=www}", "sport1=80 | 5"},
    {"source-port{second-source-port=8080}", "sport2=8080 | 6"},
    {"destination-port{destination-operator=not-equal}", "dopr=4 | 9"},
    {"destination-port{first-destination-port=65535}", "dport1=65535 | 10"},
    {"destination-port{second-destination-port=bgp}", "dport2=179 | 11"},
    {"icmp{icmp-type-code=host-unreachable}", "icmp_type_code=0x30001 | 18"},
    {"tcp{tcp-bits-match-operator=match-any}", "tcpflagsopr=3 | 20"},
    {"tcp{tcp-bits='ack fin'}", "tcpflags=0x11 | 21"},
    {"tcp{tcp-bits-mask='urg syn rst'}", "tcpflags_mask=0x26 | 22"},
    {"packet-length{packet-length-operator=less-than}", "plenopr=3 | 24"},
    {"packet-length{packet-length-min=1500}", "plen1=1500 | 25"},
    {"packet-length{packet-length-max=9000}", "plen2=9000 | 26"},
    {"time-to-live{time-to-live-operator=greater-than}", "ttloper=2 | 27"},
    {"time-to-live{time-to-live-min=254}", "ttl1=254 | 28"},
    {"time-to-live{time-to-live-max=255}", "ttl2=255 | 29"},
    {"fragment-offset{fragment-offset-operator=range}", "frag_offset_oper=5 | 56"},
    {"fragment-offset{fragment-offset-1=300}", "frag_offset1=300 | 57"},
    {"fragment-offset{fragment-offset-2=8191}", "frag_offset2=8191 | 58"},
    {"fragment-type='dont-fragment last-fragment'", "FragmentFlags=9 | 60"},
    {"next-hop{next-hop-type=regular-next-hop}", "nexthop=1 | 32"},
    {"next-hop{next-hop-1{next-hop=10.0.0.1}}", "nexthop1=10.0.0.1 | 33"},
    {"next-hop{next-hop-1{vrf-name=red}}", "vrf1='red' | 39"},
    {"next-hop{next-hop-1{track-name=t1}}", "track1='t1' | 44"},
    {"next-hop{next-hop-2{next-hop=10.0.0.2}}", "nexthop2=10.0.0.2 | 34 42"},
    {"next-hop{next-hop-2{vrf-name=green}}", "vrf2='green' | 40 42"},
    {"next-hop{next-hop-2{track-name=t2}}", "track2='t2' | 45"},
    {"next-hop{next-hop-3{next-hop=10.0.0.3}}", "nexthop3=10.0.0.3 | 35 43"},
    {"next-hop{next-hop-3{vrf-name=blue}}", "vrf3='blue' | 41 43"},
    {"next-hop{next-hop-3{track-name=t3}}", "track3='t3' | 46"},
    {"counter-name=hits", "counter_name='hits' | 51"},
    {"igmp-message-type=v3-report", "igmp_type=34 | 12"},
    {"dscp{dscp-operator=greater-than}", "dscp_op=2 | 14"},
    {"dscp{dscp-min=af11}", "dscp=10 | 15"},
    {"dscp{dscp-max=63}", "dscp2=63 | 16"},
    {"precedence=network", "tos_byte=7 | 17"},
    {"log-option=log-input", "log=2 | 13"},
    {"capture=true", "capture=1 | 38"},
    {"icmp-off", "icmp_off=1 | 30"},
    {"qos-group=512", "qos_group=512 | 55"},
    {"set-ttl=64", "SetTTL=64 | 59"},
    {"fragments", "frags=1 | 23"},
    {"remark='no bogons here'", "remark='no bogons here' | 31"},
    {"source-prefix-group=inside", "net_src_obj='inside' | 47"},
    {"destination-prefix-group=outside", "net_dst_obj='outside' | 48"},
    {"source-port-group=high", "port_src_obj='high' | 49"},
    {"destination-port-group=web", "port_dst_obj='web' | 50"},
    {"sequence-str=ten", "SequenceStr='ten' | 52"},
    {"sequence-number=10", "|"},
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
Entry join(const std::vector<Row> &rows, const char *members, const char *bits) {
    Entry entry{"", members};
    std::string all_bits = bits;
    for (const Row &row : rows) {
        const std::string record = row.record;
        const size_t bar = record.find('|');
        entry.tree += std::string(row.tree) + ' ';
        entry.record += record.substr(0, bar) + ' ';
        all_bits += record.substr(bar + 1) + ' ';
    }
    entry.record += '|' + all_bits;
    return entry;
}

} // namespace

Entry base_entry() {
    return join(base_leaves, "", "");
}

Entry um_entry(const std::string &action) {
    std::vector<Row> rows = um_leaves;
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
