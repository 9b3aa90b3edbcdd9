#include "aceconv/keywords.h"

#include <cstdint>

#include "common/keyword_guards.h"

constexpr ccv_yang_keyword acl_yang_acl_grant[] = {{0, "deny"}, {1, "permit"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_operator[] = {{1, "equal"},     {2, "greater-than"},
                                                      {3, "less-than"}, {4, "not-equal"},
                                                      {5, "range"},     {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_tcp_bits_match[] = {
    {1, "match-all"}, {3, "match-any"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_tcp_bits[] = {
    {0, "fin"}, {1, "syn"}, {2, "rst"}, {3, "psh"}, {4, "ack"}, {5, "urg"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_nexthop_type[] = {
    {1, "regular-next-hop"}, {2, "default-next-hop"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_log[] = {{1, "log"}, {2, "log-input"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_protocol[] = {
    {0, "ip"},   {1, "icmp"},  {2, "igmp"},  {4, "ip-in-ip"}, {6, "tcp"},    {9, "igrp"},
    {17, "udp"}, {47, "gre"},  {50, "esp"},  {51, "ahp"},     {88, "eigrp"}, {89, "ospf"},
    {94, "nos"}, {103, "pim"}, {108, "pcp"}, {132, "sctp"},   {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_protocol_um[] = {
    {1, "icmp"},  {2, "igmp"},   {4, "ipinip"}, {6, "tcp"},   {9, "igrp"},
    {17, "udp"},  {47, "gre"},   {50, "esp"},   {51, "ahp"},  {88, "eigrp"},
    {89, "ospf"}, {94, "nos"},   {103, "pim"},  {108, "pcp"}, {132, "sctp"},
    {46, "rsvp"}, {112, "vrrp"}, {512, "ipv4"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_igmp_type[] = {
    {17, "host-query"}, {18, "host-report"}, {19, "dvmrp"},    {20, "pim"},
    {21, "trace"},      {22, "v2-report"},   {23, "v2-leave"}, {30, "mtrace-response"},
    {31, "mtrace"},     {34, "v3-report"},   {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_dscp[] = {
    {0, "default"}, {10, "af11"}, {12, "af12"}, {14, "af13"}, {18, "af21"}, {20, "af22"},
    {22, "af23"},   {26, "af31"}, {28, "af32"}, {30, "af33"}, {34, "af41"}, {36, "af42"},
    {38, "af43"},   {8, "cs1"},   {16, "cs2"},  {24, "cs3"},  {32, "cs4"},  {40, "cs5"},
    {48, "cs6"},    {56, "cs7"},  {46, "ef"},   {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_precedence[] = {
    {5, "critical"}, {3, "flash"},    {4, "flash-override"}, {2, "immediate"}, {6, "internet"},
    {7, "network"},  {1, "priority"}, {0, "routine"},        {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_precedence_um[] = {
    {5, "Critical"}, {3, "Flash"},    {4, "FlashOverride"}, {2, "Immediate"}, {6, "Internet"},
    {7, "Network"},  {1, "Priority"}, {0, "Routine"},       {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_fragment_flags[] = {{1, "dont-fragment"},
                                                            {2, "is-fragment"},
                                                            {3, "dont-fragment is-fragment"},
                                                            {4, "first-fragment"},
                                                            {5, "dont-fragment first-fragment"},
                                                            {8, "last-fragment"},
                                                            {9, "dont-fragment last-fragment"},
                                                            {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_fragment_type_um[] = {{0, "dont-fragment"},
                                                              {1, "first-fragment"},
                                                              {2, "is-fragment"},
                                                              {3, "last-fragment"},
                                                              {4, "dont-fragment is-fragment"},
                                                              {5, "dont-fragment first-fragment"},
                                                              {6, "dont-fragment last-fragment"},
                                                              {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_priority_um[] = {
    {0, "critical"}, {1, "high"}, {2, "low"}, {3, "medium"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_rate_unit_um[] = {{0, "pps"},  {1, "bps"},  {2, "kbps"},
                                                          {3, "mbps"}, {4, "gbps"}, {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_icmp_type_code[] = {
    {0xFFFF, "echo-reply"},
    {0x30000, "network-unreachable"},
    {0x30001, "host-unreachable"},
    {0x30002, "protocol-unreachable"},
    {0x30003, "port-unreachable"},
    {0x30004, "packet-too-big"},
    {0x30005, "source-route-failed"},
    {0x30006, "network-unknown"},
    {0x30007, "host-unknown"},
    {0x30008, "host-isolated"},
    {0x30009, "dod-net-prohibited"},
    {0x3000A, "dod-host-prohibited"},
    {0x3000B, "net-tos-unreachable"},
    {0x3000C, "host-tos-unreachable"},
    {0x3000D, "administratively-prohibited"},
    {0x3000E, "host-precedence-unreachable"},
    {0x3000F, "precedence-unreachable"},
    {0x3FFFF, "unreachable"},
    {0x4FFFF, "source-quench"},
    {0x50000, "network-redirect"},
    {0x50001, "host-redirect"},
    {0x50002, "net-tos-redirect"},
    {0x50003, "host-tos-redirect"},
    {0x5FFFF, "redirect"},
    {0x6FFFF, "alternate-address"},
    {0x8FFFF, "echo"},
    {0x9FFFF, "router-advertisement"},
    {0xAFFFF, "router-solicitation"},
    {0xB0000, "ttl-exceeded"},
    {0xB0001, "reassembly-timeout"},
    {0xBFFFF, "time-exceeded"},
    {0xC0000, "general-parameter-problem"},
    {0xC0001, "option-missing"},
    {0xC0002, "no-room-for-option"},
    {0xCFFFF, "parameter-problem"},
    {0xDFFFF, "timestamp-request"},
    {0xEFFFF, "timestamp-reply"},
    {0xFFFFF, "information-request"},
    {0x10FFFF, "information-reply"},
    {0x11FFFF, "mask-request"},
    {0x12FFFF, "mask-reply"},
    {0x1EFFFF, "traceroute"},
    {0x1FFFFF, "conversion-error"},
    {0x20FFFF, "mobile-redirect"},
    {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_icmp_type_code_um[] = {
    {0xFFFF, "EchoReply"},
    {0x30000, "NetworkUnreachable"},
    {0x30001, "HostUnreachable"},
    {0x30002, "ProtocolUnreachable"},
    {0x30003, "PortUnreachable"},
    {0x30004, "PacketTooBig"},
    {0x30005, "SourceRouteFailed"},
    {0x30006, "NetworkUnknown"},
    {0x30007, "HostUnknown"},
    {0x30008, "HostIsolated"},
    {0x30009, "DODNetProhibited"},
    {0x3000A, "DODHostProhibited"},
    {0x3000B, "NetTOSUnreachable"},
    {0x3000C, "HostTOSUnreachable"},
    {0x3000D, "AdministrativelyProhibited"},
    {0x3000E, "HostPrecedenceUnreachable"},
    {0x3000F, "PrecedenceUnreachable"},
    {0x3FFFF, "Unreachable"},
    {0x4FFFF, "SourceQuench"},
    {0x50000, "NetworkRedirect"},
    {0x50001, "HostRedirect"},
    {0x50002, "NetTOSRedirect"},
    {0x50003, "HostTOSRedirect"},
    {0x5FFFF, "Redirect"},
    {0x6FFFF, "AlternateAddress"},
    {0x8FFFF, "Echo"},
    {0x9FFFF, "RouterAdvertisement"},
    {0xAFFFF, "RouterSolicitation"},
    {0xB0000, "TTLExceeded"},
    {0xB0001, "ReassemblyTimeout"},
    {0xBFFFF, "TimeExceeded"},
    {0xC0000, "GeneralParameterProblem"},
    {0xC0001, "OptionMissing"},
    {0xC0002, "NoRoomForOption"},
    {0xCFFFF, "ParameterProblem"},
    {0xDFFFF, "TimestampRequest"},
    {0xEFFFF, "TimestampReply"},
    {0xFFFFF, "InformationRequest"},
    {0x10FFFF, "InformationReply"},
    {0x11FFFF, "MaskRequest"},
    {0x12FFFF, "MaskReply"},
    {0x1EFFFF, "Traceroute"},
    {0x1FFFFF, "ConversionError"},
    {0x20FFFF, "MobileRedirect"},
    {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_port[] = {
    {7, "echo"},           {9, "discard"},         {13, "daytime"},
    {19, "char-gen"},      {20, "ftp-data"},       {21, "ftp"},
    {23, "telnet"},        {25, "smtp"},           {37, "time"},
    {42, "name-server"},   {43, "who-is"},         {49, "tacacs"},
    {53, "dns"},           {67, "boot-ps"},        {68, "boot-pc"},
    {69, "tftp"},          {70, "gopher"},         {79, "finger"},
    {80, "www"},           {101, "host-name"},     {109, "pop2"},
    {110, "pop3"},         {111, "sun-rpc"},       {113, "ident"},
    {119, "nntp"},         {123, "ntp"},           {137, "net-bios-ns"},
    {138, "net-bios-dgs"}, {139, "net-bios-ss"},   {161, "snmp"},
    {162, "snmp-trap"},    {177, "xdmcp"},         {179, "bgp"},
    {194, "irc"},          {195, "dnsix"},         {434, "mobile-ip"},
    {496, "pim-auto-rp"},  {500, "isakmp"},        {512, "exec-or-biff"},
    {513, "login-or-who"}, {514, "cmd-or-syslog"}, {515, "lpd"},
    {517, "talk"},         {520, "rip"},           {540, "uucp"},
    {543, "klogin"},       {544, "kshell"},        {646, "ldp"},
    {0, nullptr}};

constexpr ccv_yang_keyword acl_yang_acl_port_um[] = {
    {7, "Echo"},         {9, "Discard"},        {13, "Daytime"},     {19, "CharGen"},
    {20, "FTPData"},     {21, "FTP"},           {22, "SSH"},         {23, "Telnet"},
    {25, "SMTP"},        {37, "Time"},          {43, "WhoIs"},       {49, "TACACS"},
    {53, "DNS"},         {69, "TFTP"},          {70, "Gopher"},      {79, "Finger"},
    {80, "WWW"},         {101, "Hostname"},     {109, "POP2"},       {110, "POP3"},
    {111, "SunRPC"},     {113, "Ident"},        {119, "NNTP"},       {179, "BGP"},
    {194, "IRC"},        {443, "HTTPS"},        {496, "PIMAutoRP"},  {512, "ExecOrBiff"},
    {513, "LoginOrWho"}, {514, "CmdOrSyslog"},  {515, "LPD"},        {517, "Talk"},
    {540, "UUCP"},       {543, "KLogin"},       {544, "KShell"},     {646, "LDP"},
    {1812, "RADIUS"},    {1813, "RADIUS_ACCT"}, {42, "NameServer"},  {67, "BootPS"},
    {68, "BootPC"},      {123, "NTP"},          {137, "NetBIOS_NS"}, {138, "NetBIOS_DGS"},
    {139, "NetBIOS_SS"}, {161, "SNMP"},         {162, "SNMPTrap"},   {177, "XDMCP"},
    {195, "DNSIX"},      {434, "MobileIP"},     {500, "ISAKMP"},     {520, "RIP"},
    {3784, "BFD"},       {0, nullptr}};

namespace {

using ace::guard::row_count;
using ace::guard::same_values;
using ace::guard::unique_rows;

static_assert(row_count(acl_yang_acl_grant) == 2 && unique_rows(acl_yang_acl_grant));
static_assert(row_count(acl_yang_acl_operator) == 5 && unique_rows(acl_yang_acl_operator));
static_assert(row_count(acl_yang_acl_tcp_bits_match) == 2 &&
              unique_rows(acl_yang_acl_tcp_bits_match));
static_assert(row_count(acl_yang_acl_tcp_bits) == 6 && unique_rows(acl_yang_acl_tcp_bits));
static_assert(row_count(acl_yang_acl_nexthop_type) == 2 && unique_rows(acl_yang_acl_nexthop_type));
static_assert(row_count(acl_yang_acl_log) == 2 && unique_rows(acl_yang_acl_log));
static_assert(row_count(acl_yang_acl_protocol) == 16 && unique_rows(acl_yang_acl_protocol));
static_assert(row_count(acl_yang_acl_protocol_um) == 18 && unique_rows(acl_yang_acl_protocol_um));
static_assert(row_count(acl_yang_acl_igmp_type) == 10 && unique_rows(acl_yang_acl_igmp_type));
static_assert(row_count(acl_yang_acl_dscp) == 21 && unique_rows(acl_yang_acl_dscp));
static_assert(row_count(acl_yang_acl_precedence) == 8 && unique_rows(acl_yang_acl_precedence));
static_assert(row_count(acl_yang_acl_precedence_um) == 8 &&
              unique_rows(acl_yang_acl_precedence_um));
static_assert(row_count(acl_yang_acl_fragment_flags) == 7 &&
              unique_rows(acl_yang_acl_fragment_flags));
static_assert(row_count(acl_yang_acl_fragment_type_um) == 7 &&
              unique_rows(acl_yang_acl_fragment_type_um));
static_assert(row_count(acl_yang_acl_priority_um) == 4 && unique_rows(acl_yang_acl_priority_um));
static_assert(row_count(acl_yang_acl_rate_unit_um) == 5 && unique_rows(acl_yang_acl_rate_unit_um));
static_assert(row_count(acl_yang_acl_icmp_type_code) == 44 &&
              unique_rows(acl_yang_acl_icmp_type_code));
static_assert(row_count(acl_yang_acl_icmp_type_code_um) == 44 &&
              unique_rows(acl_yang_acl_icmp_type_code_um));
static_assert(row_count(acl_yang_acl_port) == 48 && unique_rows(acl_yang_acl_port));
static_assert(row_count(acl_yang_acl_port_um) == 53 && unique_rows(acl_yang_acl_port_um));

// The two schemas name the same numbers, row by row.
static_assert(same_values(acl_yang_acl_precedence, acl_yang_acl_precedence_um));
static_assert(same_values(acl_yang_acl_icmp_type_code, acl_yang_acl_icmp_type_code_um));

// Rate units are looked up by position.
static_assert([] {
    for (std::uint32_t row = 0; row < row_count(acl_yang_acl_rate_unit_um); ++row) {
        if (acl_yang_acl_rate_unit_um[row].value != row) {
            return false;
        }
    }
    return true;
}());

} // namespace
