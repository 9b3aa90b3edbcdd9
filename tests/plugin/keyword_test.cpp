// Every row of every keyword table: the tables themselves, and each row through
// the converters that use it, in both directions.
#include <gtest/gtest.h>
#include <map>
#include <sstream>

#include "aceconv/keywords.h"
#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

// "value name;" in the stored order
const std::map<const ccv_yang_keyword *, const char *> tables = {
    {acl_yang_acl_grant, "0 deny;1 permit;"},
    {acl_yang_acl_operator, "1 equal;2 greater-than;3 less-than;4 not-equal;5 range;"},
    {acl_yang_acl_tcp_bits_match, "1 match-all;3 match-any;"},
    {acl_yang_acl_tcp_bits, "0 fin;1 syn;2 rst;3 psh;4 ack;5 urg;"},
    {acl_yang_acl_nexthop_type, "1 regular-next-hop;2 default-next-hop;"},
    {acl_yang_acl_log, "1 log;2 log-input;"},
    {acl_yang_acl_protocol, "0 ip;1 icmp;2 igmp;4 ip-in-ip;6 tcp;9 igrp;17 udp;47 gre;50 esp;"
                            "51 ahp;88 eigrp;89 ospf;94 nos;103 pim;108 pcp;132 sctp;"},
    {acl_yang_acl_protocol_um, "1 icmp;2 igmp;4 ipinip;6 tcp;9 igrp;17 udp;47 gre;50 esp;51 ahp;"
                               "88 eigrp;89 ospf;94 nos;103 pim;108 pcp;132 sctp;46 rsvp;"
                               "112 vrrp;512 ipv4;"},
    {acl_yang_acl_igmp_type, "17 host-query;18 host-report;19 dvmrp;20 pim;21 trace;22 v2-report;"
                             "23 v2-leave;30 mtrace-response;31 mtrace;34 v3-report;"},
    {acl_yang_acl_dscp, "0 default;10 af11;12 af12;14 af13;18 af21;20 af22;22 af23;26 af31;"
                        "28 af32;30 af33;34 af41;36 af42;38 af43;8 cs1;16 cs2;24 cs3;32 cs4;"
                        "40 cs5;48 cs6;56 cs7;46 ef;"},
    {acl_yang_acl_precedence, "5 critical;3 flash;4 flash-override;2 immediate;6 internet;"
                              "7 network;1 priority;0 routine;"},
    {acl_yang_acl_precedence_um, "5 Critical;3 Flash;4 FlashOverride;2 Immediate;6 Internet;"
                                 "7 Network;1 Priority;0 Routine;"},
    {acl_yang_acl_fragment_flags,
     "1 dont-fragment;2 is-fragment;3 dont-fragment is-fragment;4 first-fragment;"
     "5 dont-fragment first-fragment;8 last-fragment;9 dont-fragment last-fragment;"},
    {acl_yang_acl_fragment_type_um,
     "0 dont-fragment;1 first-fragment;2 is-fragment;3 last-fragment;4 dont-fragment is-fragment;"
     "5 dont-fragment first-fragment;6 dont-fragment last-fragment;"},
    {acl_yang_acl_priority_um, "0 critical;1 high;2 low;3 medium;"},
    {acl_yang_acl_rate_unit_um, "0 pps;1 bps;2 kbps;3 mbps;4 gbps;"},
    {acl_yang_acl_icmp_type_code,
     "65535 echo-reply;196608 network-unreachable;196609 host-unreachable;"
     "196610 protocol-unreachable;196611 port-unreachable;196612 packet-too-big;"
     "196613 source-route-failed;196614 network-unknown;196615 host-unknown;196616 host-isolated;"
     "196617 dod-net-prohibited;196618 dod-host-prohibited;196619 net-tos-unreachable;"
     "196620 host-tos-unreachable;196621 administratively-prohibited;"
     "196622 host-precedence-unreachable;196623 precedence-unreachable;262143 unreachable;"
     "327679 source-quench;327680 network-redirect;327681 host-redirect;327682 net-tos-redirect;"
     "327683 host-tos-redirect;393215 redirect;458751 alternate-address;589823 echo;"
     "655359 router-advertisement;720895 router-solicitation;720896 ttl-exceeded;"
     "720897 reassembly-timeout;786431 time-exceeded;786432 general-parameter-problem;"
     "786433 option-missing;786434 no-room-for-option;851967 parameter-problem;"
     "917503 timestamp-request;983039 timestamp-reply;1048575 information-request;"
     "1114111 information-reply;1179647 mask-request;1245183 mask-reply;2031615 traceroute;"
     "2097151 conversion-error;2162687 mobile-redirect;"},
    {acl_yang_acl_icmp_type_code_um,
     "65535 EchoReply;196608 NetworkUnreachable;196609 HostUnreachable;"
     "196610 ProtocolUnreachable;196611 PortUnreachable;196612 PacketTooBig;"
     "196613 SourceRouteFailed;196614 NetworkUnknown;196615 HostUnknown;196616 HostIsolated;"
     "196617 DODNetProhibited;196618 DODHostProhibited;196619 NetTOSUnreachable;"
     "196620 HostTOSUnreachable;196621 AdministrativelyProhibited;"
     "196622 HostPrecedenceUnreachable;196623 PrecedenceUnreachable;262143 Unreachable;"
     "327679 SourceQuench;327680 NetworkRedirect;327681 HostRedirect;327682 NetTOSRedirect;"
     "327683 HostTOSRedirect;393215 Redirect;458751 AlternateAddress;589823 Echo;"
     "655359 RouterAdvertisement;720895 RouterSolicitation;720896 TTLExceeded;"
     "720897 ReassemblyTimeout;786431 TimeExceeded;786432 GeneralParameterProblem;"
     "786433 OptionMissing;786434 NoRoomForOption;851967 ParameterProblem;"
     "917503 TimestampRequest;983039 TimestampReply;1048575 InformationRequest;"
     "1114111 InformationReply;1179647 MaskRequest;1245183 MaskReply;2031615 Traceroute;"
     "2097151 ConversionError;2162687 MobileRedirect;"},
    {acl_yang_acl_port,
     "7 echo;9 discard;13 daytime;19 char-gen;20 ftp-data;21 ftp;23 telnet;25 smtp;37 time;"
     "42 name-server;43 who-is;49 tacacs;53 dns;67 boot-ps;68 boot-pc;69 tftp;70 gopher;"
     "79 finger;80 www;101 host-name;109 pop2;110 pop3;111 sun-rpc;113 ident;119 nntp;123 ntp;"
     "137 net-bios-ns;138 net-bios-dgs;139 net-bios-ss;161 snmp;162 snmp-trap;177 xdmcp;179 bgp;"
     "194 irc;195 dnsix;434 mobile-ip;496 pim-auto-rp;500 isakmp;512 exec-or-biff;"
     "513 login-or-who;514 cmd-or-syslog;515 lpd;517 talk;520 rip;540 uucp;543 klogin;"
     "544 kshell;646 ldp;"},
    {acl_yang_acl_port_um,
     "7 Echo;9 Discard;13 Daytime;19 CharGen;20 FTPData;21 FTP;22 SSH;23 Telnet;25 SMTP;37 Time;"
     "43 WhoIs;49 TACACS;53 DNS;69 TFTP;70 Gopher;79 Finger;80 WWW;101 Hostname;109 POP2;"
     "110 POP3;111 SunRPC;113 Ident;119 NNTP;179 BGP;194 IRC;443 HTTPS;496 PIMAutoRP;"
     "512 ExecOrBiff;513 LoginOrWho;514 CmdOrSyslog;515 LPD;517 Talk;540 UUCP;543 KLogin;"
     "544 KShell;646 LDP;1812 RADIUS;1813 RADIUS_ACCT;42 NameServer;67 BootPS;68 BootPC;123 NTP;"
     "137 NetBIOS_NS;138 NetBIOS_DGS;139 NetBIOS_SS;161 SNMP;162 SNMPTrap;177 XDMCP;195 DNSIX;"
     "434 MobileIP;500 ISAKMP;520 RIP;3784 BFD;"},
};

TEST(Keywords, RowsInStoredOrder) {
    for (const auto &[table, expected] : tables) {
        std::string text;
        const ccv_yang_keyword *row = table;
        for (; row->name != nullptr; ++row) {
            text += std::to_string(row->value) + ' ' + row->name + ';';
        }
        EXPECT_EQ(text, expected);
        EXPECT_EQ(row->value, 0U) << expected;
    }
    EXPECT_EQ(tables.size(), 20U);
    EXPECT_EQ(sizeof(ccv_yang_keyword), 16U);
}

using Rows = std::vector<std::pair<uint32_t, std::string>>;

Rows rows_of(const ccv_yang_keyword *table) {
    Rows rows;
    std::istringstream text(tables.at(table));
    for (std::string row; std::getline(text, row, ';');) {
        rows.emplace_back(std::stoul(row), row.substr(row.find(' ') + 1));
    }
    return rows;
}

const Leaf um_uses[] = {
    {"deny{protocol='@'}", "protocol=$ | 0 1", "E:protocol=@", acl_yang_acl_protocol_um},
    {"deny{eq='@'}", "proto_oper=1 protocol=$ | 0 1 53", "E:eq=@", acl_yang_acl_protocol_um},
    {"deny{range{start-protocol='@'}}", "proto_oper=5 protocol=$ | 0 1 53",
     "range{ E:start-protocol=@ }", acl_yang_acl_protocol_um},
    {"deny{range{end-protocol='@'}}", "proto_oper=5 protocol2=$ | 0 53 54",
     "range{ E:end-protocol=@ }", acl_yang_acl_protocol_um},
    {"deny{source{port{lt='@'}}}", "sopr=3 sport1=$ | 0 4 5", "source{ any{ ! } port{ E:lt=@ } }",
     acl_yang_acl_port_um},
    {"deny{destination{port{gt='@'}}}", "dopr=2 dport1=$ | 0 9 10",
     "destination{ any{ ! } port{ E:gt=@ } }", acl_yang_acl_port_um},
    {"deny{source{port{range{start-value=1 end-value='@'}}}}", "sopr=5 sport1=1 sport2=$ | 0 4 5 6",
     "range{ E:start-value=1 E:end-value=@ }", acl_yang_acl_port_um},
    {"deny{destination{port{range{start-value=1 end-value='@'}}}}",
     "dopr=5 dport1=1 dport2=$ | 0 9 10 11", "range{ E:start-value=1 E:end-value=@ }",
     acl_yang_acl_port_um},
    {"deny{tcp-flags{tcp-bits='@'}}", "tcpflags=^ | 0 21", "tcp-flags{ b:tcp-bits=@ }",
     acl_yang_acl_tcp_bits},
    {"deny{tcp-flags{match-all{tcp-bits='@'}}}",
     "tcpflagsopr=1 tcpflags=^ tcpflags_mask=^ | 0 20-22", "match-all{ ! s:tcp-bits='+@' }",
     acl_yang_acl_tcp_bits},
    {"deny{icmp{message-type-name='@'}}", "icmp_type_code=$ | 0 %", "icmp{ e:message-type-name=@ }",
     acl_yang_acl_icmp_type_code_um},
    {"deny{igmp-type='@'}", "igmp_type=$ | 0 12", "E:igmp-type=@", acl_yang_acl_igmp_type},
    {"deny{dscp{dscp-value='@'}}", "dscp=$ | 0 15", "dscp{ E:dscp-value=@ }", acl_yang_acl_dscp},
    {"deny{dscp{neq='@'}}", "dscp_op=4 dscp=$ | 0 14 15", "dscp{ E:neq=@ }", acl_yang_acl_dscp},
    {"deny{dscp{range{start-value=1 end-value='@'}}}", "dscp_op=5 dscp=1 dscp2=$ | 0 14-16",
     "range{ E:start-value=1 E:end-value=@ }", acl_yang_acl_dscp},
    {"deny{precedence='@'}", "tos_byte=$ | 0 17", "E:precedence=@", acl_yang_acl_precedence_um},
    {"deny{fragment-type='@'}", "FragmentFlags=$ | 0 60", "e:fragment-type=@",
     acl_yang_acl_fragment_type_um},
    {"deny{police{priority='@'}}", "Priority=$ | 0 2:28", "police{ e:priority=@ }",
     acl_yang_acl_priority_um},
    {"deny{police{unit='@'}}", "PoliceUnit=$ | 0 2:25", "police{ s:unit='@' }",
     acl_yang_acl_rate_unit_um},
    {"deny{police{peak-unit='@'}}", "PolicePeakUnit=$ | 0 2:27", "police{ s:peak-unit='@' }",
     acl_yang_acl_rate_unit_um},
};

void expect_every_row(Schema schema, const Leaf &use) {
    for (const auto &[value, name] : rows_of(use.table)) {
        Host host;
        const std::string record = canonical(filled(use.record, value, name));
        EXPECT_EQ(host.encode(schema, filled(use.tree, value, name)), 0U) << record;
        EXPECT_EQ(host.encoded, record);
        EXPECT_EQ(host.decode(schema, record), 0U) << record;
        const std::string emission = ' ' + filled(use.emission, value, name) + ' ';
        EXPECT_NE((' ' + host.emitted() + ' ').find(emission), std::string::npos)
            << emission << "not in " << host.emitted();
    }
}

TEST(Keywords, EveryRowThroughTheConverters) {
    for (const Leaf &leaf : base_leaves) {
        if (leaf.table != nullptr) {
            expect_every_row(Schema::base, leaf);
        }
    }
    for (const Leaf &use : um_uses) {
        expect_every_row(Schema::um, use);
    }
}

TEST(Keywords, OtherSchemasNamesAreRefused) {
    const std::pair<Schema, const char *> trees[] = {
        {Schema::base, "protocol=ipinip"},
        {Schema::base, "precedence=Critical"},
        {Schema::base, "source-port{first-source-port=WWW}"},
        {Schema::um, "permit{protocol=ip}"},
        {Schema::um, "permit{protocol=ip-in-ip}"},
        {Schema::um, "permit{source{port{eq=www}}}"},
        {Schema::um, "permit{fragment-type=#none}"},
    };
    for (const auto &[schema, tree] : trees) {
        Host host;
        EXPECT_EQ(host.encode(schema, tree), 0xBAD0U) << tree;
    }
}

// Every number both ways, with its name where it has one.
TEST(Exhaustive, PortAndProtocolNumbers) {
    std::map<uint32_t, std::string> ports;
    std::map<uint32_t, std::string> protocols;
    for (const auto &[value, name] : rows_of(acl_yang_acl_port_um)) {
        ports[value] = name;
    }
    for (const auto &[value, name] : rows_of(acl_yang_acl_protocol_um)) {
        protocols[value] = name;
    }
    Host host;
    for (uint32_t value = 0; value < 65536; ++value) {
        const std::string number = std::to_string(value);
        const std::string port = ports.count(value) != 0 ? ports[value] : number;
        const std::string protocol = protocols.count(value) != 0 ? protocols[value] : number;
        Record record{};
        record.ConfigurationMask = 0x633;
        record.protocol = record.sport1 = record.dport1 = static_cast<uint16_t>(value);
        record.sopr = 1;
        record.dopr = 4;
        ASSERT_EQ(host.decode(Schema::um, record), 0U);
        ASSERT_EQ(host.emitted(), "deny{ ! E:protocol=" + protocol +
                                      " source{ any{ ! } port{ E:eq=" + port +
                                      " } } destination{ any{ ! } port{ E:neq=" + port + " } } }");
        ASSERT_EQ(host.encode(Schema::um, "deny{protocol=" + protocol + " source{port{eq=" + port +
                                              "}} destination{port{neq=" + port + "}}}"),
                  0U);
        ASSERT_EQ(host.encoded, record_text(record));
        if (value % 16 != value / 4096) {
            continue; // the base schema differs in names only
        }
        ASSERT_EQ(host.encode(Schema::base,
                              "protocol=" + number + " source-port{first-source-port=" + number +
                                  "} destination-port{first-destination-port=" + number + "}"),
                  0U);
        record.ConfigurationMask = 0x422;
        record.sopr = record.dopr = 0;
        ASSERT_EQ(host.encoded, record_text(record));
    }
}

} // namespace
} // namespace aceconv::test
