// Each of the UM decoder's emitters called on its own, with the record by value.
#include <gtest/gtest.h>

#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t no_keyword = 0x4DCB9200;
constexpr uint32_t unknown_unit = 0x4F96C600;
constexpr uint32_t no_space = 0xCDCB8000;

struct Case {
    const char *record;
    const char *emitted;
    uint32_t status = 0;
};

template <typename Emitter, size_t N>
void expect(Emitter emitter, const Case (&cases)[N], const char *name) {
    for (const Case &test : cases) {
        Host host;
        EXPECT_EQ(host.emit(emitter, test.record), test.status) << name << ": " << test.record;
        EXPECT_EQ(host.emitted(), test.emitted) << name << ": " << test.record;
        EXPECT_TRUE(host.faults.empty()) << name << ": " << test.record;
        EXPECT_EQ(host.leaks(), 0U) << name << ": " << test.record;
    }
}
#define EXPECT_EMITTED(emitter, ...)                                                               \
    do {                                                                                           \
        const Case cases[] = __VA_ARGS__;                                                          \
        expect(emitter, cases, #emitter);                                                          \
    } while (false)

TEST(UmEmitters, ProtocolAndNextHops) {
    EXPECT_EMITTED(acl_yang_protocol_common,
                   {{"grant=1 | 0", ""},
                    {"protocol=46 | 1", "E:protocol=rsvp"},
                    {"protocol=5 | 1", "E:protocol=5"},
                    {"proto_oper=1 protocol=65535 | 1 53", "E:eq=65535"},
                    {"proto_oper=5 protocol=1 protocol2=2 | 1 53 54",
                     "range{ E:start-protocol=icmp E:end-protocol=igmp }"},
                    {"proto_oper=5 protocol2=2 | 53 54", "range{ E:end-protocol=igmp }"}});
    EXPECT_EMITTED(acl_yang_nexthops,
                   {{"nexthop=0 | 32 33", ""},
                    {"nexthop=1 | 32", ""},
                    {"nexthop=2 | 32", "default{ ! }"},
                    {"nexthop=1 nexthop1=1.1.1.1 vrf1='v' track1='t' vrf3='w' | 32 33 39 44 41",
                     "nexthop1{ ! a:ipv4=1.1.1.1 s:vrf='v' s:track='t' } nexthop3{ ! s:vrf='w' }"},
                    {"nexthop=1 nexthop2=2.2.2.2 | 32 34", "nexthop2{ ! a:ipv4=2.2.2.2 }"}});
    EXPECT_EMITTED(acl_yang_match_option_common,
                   {{"|", ""},
                    {"capture=0 counter_name='c' log=2 qos_group=1 SetTTL=2 | 13 38 51 55 59",
                     "capture{ ! } s:counter='c' log-input{ ! } set{ u:qos-group=1 u:ttl=2 }"},
                    {"log=0 | 13", ""}});
}

TEST(UmEmitters, Addresses) {
    EXPECT_EMITTED(
        acl_yang_source_addr,
        {{"| 7 8 9 10 48 50", "any{ ! }"},
         {"saddr=1.2.3.4 | 2", "a:host=1.2.3.4"},
         {"saddr=1.2.3.4 smask=0.0.0.1 spfx_len=8 | 2 3 36",
          "a:address=1.2.3.4 u:prefix-length=8 a:wildcard-mask=0.0.0.1"},
         {"saddr=1.2.3.4 smask=0.0.0.1 | 2 3", "a:address=1.2.3.4 a:wildcard-mask=0.0.0.1"},
         {"saddr=1.2.3.4 spfx_len=0 | 2 36", "a:address=1.2.3.4 u:prefix-length=0"},
         {"saddr=1.2.3.4 net_src_obj='g' | 2 47", "a:host=1.2.3.4 s:net-group='g'"},
         {"net_src_obj='g' | 47", "s:net-group='g'"},
         {"smask=0.0.0.1 spfx_len=8 | 3 36", "any{ ! }"},
         {"port_src_obj='p' | 49", "any{ ! } s:port-group='p'"},
         {"sopr=1 | 4", "any{ ! } port{ }"},
         {"sport1=1 sport2=2 | 5 6", "any{ ! }"},
         {"sopr=0 sport1=1 | 4 5", "any{ ! } port{ }"},
         {"sopr=6 sport1=1 sport2=2 | 4 5 6", "any{ ! } port{ }"},
         {"sopr=5 sport1=22 | 4 5", "any{ ! } port{ range{ E:start-value=SSH } }"},
         {"sopr=5 sport2=22 | 4 6", "any{ ! } port{ }"},
         {"sopr=2 sport1=5 sport2=6 | 4 5 6", "any{ ! } port{ E:gt=5 }"}});
    EXPECT_EMITTED(
        acl_yang_dest_addr,
        {{"| 2 3 4 5 47 49", "any{ ! }"},
         {"daddr=1.2.3.4 dmask=0.0.0.1 dpfx_len=8 net_dst_obj='g' port_dst_obj='p' dopr=5 dport1=7 "
          "dport2=8 | 7-11 37 48 50",
          "a:address=1.2.3.4 u:prefix-length=8 a:wildcard-mask=0.0.0.1 s:net-group='g' "
          "s:port-group='p' port{ range{ E:start-value=Echo E:end-value=8 } }"}});
}

TEST(UmEmitters, MatchGroups) {
    EXPECT_EMITTED(
        acl_yang_icmp,
        {{"icmp_type_code=0x30001 |", ""},
         {"icmp_type_code=0x30001 | 18", "e:message-type-name=HostUnreachable"},
         {"icmp_type_code=0x30001 | 19", "e:message-type-name=Unreachable"},
         {"icmp_type_code=0x30001 | 18 19", "e:message-type-name=Unreachable"},
         {"icmp_type_code=0xFF0001 | 18", "u:message-type=255 u:message-code=1"},
         {"icmp_type_code=0xFF0001 | 19", "u:message-type=255 u:message-code=65535"},
         {"icmp_type_code=0 | 18", "u:message-type=0 u:message-code=0"},
         {"icmp_type_code=0xFFFF | 18", "e:message-type-name=EchoReply"},
         {"icmp_type_code=0xFFFFFFFF | 18", "u:message-type=65535 u:message-code=65535"}});
    EXPECT_EMITTED(
        acl_yang_dscp_fields,
        {{"dscp_op=1 dscp2=5 | 14 16", ""},
         {"dscp=46 | 15", "E:dscp-value=ef"},
         {"dscp_op=9 dscp=47 | 15", "E:dscp-value=47"},
         {"dscp_op=5 dscp=8 dscp2=9 | 14 15", "range{ E:start-value=cs1 }"},
         {"dscp_op=5 dscp=8 dscp2=9 | 14 15 16", "range{ E:start-value=cs1 E:end-value=9 }"},
         {"dscp_op=0 dscp=8 | 14 15", ""}});
    EXPECT_EMITTED(acl_yang_packet_length,
                   {{"plenopr=3 plen1=65535 | 24 25", "u:lt=65535"},
                    {"plenopr=3 plen1=1 | 24", ""},
                    {"plenopr=5 plen1=1 plen2=2 | 24-26", "range{ u:start-value=1 u:end-value=2 }"},
                    // the operator's bit opened the container; the content goes by the value's
                    {"plenopr=4 plen1=7 | 25", "u:neq=7"}});
    EXPECT_EMITTED(acl_yang_ttl, {{"ttloper=1 ttl1=255 | 28", "u:eq=255"},
                                  {"ttloper=5 ttl1=1 ttl2=2 | 28", "range{ u:start-value=1 }"},
                                  {"ttloper=6 ttl1=1 ttl2=2 | 27-29", ""}});
    EXPECT_EMITTED(acl_yang_fragment_offset,
                   {{"frag_offset_oper=2 frag_offset1=0 | 57", "u:gt=0"},
                    {"frag_offset_oper=5 frag_offset1=1 frag_offset2=65535 | 56-58",
                     "range{ u:start-value=1 u:end-value=65535 }"}});
}

TEST(UmEmitters, TcpFlags) {
    EXPECT_EMITTED(
        acl_yang_tcp_flags,
        {{"tcpflagsopr=1 tcpflags_mask=1 | 22", ""},
         {"tcpflagsopr=1 tcpflags=2 tcpflags_mask=0x12 | 20 22",
          "tcp-flags{ match-all{ ! s:tcp-bits='+syn -ack' } }"},
         {"tcpflagsopr=3 tcpflags=0x3F tcpflags_mask=0x3F | 20 22",
          "tcp-flags{ match-any{ ! s:tcp-bits='+fin +syn +rst +psh +ack +urg' } }"},
         {"tcpflagsopr=3 tcpflags=0xC0 tcpflags_mask=0x21 | 20 21",
          "tcp-flags{ match-any{ ! s:tcp-bits='-fin -urg' } }"},
         {"tcpflagsopr=2 tcpflags_mask=0xFF | 20-22", "tcp-flags{ }"},
         {"tcpflagsopr=0 | 20", "tcp-flags{ }"},
         {"tcpflagsopr=1 tcpflags_mask=1 | 20", "tcp-flags{ match-all{ ! } }"},
         {"tcpflagsopr=1 tcpflags=3 | 20 22", "tcp-flags{ match-all{ ! s:tcp-bits='' } }"},
         {"tcpflags=0x12 tcpflags_mask=0xFF | 21 22", "tcp-flags{ b:tcp-bits=syn,ack }"},
         {"tcpflags=0 | 21", "tcp-flags{ b:tcp-bits= }"},
         {"tcpflagsopr=1 tcpflags_mask=0x41 | 20 22", "tcp-flags{ match-all{ !", no_keyword},
         {"tcpflagsopr=3 tcpflags_mask=0x80 | 20 21", "tcp-flags{ match-any{ !", no_keyword}});
}

struct RoomCase {
    size_t append;
    size_t length; // of the text after that append
    bool fits;
};

// "+fin +syn": appends are sign, name, blank, sign, name. A sign or blank wants
// room for two characters, a name for its own length, of 2079.
TEST(UmEmitters, FlagTextFillsItsBufferAndNoMore) {
    const RoomCase cases[] = {{1, 2079 - 8, true}, {1, 2079 - 7, false}, {1, 2079 - 2, false},
                              {2, 2079 - 5, true}, {2, 2079 - 4, false}, {2, 2079 - 1, false},
                              {2, 2079, false},    {3, 2079 - 4, true},  {3, 2079 - 1, false},
                              {4, 2079 - 3, true}, {4, 2079 - 2, false}};
    for (const RoomCase &test : cases) {
        Host host;
        host.append_call = test.append;
        host.append_length = test.length;
        host.event = Event::on;
        EXPECT_EQ(
            host.emit(acl_yang_tcp_flags, "tcpflagsopr=1 tcpflags=3 tcpflags_mask=3 | 20 21 22"),
            test.fits ? 0 : no_space)
            << test.append << " " << test.length;
        EXPECT_EQ(host.emitted().find("tcp-bits") != std::string::npos, test.fits);
        EXPECT_TRUE(host.faults.empty());
        EXPECT_EQ(host.traces.size(), test.fits ? 0U : 1U);
    }
}

TEST(UmEmitters, UserDefinedFieldsAndPolice) {
    EXPECT_EMITTED(acl_yang_udf,
                   {{"| 2:0", "udf[ ]"},
                    {"UDF=a:ff:ffffffff,abcdefghijklmnop:0:100 |",
                     "udf[ udf( s:udf-name='a' s:udf-value='ff' s:udf-mask='ffffffff' ) udf( "
                     "s:udf-name='abcdefghijklmnop' s:udf-value='0' s:udf-mask='100' ) ]"}});
    EXPECT_EMITTED(
        acl_yang_police,
        {{"PoliceValue=1 Priority=1 | 2:23 2:29", ""},
         {"PoliceUnit=0 | 2:25", "police{ s:unit='pps' }"},
         {"PoliceValue=4294967295 PoliceUnit=4 PolicePeakValue=2 PolicePeakUnit=1 Priority=3 "
          "| 2:24-28",
          "police{ u:value=4294967295 s:unit='gbps' u:peak-rate=2 s:peak-unit='bps' "
          "e:priority=medium }"},
         {"Priority=4 | 2:28", "police{ e:priority=#4 }"},
         {"PoliceValue=1 PoliceUnit=5 PolicePeakValue=2 | 2:24-26", "police{ u:value=1",
          unknown_unit},
         {"PoliceUnit=1 PolicePeakUnit=4294967295 Priority=1 | 2:25-28",
          "police{ s:unit='bps' u:peak-rate=0", unknown_unit}});
}

TEST(UmEmitters, AceCommon) {
    EXPECT_EMITTED(
        acl_yang_ace_common,
        {{"| 14 16 18", "source{ any{ ! } } destination{ any{ ! } } icmp{ u:message-type=0 "
                        "u:message-code=0 }"},
         {"grant=9 igmp_type=21 dscp=1 tos_byte=8 prec=1 frags=1 FragmentFlags=7 UDF=a:1:2 "
          "Priority=2 protocol=6 nexthop=2 "
          "| 0 1 12 15 17 23 24 27 32 56 60 2:0 2:28",
          "source{ any{ ! } } destination{ any{ ! } } E:igmp-type=trace dscp{ E:dscp-value=1 } "
          "E:precedence=8 packet-length{ } ttl{ } fragment-offset{ } fragments{ ! } "
          "e:fragment-type=#7 udf-entries{ udf[ udf( s:udf-name='a' s:udf-value='1' "
          "s:udf-mask='2' ) ] } police{ e:priority=low }"},
         {"UDF=a:1:2 frags=0 | 23 25 28 57 2:1-23", "source{ any{ ! } } destination{ any{ ! } }"},
         {"| 2:0", "source{ any{ ! } } destination{ any{ ! } } udf-entries{ udf[ ] }"},
         {"tcpflagsopr=3 tcpflags_mask=0x40 igmp_type=21 | 12 20 22 2:28",
          "source{ any{ ! } } destination{ any{ ! } } tcp-flags{ match-any{ !", no_keyword}});
}

} // namespace
} // namespace aceconv::test
