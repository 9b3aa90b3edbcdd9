// Registration, the descriptor as the platform sees it, and where constant data
// lives.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

struct RegistrationCase {
    std::vector<Failure> failures;
    uint32_t status;
    const char *calls;
};

TEST(Registration, CallsAndStatus) {
    const RegistrationCase cases[] = {
        {{}, 0, "start register end"},
        {{{"start", 0, 11}, {"abort", 0, 44}}, 11, "start"},
        {{{"register", 0, 22}, {"abort", 0, 44}}, 22, "start register abort"},
        {{{"register", 0, 22}}, 22, "start register abort"},
        {{{"end", 0, 0x80000003}}, 0x80000003, "start register end"},
    };
    for (const RegistrationCase &test : cases) {
        Host host;
        host.failures = test.failures;
        EXPECT_EQ(bag_register_all_ipv4_acl_bags(), test.status) << test.calls;
        EXPECT_EQ(host.called(), test.calls);
        EXPECT_TRUE(host.faults.empty());
    }
}

template <typename Word>
Word word_at(const void *base, size_t offset) {
    Word word;
    std::memcpy(&word, static_cast<const char *>(base) + offset, sizeof word);
    return word;
}

TEST(Descriptor, Words) {
    const void *bag = ipv4_acl_config_ace_bag_getfn();
    EXPECT_EQ(sizeof(bag_descriptor), 56U);
    EXPECT_EQ(word_at<uint64_t>(bag, 0), 1U);
    EXPECT_STREQ(word_at<const char *>(bag, 8), "ipv4_acl_config_ace");
    EXPECT_EQ(word_at<uint32_t>(bag, 16), 5U);
    EXPECT_EQ(word_at<uint32_t>(bag, 20), 1U);
    EXPECT_STREQ(word_at<const char *>(bag, 24), "ipv4_acl_bag_desc.dll");
    EXPECT_STREQ(
        word_at<const char *>(bag, 40),
        "$14={ConfigurationMask}H{ConfigurationMask2}H{grant}C{proto_oper}C{protocol}I{protocol2}I"
        "{saddr}N{smask}N{spfx_len}D{daddr}N{dmask}N{dpfx_len}D{sopr}C{sport1}I{sport2}I{dopr}C"
        "{dport1}I{dport2}I{log}D{capture}b{dscp_op}C{dscp}C{dscp2}C{prec}C{tos_byte}C"
        "{icmp_type_code}D{tcpflagsopr}C{tcpflags}C{tcpflags_mask}C{frags}C{igmp_type}C{plenopr}C"
        "{plen1}I{plen2}I{ttloper}C{ttl1}C{ttl2}C{icmp_off}C{qos_group}I{nexthop}C{nexthop1}N"
        "{nexthop2}N{nexthop3}N{vrf1}s{vrf2}s{vrf3}s{track1}s{track2}s{track3}s{net_src_obj}s"
        "{net_dst_obj}s{port_src_obj}s{port_dst_obj}s{counter_name}s{remark}s{SequenceStr}s"
        "{frag_offset_oper}C{frag_offset1}I{frag_offset2}I{UDF}a($12){SetTTL}I{FragmentFlags}C"
        "{Police}$13{Priority}C{icmp_on}C;$12={UDFName}17x{UDFValue}D{UDFMask}D;"
        "$13={PoliceValue}D{PoliceUnit}[bag_acl_rate_unit]e{PolicePeakValue}D"
        "{PolicePeakUnit}[bag_acl_rate_unit]e;");
    EXPECT_STREQ(word_at<const char *>(bag, 48),
                 "$14=HHCCIINNDNNDCIICIIDbCCCCCDCCCCCCIICCCCICNNNsssssssssssssCIIa($12)IC$13.CC;"
                 "$12=17xDD;$13=DeDe;");
}

struct LayoutCase {
    uint64_t tag;
    uint64_t size;
    std::vector<uint64_t> offsets;
};

const LayoutCase layout_rows[] = {
    {2, 264, {0,   8,   16,  17,  18,  20,  24,  28,  32,  36,  40,  44,  48,  50,  52,  54,  56,
              58,  60,  64,  68,  69,  70,  71,  72,  76,  80,  81,  82,  83,  84,  85,  86,  88,
              90,  91,  92,  93,  94,  96,  100, 104, 108, 112, 120, 128, 136, 144, 152, 160, 168,
              176, 184, 192, 200, 208, 216, 218, 220, 224, 232, 240, 242, 244, 260, 261}},
    {12, 28, {0, 20, 24}},
    {13, 16, {0, 4, 8, 12}},
};

TEST(Descriptor, LayoutTable) {
    const char *row = word_at<const char *>(ipv4_acl_config_ace_bag_getfn(), 32);
    EXPECT_EQ(layout_rows[0].offsets.size(), 66U);
    for (const LayoutCase &expected : layout_rows) {
        EXPECT_EQ(word_at<uint64_t>(row, 0), expected.tag);
        EXPECT_EQ(word_at<uint64_t>(row, 8), expected.size);
        const auto *offsets = word_at<const uint64_t *>(row, 16);
        for (size_t i = 0; i < expected.offsets.size(); ++i) {
            EXPECT_EQ(offsets[i], expected.offsets[i]) << expected.tag << " " << i;
        }
        row += 24;
    }
}

// The permissions of the mapping that holds `address`, for instance "r--p".
std::string permissions(const void *address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0;
        unsigned long end = 0;
        char mode[5] = "";
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, mode) == 3 &&
            reinterpret_cast<uintptr_t>(address) - begin < end - begin) {
            return mode;
        }
    }
    return "unmapped";
}

TEST(Descriptor, ConstantDataIsReadOnly) {
    const bag_descriptor *bag = ipv4_acl_config_ace_bag_getfn();
    std::vector<const void *> places = {
        bag,          bag->type_name,        bag->library_name,
        bag->layouts, bag->long_description, bag->short_description};
    for (int row = 0; row < 3; ++row) {
        places.push_back(bag->layouts[row].offsets);
    }
    Host host;
    ASSERT_EQ(host.encode(Schema::base, base_entry().tree), 0U);
    ASSERT_EQ(host.encode(Schema::um, um_entry().tree), 0U);
    ASSERT_EQ(host.decode(Schema::base, base_entry().record), 0U);
    EXPECT_EQ(host.tables.size(), 19U); // all but the rate units, one place each
    for (const void *table : host.tables) {
        places.push_back(table);
        places.push_back(static_cast<const ccv_yang_keyword *>(table)->name);
    }
    for (const void *place : places) {
        EXPECT_EQ(permissions(place).substr(0, 2), "r-") << place;
    }
    int writable = 0;
    EXPECT_EQ(permissions(&writable).substr(0, 2), "rw"); // the check can fail
}

} // namespace
} // namespace aceconv::test
