// The UM encoder's container parsers, seen through "deny".
#include <gtest/gtest.h>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t unknown_leaf = 0x46B08400;

void expect_rows(const std::vector<Row> &rows) {
    for (const Row &row : rows) {
        Host host;
        EXPECT_EQ(host.encode(Schema::um, "deny{" + std::string(row.tree) + "}"), 0U) << row.tree;
        EXPECT_EQ(host.encoded, canonical(std::string(row.record) + " 0")) << row.tree;
        EXPECT_EQ(host.leaks(), 0U) << row.tree;
        EXPECT_TRUE(host.faults.empty()) << row.tree;
    }
}

TEST(UmParsers, Protocol) {
    expect_rows({
        {"protocol=tcp", "protocol=6 | 1"},
        {"protocol=65542", "protocol=6 | 1"},
        {"eq=udp", "proto_oper=1 protocol=17 | 1 53"},
        {"eq=ipv4", "proto_oper=1 protocol=512 | 1 53"},
        {"range{}", "proto_oper=5 | 53"},
        {"range{end-protocol=100}", "proto_oper=5 protocol2=100 | 53 54"},
        {"range{end-protocol=65537 start-protocol=65538}",
         "proto_oper=5 protocol=2 protocol2=1 | 1 53 54"},
        {"eq=udp protocol=tcp", "proto_oper=1 protocol=6 | 1 53"},
        {"protocol=tcp range{end-protocol=9}", "proto_oper=5 protocol=6 protocol2=9 | 1 53 54"},
        {"gt=1 lt{start-protocol=1}", "|"},
    });
}

// Both sides are one design; written for the source, read off for either.
std::string for_destination(std::string text) {
    const std::pair<const char *, const char *> names[] = {
        {"source{", "destination{"}, {"saddr", "daddr"},      {"smask", "dmask"},
        {"spfx_len", "dpfx_len"},    {"sopr", "dopr"},        {"sport", "dport"},
        {"net_src", "net_dst"},      {"port_src", "port_dst"}};
    for (const auto &[from, to] : names) {
        for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += 4) {
            text.replace(at, std::string(from).size(), to);
        }
    }
    const size_t bar = text.find('|');
    if (bar != std::string::npos) {
        std::string bits;
        for (size_t at = bar + 1; at < text.size(); ++at) {
            const size_t end = text.find(' ', at);
            const std::string bit = text.substr(at, end - at);
            const int source = bit.empty() ? 0 : std::stoi(bit);
            bits += bit.empty() ? "" : ' ' + std::to_string(source + (source < 7 ? 5 : 1));
            at = end == std::string::npos ? text.size() : end;
        }
        text = text.substr(0, bar + 1) + bits;
    }
    return text;
}

TEST(UmParsers, Addresses) {
    const Row rows[] = {
        {"source{}", "|"},
        {"source{host=192.0.2.1}", "saddr=192.0.2.1 | 2"},
        {"source{address=10.0.0.0 wildcard-mask=0.255.255.255}",
         "saddr=10.0.0.0 smask=0.255.255.255 | 2 3"},
        {"source{prefix-length=4294967295}", "spfx_len=4294967295 | 36"},
        {"source{any{}}", "|"},
        {"source{any{host=1.1.1.1 other=1}}", "|"},
        {"source{net-group=a net-group=b port-group=c port-group=d}",
         "net_src_obj='b' port_src_obj='d' | 47 49"},
        {"source{port{}}", "|"},
        {"source{port{eq=WWW}}", "sopr=1 sport1=80 | 4 5"},
        {"source{port{gt=1}}", "sopr=2 sport1=1 | 4 5"},
        {"source{port{lt=0}}", "sopr=3 | 4 5"},
        {"source{port{neq=8080}}", "sopr=4 sport1=8080 | 4 5"},
        {"source{port{eq=70000}}", "sopr=1 sport1=4464 | 4 5"},
        {"source{port{other=1 eq=5 unknown{eq=6}}}", "sopr=1 sport1=5 | 4 5"},
        {"source{port{range{start-value=1 end-value=FTP}}}", "sopr=5 sport1=1 sport2=21 | 4 5 6"},
        {"source{port{range{end-value=65536}}}", "sopr=5 | 4 6"},
        {"source{port{range{start-value=1} eq=2}}", "sopr=1 sport1=2 | 4 5"},
        {"source{port{eq=2 range{end-value=3}}}", "sopr=5 sport1=2 sport2=3 | 4 5 6"},
    };
    for (const Row &row : rows) {
        const std::string tree = for_destination(row.tree);
        const std::string record = for_destination(row.record);
        expect_rows({row, {tree.c_str(), record.c_str()}});
    }
    // the operator of a range: before the walk at the source, with each child at
    // the destination
    expect_rows({
        {"source{port{range{}}}", "sopr=5 | 4"},
        {"destination{port{range{}}}", "|"},
        {"source{port{range{other=1}}}", "sopr=5 | 4"},
        {"destination{port{range{other=1}}}", "dopr=5 | 9"},
        {"destination{port{eq=1 range{}}}", "dopr=1 dport1=1 | 9 10"},
        {"source{port{eq=1 range{}}}", "sopr=5 sport1=1 | 4 5"},
    });
}

TEST(UmParsers, UnknownLeavesThatStop) {
    const char *trees[] = {
        "range{start-protocol=1 other=1}",
        "range{protocol=1}",
        "source{other=1}",
        "source{eq=1}",
        "source{Address=1.1.1.1}",
        "destination{other{}}",
        "destination{daddr=1.1.1.1}",
        "source{net-group=lost other=1}",
    };
    for (const char *tree : trees) {
        Host host;
        EXPECT_EQ(host.encode(Schema::um, "deny{" + std::string(tree) + "}"), unknown_leaf) << tree;
        EXPECT_TRUE(host.called().ends_with(" next next next destroy release")) << tree;
        EXPECT_EQ(host.leaks(), 0U) << tree;
    }
}

TEST(UmParsers, Icmp) {
    expect_rows({
        {"icmp{}", "|"},
        {"icmp{other=1}", "|"},
        {"icmp{message-type-name=EchoReply}", "icmp_type_code=0xFFFF | 19"},
        {"icmp{message-type-name=NetworkUnreachable}", "icmp_type_code=0x30000 | 18"},
        {"icmp{message-type-name=Echo}", "icmp_type_code=0x8FFFF | 19"},
        {"icmp{message-type-name=0}", "icmp_type_code=0 | 18"},
        {"icmp{message-type=3 message-code=1}", "icmp_type_code=0x30001 | 18"},
        {"icmp{message-code=1 message-type=3}", "icmp_type_code=0x30001 | 18"},
        {"icmp{message-type=8}", "icmp_type_code=0x80000 | 18"},
        {"icmp{message-code=65535}", "icmp_type_code=0xFFFF | 19"},
        {"icmp{message-type=5 message-code=65535}", "icmp_type_code=0x5FFFF | 19"},
        {"icmp{message-type=0}", "icmp_type_code=0 | 18"},
        {"icmp{message-type-name=Echo message-type=3}", "icmp_type_code=0x30000 | 18 19"},
        {"icmp{message-type=3 message-type-name=Echo}", "icmp_type_code=0x30000 | 18 19"},
        {"icmp{message-type-name=NetworkUnreachable message-code=65535}",
         "icmp_type_code=0xFFFF | 18 19"},
        // composed in 32 bits: a wide code runs into the type
        {"icmp{message-type=65537 message-code=131071}", "icmp_type_code=0x1FFFF | 19"},
        {"icmp{message-code=65536}", "icmp_type_code=0x10000 | 18"},
    });
}

TEST(UmParsers, Operators) {
    struct {
        const char *name, *code, *first, *second, *bits[3];
    } const groups[] = {
        {"dscp", "dscp_op", "dscp", "dscp2", {" 14", " 15", " 16"}},
        {"packet-length", "plenopr", "plen1", "plen2", {" 24", " 25", " 26"}},
        {"ttl", "ttloper", "ttl1", "ttl2", {" 27", " 28", " 29"}},
        {"fragment-offset",
         "frag_offset_oper",
         "frag_offset1",
         "frag_offset2",
         {" 56", " 57", " 58"}},
    };
    for (const auto &group : groups) {
        const auto tree = [&group](const char *text) {
            return std::string(group.name) + "{" + text + "}";
        };
        const auto record = [&group](int code, int first, int second, const char *used) {
            std::string text = std::string(group.code) + "=" + std::to_string(code) + " " +
                               group.first + "=" + std::to_string(first) + " " + group.second +
                               "=" + std::to_string(second) + " |";
            for (const char *bit = used; *bit != '\0'; ++bit) {
                text += group.bits[*bit - 'a'];
            }
            return text;
        };
        const std::pair<std::string, std::string> cases[] = {
            {tree(""), record(0, 0, 0, "")},
            {tree("eq=1"), record(1, 1, 0, "ab")},
            {tree("gt=2"), record(2, 2, 0, "ab")},
            {tree("lt=255"), record(3, 255, 0, "ab")},
            {tree("neq=0"), record(4, 0, 0, "ab")},
            {tree("range{}"), record(5, 0, 0, "a")},
            {tree("range{start-value=10 end-value=20}"), record(5, 10, 20, "abc")},
            {tree("range{end-value=20}"), record(5, 0, 20, "ac")},
            {tree("range{start-value=10 other=1 unknown{end-value=2}}"), record(5, 10, 0, "ab")},
            {tree("other=1 eq=3 unknown{eq=4}"), record(1, 3, 0, "ab")},
            {tree("range{start-value=1} lt=5"), record(3, 5, 0, "ab")},
        };
        for (const auto &[input, output] : cases) {
            expect_rows({{input.c_str(), output.c_str()}});
        }
    }
    expect_rows({
        {"dscp{dscp-value=ef}", "dscp=46 | 15"},
        {"dscp{dscp-value=256}", "| 15"},
        {"dscp{gt=af11 dscp-value=cs7}", "dscp_op=2 dscp=56 | 14 15"},
        {"dscp{range{start-value=257 end-value=511}}", "dscp_op=5 dscp=1 dscp2=255 | 14 15 16"},
        {"ttl{dscp-value=1} packet-length{dscp-value=1} fragment-offset{dscp-value=1}", "|"},
        {"packet-length{lt=1500}", "plenopr=3 plen1=1500 | 24 25"},
        {"fragment-offset{eq=65535}", "frag_offset_oper=1 frag_offset1=65535 | 56 57"},
    });
}

TEST(UmParsers, TcpFlagNames) {
    expect_rows({
        {"tcp-flags{}", "|"},
        {"tcp-flags{tcp-bits='syn ack'}", "tcpflags=0x12 | 21"},
        {"tcp-flags{tcp-bits=''}", "|"},
        {"tcp-flags{other=syn tcp-bits2=ack}", "|"},
        {"tcp-flags{tcp-bits=#256}", "|"}, // nothing left in eight bits
        {"tcp-flags{tcp-bits=syn tcp-bits=''}", "| 21"},
        {"tcp-flags{match-all{other='+syn'} match-any{} other{tcp-bits='+syn'}}", "|"},
        {"tcp-flags{match-all{tcp-bits='+syn'} tcp-bits=urg}",
         "tcpflagsopr=1 tcpflags=0x20 tcpflags_mask=2 | 20 21 22"},
        {"tcp-flags{match-all{tcp-bits='+syn'} match-any{tcp-bits='-ack'}}",
         "tcpflagsopr=3 tcpflags=0 tcpflags_mask=0x10 | 20 21 22"},
        {"tcp-flags{match-any{tcp-bits='+fin'} match-all{tcp-bits=''}}",
         "tcpflagsopr=1 tcpflags=0 tcpflags_mask=1 | 20 21 22"},
    });
}

TEST(UmParsers, UserDefinedFields) {
    const char *two = "| 2:0-1 2:8-9 2:16-17";
    const char *one = "| 2:0 2:8 2:16";
    const auto list = [](const char *entries) {
        return "udf-entries{udf[" + std::string(entries) + "]}";
    };
    const std::pair<std::string, std::string> cases[] = {
        {list(""), "|"},
        {list("{udf-name=offset-a udf-value=0x1F udf-mask=ff}{}"),
         "UDF=offset-a:1f:ff,:0:0 " + std::string(two)},
        {list("{udf-mask=1 other=1 udf-name=twenty-characters-xx unknown{udf-mask=2}}"),
         "UDF=twenty-character:0:1 " + std::string(one)},
        {list("{udf-name=sixteen-letters-}"), "UDF=sixteen-letters-:0:0 " + std::string(one)},
        {list("{udf-name=''}"), "UDF=:0:0 " + std::string(one)},
        {list("{udf-name=longer-name udf-name=b}"), "UDF=b:0:0 " + std::string(one)},
        {list("{udf-value=zz}{udf-value=-1}"), "UDF=:0:0,:ffffffff:0 " + std::string(two)},
        {list("{udf-value=123456789}{udf-value=' +0XaB,1'}"),
         "UDF=:23456789:0,:ab:0 " + std::string(two)},
        {list("{udf-value=ffffffffffffffffff udf-mask=-0x10}{udf-mask=''}"),
         "UDF=:ffffffff:fffffff0,:0:0 " + std::string(two)},
        // a second list keeps the elements of both
        {"udf-entries{udf[{udf-name=a udf-mask=1}] udf[{udf-name=b udf-mask=2}]}",
         "UDF=a:0:1,b:0:2 " + std::string(two)},
        {list("{udf-name=a}") + list("") + list("{udf-name=b}"),
         "UDF=a:0:0,b:0:0 " + std::string(two)},
    };
    for (const auto &[tree, record] : cases) {
        expect_rows({{tree.c_str(), record.c_str()}});
    }
}

struct IndexCase {
    std::vector<uint32_t> counts; // of the first lists, where not the true one
    int32_t bias;
    uint32_t status;
    const char *record;
};

// A host whose counts and indexes disagree: nothing is written outside the array.
TEST(UmParsers, CountsAndIndexesThatDisagree) {
    constexpr uint32_t no_memory = 0x46B08200;
    constexpr uint32_t no_space = 0xCDCB8000;
    const IndexCase cases[] = {
        {{0}, 0, no_space, ""},
        {{1}, 0, no_space, ""},
        {{2, 0}, 0, no_space, ""},
        {{}, 1, no_space, ""},
        {{}, -1, no_space, ""},
        {{}, 1 << 30, no_space, ""},
        {{2, 0xFFFFFFFF}, 0, no_memory, ""}, // more than a count can say
        {{3, 2}, 1, 0, "UDF=:0:0,a:0:0,b:0:0,:0:0,c:0:0 | 0 2:0-4 2:8-12 2:16-20"},
    };
    for (const IndexCase &test : cases) {
        Host host;
        host.list_counts = test.counts;
        host.index_bias = test.bias;
        EXPECT_EQ(host.encode(Schema::um,
                              "deny{udf-entries{udf[{udf-name=a}{udf-name=b}] udf[{udf-name=c}]}}"),
                  test.status)
            << test.counts.size() << " " << test.bias;
        EXPECT_EQ(host.encoded, test.status != 0 ? "" : canonical(test.record));
        EXPECT_EQ(host.leaks(), 0U);
        EXPECT_TRUE(host.faults.empty());
    }
}

TEST(UmParsers, Police) {
    expect_rows({
        {"police{}", "|"},
        {"police{other=1 unknown{value=1}}", "|"},
        {"police{value=1000 unit=kbps}", "PoliceValue=1000 PoliceUnit=2 | 2:24 2:25"},
        {"police{peak-rate=2000 peak-unit=mbps}",
         "PolicePeakValue=2000 PolicePeakUnit=3 | 2:26 2:27"},
        {"police{unit=gbps unit=pps}", "| 2:25"},
        {"police{priority=critical}", "| 2:28"},
        {"police{priority=#258}", "Priority=2 | 2:28"},
        // failed reads of these three are not reported
        {"police{value=x peak-rate=-1 priority=none unit=bps}", "PoliceUnit=1 | 2:24-26 2:28"},
        {"police{value=7 value=x peak-rate=8 peak-rate=x priority=high priority=none}",
         "PoliceValue=7 PolicePeakValue=8 Priority=1 | 2:24 2:26 2:28"},
    });
    for (const char *leaf : {"unit", "peak-unit"}) {
        for (const char *unit : {"Kbps", "tbps", "", "kbps ", "pp", "ppss"}) {
            Host host;
            EXPECT_EQ(host.encode(Schema::um,
                                  "deny{police{" + std::string(leaf) + "='" + unit + "' value=1}}"),
                      0x4F96C600U);
            EXPECT_EQ(host.called().find("get_uint32"), std::string::npos);
            EXPECT_EQ(host.leaks(), 0U);
        }
    }
}

} // namespace
} // namespace aceconv::test
