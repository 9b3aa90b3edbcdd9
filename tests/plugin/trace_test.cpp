// The diagnostic trace: under which controls it writes, and each of its lines.
// The lines that want a failing allocation or string call are in fault_test.cpp.
#include <gtest/gtest.h>

#include "recording_host.h"

namespace aceconv::test {
namespace {

struct ControlCase {
    Event event;
    const char *filter;
    const char *calls; // of the trace
};

TEST(Trace, Controls) {
    const ControlCase cases[] = {
        {Event::none, nullptr, "event2"},
        {Event::low, nullptr, "event2"},
        {Event::none, ".*", "event2"},
        {Event::off, nullptr, "event2"},
        {Event::off, ".*", "event2"},
        {Event::on, nullptr, "event2 flag trace"},
        {Event::on, "^ccv_custom_encoder_ipv4_acl_ace_um$", "event2 flag expression trace"},
        {Event::on, "encoder.*um", "event2 flag expression trace"},
        {Event::on, "acl_yang_ipv4_enc_police", "event2 flag expression"},
        {Event::on, "^$", "event2 flag expression"},
    };
    for (const ControlCase &test : cases) {
        Host host;
        host.event = test.event;
        host.filter = test.filter;
        EXPECT_EQ(host.encode(Schema::um, "other"), 0x46B08400U);
        EXPECT_EQ(host.called("finished"),
                  "create active first0 " + std::string(test.calls) + " next destroy release");
        EXPECT_TRUE(host.faults.empty());
    }
}

TEST(Trace, ControlsAreReadAfreshAndPerFunction) {
    Host host;
    host.event = Event::on;
    EXPECT_EQ(host.encode(Schema::um, "other"), 0x46B08400U);
    EXPECT_EQ(host.traces.size(), 1U);
    host.event = Event::off;
    EXPECT_EQ(host.encode(Schema::um, "other"), 0x46B08400U);
    EXPECT_EQ(host.traces.size(), 0U);
    host.event = Event::on;
    host.filter = "^acl_yang_ace_common$";
    const char *failing = "tcpflagsopr=1 tcpflags_mask=0x40 | 0 20 22";
    EXPECT_EQ(host.decode(Schema::um, failing), 0x4DCB9200U);
    EXPECT_EQ(host.traces,
              (std::vector<std::string>{
                  "acl_yang_ace_common: acl_yang_tcp_flags failure, rc - 1305186816."}));
    Host inner;
    inner.event = Event::on;
    inner.filter = "tcp_flags";
    EXPECT_EQ(inner.decode(Schema::um, failing), 0x4DCB9200U);
    EXPECT_EQ(inner.traces,
              (std::vector<std::string>{"acl_yang_tcp_flags: acl_yang_tcp_bits_um failure for "
                                        "match-all , rc = 1305186816."}));
}

struct LineCase {
    const char *input; // a tree, or a record with its bar
    uint32_t status;
    std::vector<std::string> traces;
    std::vector<Failure> failures = {};
};

const LineCase lines[] = {
    {"other=1",
     0x46B08400,
     {"ccv_custom_encoder_ipv4_acl_ace_um: Invalid leaf name, rc=1185973248."}},
    {"",
     0xF001,
     {"ccv_custom_encoder_ipv4_acl_ace_um: acl_ccv_custom_bag_encode_v3_um failure, rc - 61441."},
     {{"encode"}}},
    {"",
     0xFFFFFFFF,
     {"ccv_custom_encoder_ipv4_acl_ace_um: acl_ccv_custom_bag_encode_v3_um failure, rc - -1."},
     {{"init", 0, 0xFFFFFFFF}}},
    {"permit{range{other=1}}",
     0x46B08400,
     {"acl_yang_ipv4_enc_protocol_common: range container can only have either start-protocol or "
      "end-protocol."}},
    {"permit{source{other=1}}",
     0x46B08400,
     {"acl_yang_ipv4_enc_source_address: Invalid leaf name inside source container, rc = "
      "1185973248."}},
    {"permit{destination{other=1}}",
     0x46B08400,
     {"acl_yang_ipv4_enc_dest_address: Invalid leaf name inside destination container, rc = "
      "1185973248."}},
    {"permit{tcp-flags{match-all{tcp-bits='+syn +syn'}}}",
     0x4DCB9200,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_um returned failure, rc = "
      "1305186816."}},
    {"permit{tcp-flags{match-any{tcp-bits='+syn -syn'}}}",
     0x4DCB9200,
     {"ccv_yang_set_ipv4_tcpflag: acl_yang_get_uint32_tcpflags_mask_um returned failure, rc = "
      "1305186816."}},
    {"permit{police{unit=Kbps}}",
     0x4F96C600,
     {"acl_yang_ipv4_enc_police: String Value Kbps is not found in structure "
      "acl_yang_acl_rate_unit_um for leaf unit, rc=1305186816."}},
    {"permit{police{peak-unit=tbps}}",
     0x4F96C600,
     {"acl_yang_ipv4_enc_police: String Value tbps is not found in structure "
      "acl_yang_acl_rate_unit_um for leaf peak-unit, rc=1305186816."}},
    {"|",
     0xF001,
     {"ccv_custom_decoder_ipv4_acl_ace_um: acl_ccv_custom_bag_decode_v3_um failure, rc - 61441."},
     {{"decode"}}},
    {"|",
     0xF001,
     {"ccv_custom_decoder_ipv4_acl_ace_um: acl_ccv_custom_bag_decode_v3_um failure, rc - 61441."},
     {{"init"}}},
    {"tcpflagsopr=1 tcpflags_mask=0x80 | 0 20 22",
     0x4DCB9200,
     {"acl_yang_tcp_flags: acl_yang_tcp_bits_um failure for match-all , rc = 1305186816.",
      "acl_yang_ace_common: acl_yang_tcp_flags failure, rc - 1305186816."}},
    {"tcpflagsopr=3 tcpflags_mask=0x80 | 0 20 22",
     0x4DCB9200,
     {"acl_yang_tcp_flags: acl_yang_tcp_bits_um failure for match-any , rc = 1305186816.",
      "acl_yang_ace_common: acl_yang_tcp_flags failure, rc - 1305186816."}},
    {"PoliceUnit=5 | 0 2:25",
     0x4F96C600,
     {"acl_yang_police: String value not found in structure acl_yang_acl_rate_unit_um for police "
      "unit value - 5."}},
    {"PolicePeakUnit=4294967295 | 0 2:27",
     0x4F96C600,
     {"acl_yang_police: String value not found in structure acl_yang_acl_rate_unit_um for police "
      "peak_unit value - -1."}},
    // failures without a line
    {"permit{nexthop1{other=1}}", 0x46B08400, {}},
    {"permit{dscp{eq=none}}", 0xBAD0, {}},
    {"permit{udf-entries{udf[{udf-name=a}]}}", 0xF001, {}, {{"count"}}},
    {"remark=a", 0xF001, {}, {{"create"}}},
    {"permit{police{unit=kbps}}", 0xF001, {}, {{"get_string:unit"}}},
    {"permit{tcp-flags{match-all{tcp-bits=+syn}}}", 0xF001, {}, {{"get_string"}}},
};

TEST(Trace, Lines) {
    for (const LineCase &test : lines) {
        Host host;
        host.event = Event::on;
        host.failures = test.failures;
        const std::string input = test.input;
        const uint32_t status = input.find('|') == std::string::npos
                                    ? host.encode(Schema::um, input)
                                    : host.decode(Schema::um, input);
        EXPECT_EQ(status, test.status) << input;
        EXPECT_EQ(host.traces, test.traces) << input;
        EXPECT_EQ(host.leaks(), 0U) << input;
        EXPECT_TRUE(host.faults.empty()) << input;
    }
}

TEST(Trace, WrittenBeforeTheRecordIsReleased) {
    Host host;
    host.event = Event::on;
    host.failures = {{"encode"}};
    EXPECT_EQ(host.encode(Schema::um, ""), 0xF001U);
    EXPECT_TRUE(host.called().ends_with("init encode undefine event2 flag trace release"))
        << host.called();
}

TEST(Trace, BaseConvertersWriteNone) {
    Host host;
    host.event = Event::on;
    EXPECT_NE(host.encode(Schema::base, "other"), 0U);
    EXPECT_EQ(host.called().find("event"), std::string::npos);
    host.failures = {{"decode"}};
    EXPECT_NE(host.decode(Schema::base, "|"), 0U);
    EXPECT_EQ(host.called().find("event"), std::string::npos);
}

} // namespace
} // namespace aceconv::test
