// What one failing allocation or bounded string call does.
#include <gtest/gtest.h>

#include <cstring>

#include "aceconv/plugin.h"
#include "recording_host.h"
#include "um/decoder/emit.h"

namespace aceconv::test {
namespace {

constexpr uint32_t no_memory = 0x46B08200;
constexpr uint32_t unknown_leaf = 0x46B08400;
constexpr uint32_t unknown_unit = 0x4F96C600;

struct Case {
    const char *input; // a tree, or a record with its bar
    Failure failure;
    uint32_t status;
    std::vector<std::string> traces;
    const char *emitted = "";
};

const Case cases[] = {
    {"deny{udf-entries{udf[{udf-name=a}]}}",
     {"calloc"},
     no_memory,
     {"ccv_yang_get_ipv4_udf: Failed to allocate memory."}},
    {"deny{udf-entries{udf[]}}",
     {"calloc"},
     no_memory,
     {"ccv_yang_get_ipv4_udf: Failed to allocate memory."}},
    {"deny{udf-entries{udf[{udf-name=a}]}}", {"memset_s"}, 0xF001, {}},
    {"deny{udf-entries{udf[{udf-name=a}]}}", {"strncpy_s"}, 0xF001, {}},
    {"deny{tcp-flags{match-all{tcp-bits=+syn}}}",
     {"strdup"},
     no_memory,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_um returned failure, rc = "
      "1185972736."}},
    {"deny{tcp-flags{match-all{tcp-bits=+syn}}}",
     {"strdup", 1},
     no_memory,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_mask_um returned failure, rc = "
      "1185972736."}},
    {"deny{tcp-flags{match-all{tcp-bits=+syn}}}",
     {"strcmp_s:syn"},
     0xF001,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_um returned failure, rc = 61441."}},
    {"deny{tcp-flags{match-all{tcp-bits=-syn}}}",
     {"strcmp_s:syn"},
     0xF001,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_mask_um returned failure, rc = "
      "61441."}},
    {"deny{police{unit=gbps}}",
     {"strcmp_s:gbps"},
     unknown_unit,
     {"acl_yang_ipv4_enc_police: String Value gbps is not found in structure "
      "acl_yang_acl_rate_unit_um for leaf unit, rc=61441."}},
    {"deny{police{peak-unit=gbps}}",
     {"strcmp_s:gbps", 4},
     unknown_unit,
     {"acl_yang_ipv4_enc_police: String Value gbps is not found in structure "
      "acl_yang_acl_rate_unit_um for leaf peak-unit, rc=61441."}},
    // a name test that fails is no match
    {"remark=a",
     {"strcmp_s:remark", 0, 403, true},
     unknown_leaf,
     {"ccv_custom_encoder_ipv4_acl_ace_um: Invalid leaf name, rc=1185973248."}},
    {"UDF=a:1:2 | 0 2:0",
     {"memset_s"},
     0xF001,
     {"acl_yang_udf: memset_s failure for udf-value, rc - 61441.",
      "acl_yang_ace_common: acl_yang_udf failure, rc - 61441."},
     "udf-entries{ udf[ udf( s:udf-name='a' }"},
    {"UDF=a:1:2,b:1:2 PoliceValue=1 remark='r' | 0 31 2:0 2:24",
     {"memset_s", 1},
     0xF001,
     {"acl_yang_udf: memset_s failure for udf-mask, rc - 61441.",
      "acl_yang_ace_common: acl_yang_udf failure, rc - 61441."},
     "udf-entries{ udf[ udf( s:udf-name='a' s:udf-value='1' } s:remark='r'"},
    {"PoliceUnit=4 Priority=1 | 0 2:25 2:28",
     {"strdup"},
     no_memory,
     {"acl_yang_police: acl_yang_enum_to_string failure for police unit value 4, rc = "
      "1185972736."},
     "police{ }"},
    {"PoliceUnit=4 PolicePeakUnit=3 Priority=1 | 0 38 2:25 2:27 2:28",
     {"strdup", 1},
     no_memory,
     {"acl_yang_police: acl_yang_enum_to_string failure for police peak_unit value 3, rc = "
      "1185972736."},
     "police{ s:unit='gbps' }"},
};

TEST(Faults, OneFailingCall) {
    for (const Case &test : cases) {
        Host host;
        host.event = Event::on;
        host.failures = {test.failure};
        const std::string input = test.input;
        const bool tree = input.find('|') == std::string::npos;
        EXPECT_EQ(tree ? host.encode(Schema::um, input) : host.decode(Schema::um, input),
                  test.status)
            << input;
        EXPECT_EQ(host.traces, test.traces) << input;
        const char *frame = "deny{ ! source{ any{ ! } } destination{ any{ ! } } ";
        EXPECT_EQ(host.emitted(), tree ? "" : frame + std::string(test.emitted));
        EXPECT_EQ(host.fired.empty(), false) << input;
        EXPECT_EQ(host.leaks(), 0U) << input;
        EXPECT_TRUE(host.faults.empty()) << input << host.faults.front();
    }
}

// A second list whose elements find no room must not cost the first its own.
TEST(Faults, SecondListWithoutMemory) {
    for (int skip = 0; skip < 4; ++skip) {
        for (const char *call : {"calloc", "realloc", "malloc"}) {
            Host host;
            host.failures = {{call, skip}};
            const uint32_t status = host.encode(
                Schema::um, "deny{udf-entries{udf[{udf-name=a}] udf[{udf-name=b}{udf-name=c}]}}");
            EXPECT_EQ(status, host.fired.empty() ? 0 : no_memory);
            EXPECT_EQ(host.leaks(), 0U);
            EXPECT_TRUE(host.faults.empty());
        }
    }
}

// The checks of these tests can fail: blocks kept and blocks released twice show.
TEST(Faults, AccountingSeesLeaksAndSecondReleases) {
    Host host;
    void *block = host.allocate(8);
    EXPECT_EQ(host.leaks(), 1U);
    host.release(block);
    EXPECT_EQ(host.leaks(), 0U);
    host.release(block);
    EXPECT_EQ(host.faults.size(), 1U);
}

// The table of TCP flags can produce neither of these.
TEST(Faults, FlagTextOfOtherTables) {
    const Host host; // supplies the bounded append
    const std::string long_name(2077, 'x');
    const std::string too_long(2079, 'x');
    const struct {
        ccv_yang_keyword rows[3];
        std::uint32_t mask;
        std::uint32_t status;
        std::size_t length;
    } texts[] = {
        {{{0, "a"}, {31, "b"}, {0, nullptr}}, 0x80000001, 0, 5},
        {{{0, "a"}, {32, "b"}, {0, nullptr}}, 1, ACE_STATUS_NO_KEYWORD, 2},
        {{{0, long_name.c_str()}, {1, "b"}, {0, nullptr}}, 1, 0, 2078},
        {{{0, long_name.c_str()}, {1, "b"}, {0, nullptr}}, 3, ACE_STATUS_NO_SPACE, 2078},
        {{{0, too_long.c_str()}, {1, "b"}, {0, nullptr}}, 1, ACE_STATUS_NO_SPACE, 1},
    };
    for (const auto &row : texts) {
        ace::um::FlagText built;
        EXPECT_EQ(ace::um::build_flag_text(row.rows, 1, row.mask, built), row.status);
        EXPECT_EQ(std::strlen(built.text), row.length);
    }
}

} // namespace
} // namespace aceconv::test
