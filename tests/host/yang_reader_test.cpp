// Readers and walks over parsed entries.
#include "yang_testing.h"

#include <cstdlib>
#include <cstring>

#include "aceconv/keywords.h"
#include "aceconv/plugin.h"

namespace aceconv::testing {
namespace {

constexpr ccv_yang_keyword one_row[] = {{7, "other"}, {0, nullptr}};
constexpr ccv_yang_keyword alike[] = {{1, "finn"}, {2, "fi"}, {31, "fin"}, {0, nullptr}};
constexpr ccv_yang_keyword too_high[] = {{32, "fin"}, {0, nullptr}};

std::string outcome(std::uint32_t status, const std::string &value) {
    switch (static_cast<YangStatus>(status)) {
    case YangStatus::ok:
        return value;
    case YangStatus::wrong_type:
        return "wrong_type";
    case YangStatus::out_of_range:
        return "out_of_range";
    case YangStatus::no_keyword:
        return "no_keyword";
    default:
        return "status " + std::to_string(status);
    }
}

/// Reads into a marked destination, which a failure must leave as it was.
template <class Number, class Reader>
std::string read(Reader reader) {
    auto value = static_cast<Number>(0xA5A5A5A5);
    const std::uint32_t status = reader(&value);
    EXPECT_TRUE(status == 0 || value == static_cast<Number>(0xA5A5A5A5));
    return outcome(status, std::to_string(value));
}

using Node = ccv_yang_node *;
template <const ccv_yang_keyword *table>
std::string name(Node node) {
    return read<std::uint32_t>([&](auto *to) { return ccv_yang_get_enum(node, table, to); });
}
template <const ccv_yang_keyword *table>
std::string name_or_number(Node node) {
    return read<std::uint32_t>(
        [&](auto *to) { return ccv_yang_get_enum_or_uint32(node, table, to); });
}
template <const ccv_yang_keyword *table>
std::string bits(Node node) {
    return read<std::uint32_t>([&](auto *to) { return ccv_yang_get_bits(node, table, to); });
}
std::string u8(Node node) {
    return read<std::uint8_t>([&](auto *to) { return ccv_yang_get_uint8(node, to); });
}
std::string u16(Node node) {
    return read<std::uint16_t>([&](auto *to) { return ccv_yang_get_uint16(node, to); });
}
std::string u32(Node node) {
    return read<std::uint32_t>([&](auto *to) { return ccv_yang_get_uint32(node, to); });
}
std::string boolean(Node node) {
    return read<std::uint32_t>([&](auto *to) { return ccv_yang_get_bool(node, to); });
}
std::string count(Node node) {
    return read<std::uint32_t>([&](auto *to) { return ccv_yang_get_list_entry_count(node, to); });
}
std::string ipv4(Node node) {
    std::uint32_t address = 0xA5A5A5A5;
    const std::uint32_t status = ccv_yang_get_ipv4(node, &address);
    EXPECT_TRUE(status == 0 || address == 0xA5A5A5A5);
    unsigned char bytes[4];
    std::memcpy(bytes, &address, 4); // network byte order
    std::string text;
    for (const unsigned char byte : bytes) {
        text += std::to_string(byte) + ' ';
    }
    return outcome(status, text);
}
std::string string(Node node) {
    char *text = nullptr;
    const std::uint32_t status = ccv_yang_get_string(node, &text);
    EXPECT_EQ(text == nullptr, status != 0);
    const std::string copy = text == nullptr ? "" : text;
    std::free(text);
    return outcome(status, '"' + copy + '"');
}

struct Case {
    Schema schema;
    const char *text;
    const char *path;
    std::string (*reader)(Node);
    const char *result;
};

constexpr Schema base = Schema::base;
constexpr Schema um = Schema::um;

const Case cases[] = {
    {base, R"({"grant":"permit"})", "grant", name<acl_yang_acl_grant>, "1"},
    {base, R"({"grant":"deny"})", "grant", name<acl_yang_acl_grant>, "0"},
    {base, R"({"grant":"deny"})", "grant", name<one_row>, "no_keyword"},
    {base, R"({"protocol":"tcp"})", "protocol", name<acl_yang_acl_protocol>, "6"},
    {base, R"({"protocol":6})", "protocol", name<acl_yang_acl_protocol>, "wrong_type"},
    {base, R"({"remark":"deny"})", "remark", name<acl_yang_acl_grant>, "wrong_type"},
    {base, R"({"icmp":{}})", "icmp", name<acl_yang_acl_grant>, "wrong_type"},
    {base, R"({"protocol":"tcp"})", "protocol", name_or_number<acl_yang_acl_protocol>, "6"},
    {base, R"({"protocol":0})", "protocol", name_or_number<acl_yang_acl_protocol>, "0"},
    {base, R"({"protocol":65535})", "protocol", name_or_number<acl_yang_acl_protocol>, "65535"},
    {base, R"({"protocol":25e1})", "protocol", name_or_number<acl_yang_acl_protocol>, "250"},
    {base, R"({"protocol":"tcp"})", "protocol", name_or_number<one_row>, "no_keyword"},
    {base, R"({"remark":"6"})", "remark", name_or_number<acl_yang_acl_protocol>, "wrong_type"},
    {base, R"({"icmp":{"icmp-type-code":4294967295}})", "icmp/icmp-type-code",
     name_or_number<acl_yang_acl_icmp_type_code>, "4294967295"},
    {base, R"({"fragment-type":"dont-fragment last-fragment"})", "fragment-type",
     name_or_number<acl_yang_acl_fragment_flags>, "9"},
    {base, R"({"tcp":{"tcp-bits":"urg ack syn"}})", "tcp/tcp-bits", bits<acl_yang_acl_tcp_bits>,
     "50"},
    {base, R"({"tcp":{"tcp-bits":" fin  syn "}})", "tcp/tcp-bits", bits<acl_yang_acl_tcp_bits>,
     "3"},
    {base, R"({"tcp":{"tcp-bits":""}})", "tcp/tcp-bits", bits<acl_yang_acl_tcp_bits>, "0"},
    {base, R"({"tcp":{"tcp-bits":"fin"}})", "tcp/tcp-bits", bits<one_row>, "no_keyword"},
    {base, R"({"remark":"fin"})", "remark", bits<acl_yang_acl_tcp_bits>, "wrong_type"},
    {base, R"({"tcp":{"tcp-bits":"fin"}})", "tcp/tcp-bits", bits<alike>, "2147483648"},
    {base, R"({"tcp":{"tcp-bits":"fin"}})", "tcp/tcp-bits", bits<too_high>, "no_keyword"},
    {base, R"({"time-to-live":{"time-to-live-min":0}})", "time-to-live/time-to-live-min", u8, "0"},
    {base, R"({"qos-group":255})", "qos-group", u8, "255"},
    {base, R"({"qos-group":256})", "qos-group", u8, "out_of_range"},
    {base, R"({"grant":"deny"})", "grant", u8, "wrong_type"},
    {base, R"({"qos-group":65535})", "qos-group", u16, "65535"},
    {base, R"({"sequence-number":65536})", "sequence-number", u16, "out_of_range"},
    {base, R"({"sequence-number":4294967295})", "sequence-number", u32, "4294967295"},
    {base, R"({"capture":true})", "capture", u32, "wrong_type"},
    {base, R"({"capture":true})", "capture", boolean, "1"},
    {base, R"({"c\u0061ptur\u0065":false})", "capture", boolean, "0"},
    {base, R"({"icmp-off":[null]})", "icmp-off", boolean, "wrong_type"},
    {um, R"({"permit":{"source":{"host":"192.0.2.1"}}})", "permit/source/host", ipv4, "192 0 2 1 "},
    {um, R"({"permit":{"source":{"host":"0.0.0.0"}}})", "permit/source/host", ipv4, "0 0 0 0 "},
    {base, R"({"remark":"192.0.2.1"})", "remark", ipv4, "wrong_type"},
    {base, R"({"remark":""})", "remark", string, "\"\""},
    {base, R"({"remark":"caf\u00e9 \ud83d\ude00 \"\t"})", "remark", string,
     "\"caf\u00e9 \U0001F600 \"\t\""},
    // The first and last characters of each width, and of surrogate pairs.
    {base, R"({"remark":"\ud800\udc00\ud800\udfff\udbff\udc00\udbff\udffd"})", "remark", string,
     "\"\U00010000\U000103FF\U0010FC00\U0010FFFD\""},
    {base, "{\"remark\":\"\u0080\u07FF\u0800\uD7FF\uE000\uFFFD\U00010000\U0010FFFD\"}", "remark",
     string, "\"\u0080\u07FF\u0800\uD7FF\uE000\uFFFD\U00010000\U0010FFFD\""},
    {um, R"({"deny":{"police":{"unit":"kbps"}}})", "deny/police/unit", string, "\"kbps\""},
    {base, R"({"qos-group":1})", "qos-group", string, "wrong_type"},
    {um, R"({"deny":{"udf-entries":{"udf":[{"udf-name":"a"},{"udf-mask":"f","udf-name":"b"}]}}})",
     "deny/udf-entries/udf", count, "2"},
    // What XML says of text; blanks around a number are YANG's.
    {base, "<entry><remark>a<!-- x -->\r\n\r<?x y?><![CDATA[<&#9;]]>&#13;&#9;&lt;</remark></entry>",
     "remark", string, "\"a\n\n<&#9;\r\t<\""},
    {base, "<entry><remark> \n</remark></entry>", "remark", string, "\" \n\""},
    {base, "<entry><remark><!-- --></remark></entry>", "remark", string, "\"\""},
    {base, "<entry><grant><!-- -->deny</grant></entry>", "grant", name<acl_yang_acl_grant>, "0"},
    {base, "<entry><qos-group>\n 0<!-- -->10 </qos-group></entry>", "qos-group", u16, "10"},
    {base, "<entry><tcp>\n<!-- -->\n<tcp-bits>\nsyn\tack</tcp-bits> </tcp></entry>", "tcp/tcp-bits",
     bits<acl_yang_acl_tcp_bits>, "18"},
    {um, R"({"deny":{"udf-entries":{}}})", "deny/udf-entries", count, "wrong_type"},
};

TEST(YangReaders, CheckTypeAndRange) {
    for (const Case &row : cases) {
        SCOPED_TRACE(std::string(row.text) + " " + row.path);
        const Format format = row.text[0] == '<' ? Format::xml : Format::json;
        const auto reader = make_validating_reader(modules(), row.schema, format);
        ccv_yang_node *node = find(reader->read(row.text, {}), row.path);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(row.reader(node), row.result);
    }
}

/// The walk of a converter that looks at every node, as "name{children}".
std::string walked(Walk &walk, std::uint32_t step) {
    std::string text;
    std::int32_t index = -1;
    std::int32_t *at = step == CCV_YANG_STEP_LIST ? &index : nullptr;
    walk.first(step, at);
    while (walk.status == 0 && !walk.finished(step) && walk.current != nullptr) {
        const NodeForm form = walk.current->form;
        text += at == nullptr ? ccv_yang_get_node_name(walk.current) : std::to_string(index);
        if (form != NodeForm::leaf) {
            const auto deeper = form == NodeForm::list         ? CCV_YANG_STEP_LIST
                                : form == NodeForm::list_entry ? CCV_YANG_STEP_LIST_ENTRY
                                                               : CCV_YANG_STEP_CONTAINER;
            text += '{' + walked(walk, deeper) + '}';
        }
        text += ' ';
        walk.next(at);
    }
    EXPECT_TRUE(walk.finished(step));
    return text;
}

struct WalkCase {
    Schema schema;
    Format format;
    const char *text;
    const char *walk;
};

const WalkCase walks[] = {
    {base, Format::json, "{}", ""},
    {base, Format::json, R"({"sequence-number":3})", "sequence-number "},
    {base, Format::json, R"({"tcp":{},"icmp-off":[null]})", "tcp{} icmp-off "},
    {base, Format::json, R"( {"aceconv-base:next-hop" : {"next-hop-3":{"next-hop":"10.0.0.1"},
      "next-hop-1":{}, "next-hop-type":"regular-next-hop"}, "grant":"deny"} )",
     "grant next-hop{next-hop-type next-hop-1{} next-hop-3{next-hop } } "},
    {um, Format::json, R"({"remark":"r","permit":{"udf-entries":{"udf":[
      {"udf-value":"1","udf-name":"z"},{"udf-name":"a"}]},"police":{"value":1}},"deny":{}})",
     "permit{udf-entries{udf{0{udf-name udf-value } 1{udf-name } } } police{value } } deny{} "
     "remark "},
    {um, Format::json, R"({"permit":{"udf-entries":{"udf":[]}}})", "permit{udf-entries{} } "},
    {um, Format::xml, "<entry/>", ""},
    {um, Format::xml,
     "<!-- <a> --><u:entry xmlns:u='urn:aceconv:um' ><u:sequence-number> 7 </u:sequence-number>"
     "<u:deny><u:log/><u:udf-entries><u:udf><u:udf-name>b</u:udf-name></u:udf><u:udf>"
     "<u:udf-name><![CDATA[<a>]]></u:udf-name></u:udf></u:udf-entries></u:deny></u:entry>\n",
     "sequence-number deny{udf-entries{udf{0{udf-name } 1{udf-name } } } log{} } "},
    {base, Format::xml, "<b:entry xmlns:b=\"urn:aceconv:base\"/>", ""},
    {base, Format::xml, "<entry xmlns='urn:aceconv:base'><grant>deny</grant></entry>", "grant "},
};

TEST(YangWalk, ShowsEveryNodeOnceInTheModulesOrder) {
    for (const WalkCase &row : walks) {
        SCOPED_TRACE(row.text);
        const auto reader = make_validating_reader(modules(), row.schema, row.format);
        Walk walk(reader->read(row.text, {}));
        EXPECT_NE(ccv_yang_iter_is_active(walk.iterator), 0);
        EXPECT_EQ(walked(walk, CCV_YANG_STEP_ENTRY), row.walk);
        EXPECT_EQ(ccv_yang_iter_is_active(walk.iterator), 0);
        EXPECT_EQ(walk.next(), nullptr);
    }
}

TEST(YangWalk, KeepsAFailureAndStepsOnAtEveryLevel) {
    const auto reader = make_validating_reader(modules(), um, Format::json);
    Walk walk(reader->read(R"({"permit":{"source":{"any":{},"port":{}},"ttl":{}}})", {}));
    walk.first(CCV_YANG_STEP_ENTRY);
    walk.first(CCV_YANG_STEP_CONTAINER);
    walk.first(CCV_YANG_STEP_CONTAINER);
    walk.status = 77;
    EXPECT_STREQ(ccv_yang_get_node_name(walk.next()), "port");
    EXPECT_EQ(walk.next(), nullptr);
    EXPECT_STREQ(ccv_yang_get_node_name(walk.next()), "ttl");
    EXPECT_EQ(walk.status, 77U);
}

TEST(YangWalk, ReportsAStepThatDoesNotFitTheNode) {
    const auto reader = make_validating_reader(modules(), base, Format::json);
    for (const std::uint32_t step : {CCV_YANG_STEP_LIST + 0U, CCV_YANG_STEP_LIST_ENTRY + 0U, 9U}) {
        Walk walk(reader->read(R"({"tcp":{}})", {}));
        walk.first(CCV_YANG_STEP_ENTRY);
        EXPECT_EQ(walk.first(step), nullptr);
        EXPECT_EQ(walk.status, code(YangStatus::misplaced));
    }
}

struct Explained {
    const char *path;
    std::string (*reader)(Node); // null: only the name is looked at
    std::uint32_t status;
    std::string error;
};

TEST(YangReaders, ExplainNamesThePathAndWhatWasExpected) {
    const char *text = R"({"protocol":"tcp","qos-group":300,"remark":"x","capture":false,
      "icmp-off":[null],"tcp":{"tcp-bits":"syn"}})";
    const std::string wrong = ": the value is not of the type that is read here";
    const Explained rows[] = {
        {"protocol", name<acl_yang_acl_grant>, code(YangStatus::no_keyword),
         "/protocol: the value is not among the known names: \"tcp\"; expected one of: deny, "
         "permit"},
        {"qos-group", u8, code(YangStatus::out_of_range),
         "/qos-group: the number is out of range: 300; expected a number 0 to 255"},
        {"remark", boolean, code(YangStatus::wrong_type),
         "/remark" + wrong + ": \"x\"; expected true or false"},
        {"capture", u8, code(YangStatus::wrong_type),
         "/capture" + wrong + ": false; expected a number 0 to 255"},
        {"icmp-off", u16, code(YangStatus::wrong_type),
         "/icmp-off" + wrong + "; expected a number 0 to 65535"},
        {"protocol", u32, code(YangStatus::wrong_type),
         "/protocol" + wrong + ": \"tcp\"; expected a number 0 to 4294967295"},
        {"protocol", ipv4, code(YangStatus::wrong_type),
         "/protocol" + wrong + ": \"tcp\"; expected an IPv4 address"},
        {"qos-group", string, code(YangStatus::wrong_type),
         "/qos-group" + wrong + ": 300; expected a string"},
        {"tcp", count, code(YangStatus::wrong_type), "/tcp" + wrong + "; expected a list"},
        {"tcp/tcp-bits", nullptr, ACE_STATUS_NO_KEYWORD,
         "/tcp/tcp-bits: unknown or repeated flag name: \"syn\""},
        {"tcp", nullptr, ACE_STATUS_UNKNOWN_UNIT, "/tcp: unknown rate unit"},
        {"tcp", nullptr, ACE_STATUS_NO_SPACE, "/tcp: more than there is room for"},
        {"tcp/tcp-bits", nullptr, ACE_STATUS_UNKNOWN_LEAF, "/tcp/tcp-bits: unknown node: \"syn\""},
        {"tcp", nullptr, ACE_STATUS_NO_MEMORY, "/tcp: out of memory"},
        {"tcp", nullptr, 0xBA600004, ": the conversion failed with status 0xBA600004"},
    };
    const auto reader = make_validating_reader(modules(), base, Format::json);
    for (const Explained &row : rows) {
        SCOPED_TRACE(row.error);
        ccv_yang_node *node = find(reader->read(text, {"A'B", 5}), row.path);
        if (row.reader != nullptr) {
            row.reader(node);
        }
        const DataError error = reader->explain(row.status);
        EXPECT_EQ(error.path() + ": " + error.what(),
                  "/aceconv-base:acls/acl[name=\"A'B\"]/entry[sequence-number='5']" + row.error);
    }
}

TEST(YangReaders, TheSequenceNumberComesFromTheTextOrTheCaller) {
    const auto reader = make_validating_reader(modules(), base, Format::json);
    reader->read(R"({"grant":"deny","sequence-number":12})", {});
    EXPECT_EQ(reader->sequence(), 12U);
    reader->read(R"({"grant":"deny"})", {"A", 30});
    EXPECT_EQ(reader->sequence(), 30U);
    reader->read(R"({"sequence-number":30})", {"A", 30});
    EXPECT_EQ(reader->sequence(), 30U);
    reader->read("{}", {"A", std::nullopt});
    EXPECT_EQ(reader->sequence(), std::nullopt);
}

} // namespace
} // namespace aceconv::testing
