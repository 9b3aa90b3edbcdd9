// Texts that are refused, and where the refusal points.
#include "yang_testing.h"

namespace aceconv::testing {
namespace {

struct Refusal {
    Schema schema;
    Format format;
    std::string text;
    const char *path; // below the entry
    std::string word; // of the message
};

constexpr Schema base = Schema::base;
constexpr Schema um = Schema::um;
constexpr Format json = Format::json;
constexpr Format xml = Format::xml;

const std::string nul(1, '\0');
const std::string long_word(200, 'l'); // as much as is shown of a value

const Refusal refusals[] = {
    // Names.
    {base, json, R"({"bogus":1})", "/bogus", "unknown node"},
    {base, json, R"({"source-netwrok":{}})", "/source-netwrok", "; did you mean source-network?"},
    {base, json, R"({"dscp-min":1})", "/dscp-min", "; did you mean dscp/dscp-min?"},
    {base, json, R"({"tcp":{"bogus":1}})", "/tcp/bogus", "unknown node"},
    {base, json, R"({"aceconv-um:remark":"x"})", "/remark", "unknown node"},
    {base, json, R"({"bog\u0075s":1})", "/bogus", "unknown node"},
    {base, json, R"({"gr\u0061nt\u0000":1})", "/gr\\u0061nt\\u0000", "unknown node"},
    {base, json, R"({"grant":"deny","@grant":{"yang:insert":"first"}})", "/@grant",
     "unknown node: an annotation"},
    {base, xml,
     R"(<entry xmlns:y="urn:ietf:params:xml:ns:yang:1"><grant y:insert="first">deny)"
     R"(</grant></entry>)",
     "/grant", "unknown attribute \"insert\""},
    {base, xml, "<entry xmlns:u='urn:aceconv:um'><tcp><u:x/></tcp></entry>", "/tcp/x",
     "unknown namespace \"urn:aceconv:um\"; expected \"urn:aceconv:base\""},
    {um, xml,
     "<entry><deny><udf-entries><udf><udf-name>a</udf-name><x/></udf></udf-entries></deny></entry>",
     "/deny/udf-entries/udf[udf-name='a']/x", "unknown node"},
    {base, xml, "<entry><tcp><tcp-bits/> x\n</tcp></entry>", "/tcp", "unexpected text \"x\""},
    {base, xml, "<entry><tcp><bogus/></tcp></entry>", "/tcp/bogus", "unknown node"},
    {um, json, R"({"permit":{"icmp-off":{}}})", "/permit/icmp-off", "unknown node"},
    {um, json, R"({"deny":{"udf-entries":{"udf":[{"udf-name":"a/b]","x":1}]}}})",
     "/deny/udf-entries/udf[udf-name='a/b]']/x", "unknown node"},
    // Repeats.
    {base, json, R"({"gr\u0061nt":"deny","grant":"deny"})", "/grant", "more than once"},
    {base, json, R"({"tcp":{},"aceconv-base:tcp":{}})", "/tcp", "more than once"},
    {um, json, R"({"deny":{"udf-entries":{"udf":[{"udf-name":"a"}],"udf":[{"udf-name":"b"}]}}})",
     "/deny/udf-entries/udf", "more than once"},
    {um, json,
     R"({"deny":{"udf-entries":{"udf":[{"udf-name":"a"},{"udf-name":"b"},)"
     R"({"udf-name":"a"}]}}})",
     "/deny/udf-entries/udf[udf-name='a']", "same key"},
    {base, xml, "<entry><grant>deny</grant><tcp/><grant>deny</grant></entry>", "/grant",
     "more than once"},
    {base, xml,
     "<entry><sequence-number>1</sequence-number><sequence-number>1</sequence-number>"
     "</entry>",
     "/sequence-number", "more than once"},
    {um, xml,
     "<entry><deny><udf-entries><udf><udf-name>a</udf-name></udf><udf><udf-name>a"
     "</udf-name></udf></udf-entries></deny></entry>",
     "/deny/udf-entries/udf[udf-name='a']", "same key"},
    {um, json, R"({"deny":{"udf-entries":{"udf":[{"udf-mask":"1"}]}}})", "/deny/udf-entries/udf",
     "udf-name"},
    // Values.
    {base, json, R"({"grant":"allow"})", "/grant", "\"allow\"; expected one of: deny, permit"},
    {base, json, R"({"grant":" deny"})", "/grant", "one of: deny, permit"},
    {base, json, R"({"grant":")" + long_word + "\"}", "/grant", '"' + long_word + "\"; expected"},
    {base, json, R"({"grant":")" + long_word + "x\"}", "/grant", '"' + long_word + "...\"; "},
    {base, json, R"({"grant":"x)" + long_word.substr(2) + "é\"}", "/grant",
     "\"x" + long_word.substr(2) + "...\"; "},
    {base, json, R"({"grant":""})", "/grant", ": an empty value; expected one of: deny, permit"},
    {base, json, R"({"grant":null})", "/grant", "one of: deny, permit"},
    {base, json, R"({"protocol":65536})", "/protocol",
     ": 65536; expected a number 0 to 65535 or one of: ip, icmp"},
    {base, json, R"({"protocol":"6"})", "/protocol", ": 6 in quotes; expected a number 0 to 65535"},
    {base, json, R"({"protocol":"TPC"})", "/protocol", ": \"TPC\"; expected a number"},
    {base, json, R"({"protocol":"TPC"})", "/protocol", "(16 names); did you mean tcp?"},
    {base, json, R"({"source-port":{"first-source-port":"http"}})",
     "/source-port/first-source-port", "; did you mean www?"},
    {um, json, R"({"deny":{"destination":{"port":{"eq":"http"}}}})", "/deny/destination/port/eq",
     "; did you mean WWW?"},
    {base, json, R"({"protocol":-1})", "/protocol", "a number 0 to 65535"},
    {base, json, R"({"protocol":6.0})", "/protocol", "a number 0 to 65535"},
    {base, json, R"({"precedence":256})", "/precedence", "a number 0 to 255"},
    {base, json, R"({"sequence-number":0})", "/sequence-number", "a number 1 to 4294967295"},
    {base, json, R"({"sequence-number":4294967296})", "/sequence-number", "4294967295"},
    {base, json, R"({"time-to-live":{"time-to-live-min":256}})", "/time-to-live/time-to-live-min",
     "a number 0 to 255"},
    {base, json, R"({"remark":5})", "/remark", ": 5 without quotes; expected a string"},
    {base, json, R"({"capture":"true"})", "/capture", ": true in quotes; expected true or false"},
    {base, json, R"({"icmp-off":true})", "/icmp-off", ": true; expected [null] in JSON"},
    {base, json, R"({"tcp":{"tcp-bits":"syn foo"}})", "/tcp/tcp-bits", "a set of: fin, syn"},
    {base, json, R"({"tcp":{"tcp-bits":"syn syn"}})", "/tcp/tcp-bits",
     ": \"syn\" twice; expected a set of: fin, syn, rst, psh, ack, urg"},
    {base, json, R"({"tcp":[]})", "/tcp", "expected an object"},
    {um, json, R"({"deny":{"udf-entries":{"udf":{}}}})", "/deny/udf-entries/udf",
     "expected an array of objects"},
    {base, xml, "<entry><remark>a<b/></remark></entry>", "/remark/b", "unknown node"},
    {um, json, R"({"permit":{"source":{"host":"1.2.3.256"}}})", "/permit/source/host",
     "\"1.2.3.256\"; expected an IPv4 address"},
    {um, json, R"({"permit":{"source":{"host":"1.2.3.4%lo"}}})", "/permit/source/host", "IPv4"},
    {um, json, R"({"deny":{"udf-entries":{"udf":[{"udf-name":"","udf-value":"1"}]}}})",
     "/deny/udf-entries/udf/udf-name", "1 to 16 characters"},
    {um, json,
     R"({"deny":{"udf-entries":{"udf":[{"udf-name":"1"},{"udf-name":"2"},{"udf-name":"3"},{"udf-name":"4"},{"udf-name":"5"},{"udf-name":"6"},{"udf-name":"7"},{"udf-name":"8"},{"udf-name":"9"}]}}})",
     "/deny/udf-entries/udf", "more than 8 entries"},
    {um, json, R"({"deny":{"udf-entries":{"udf":[{"udf-name":"a","udf-value":"123456789"}]}}})",
     "/deny/udf-entries/udf[udf-name='a']/udf-value", "{1,8}"},
    {um, xml, "<entry><deny><police><unit>tbps</unit></police></deny></entry>", "/deny/police/unit",
     "one of: pps, bps"},
    // Text.
    {base, json, R"({"remark":"a\u0000b"})", "", "\\u0000"},
    {base, json, R"({"remark":"a\ud83d"})", "", "ud83d"},
    {base, json, R"({"remark":"a\ud800\ue000"})", "", "ud800"},
    {base, json, R"({"remark":"a\udbff\udbff"})", "", "udbff"},
    {base, json, R"({"remark":"a\udbff\udfff"})", "/remark", "character"},
    {base, json, R"({"remark":"a\udc00\udc00"})", "", "udc00"},
    {base, json, R"({"remark":"a\ufffe"})", "", "ufffe"},
    {base, json, "{\"remark\":\"a" + nul + "b\"}", "", "character"},
    {base, json, "{\"remark\":\"a\x1b\"}", "", "character"},
    {base, json, "{\"remark\":\"\xC0\xAF\"}", "", "UTF-8"},
    {base, json, "{\"remark\":\"\xED\xA0\x80\"}", "", "UTF-8"},
    {base, json, "{\"remark\":\"\xF4\x90\x80\x80\"}", "", "UTF-8"},
    {base, json, "{\"remark\":\"\xE2\x82\"}", "", "UTF-8"},
    {base, json, "{\"remark\":\"\xEF\xBF\xBE\"}", "", "character"},
    {base, json, "{\"remark\":\"\xEF\xB7\x90\"}", "", "character"},
    {base, json, "{\"remark\":\"\xF0\x9F\xBF\xBF\"}", "", "character"},
    {base, xml, "<entry><remark>&#0;</remark></entry>", "", "invalid character"},
    // Shape.
    {base, json, "", "", "JSON object"},
    {base, json, "[{}]", "", "JSON object"},
    {base, json, "{} {}", "", "text behind the entry's JSON object"},
    {base, json, "{},{}", "", "behind"},
    {base, json, R"({}],"entry":[{})", "", "behind"},
    {base, json, R"({"tcp":{})", "", "the JSON object does not end"},
    {base, json, R"({"tcp":{]})", "", "the JSON brackets do not match"},
    {base, json, R"({"tcp)", "", "a JSON string does not end"},
    {base, json, R"({"grant":"deny",})", "", "}"},
    {base, xml, "", "", "<entry>"},
    {base, xml, "<name>x</name>", "", "<entry>"},
    {base, xml, "<entry/><entry/>", "", "expected one <entry> element"},
    {base, xml, "</acl><acl><entry/>", "", "mismatched tag"},
    {base, xml, "<entry><tcp></entry>", "", "mismatched tag"},
    {base, xml, "<!DOCTYPE x><entry/>", "", "not well-formed"},
    {base, xml, "<entry", "", "not well-formed"},
    {base, xml, "<entry><!--</entry>", "", "unclosed token"},
    {base, xml, "<entry a='>'/>", "", "\"a\""},
    {base, xml, "<entry xmlns='urn:x'/>", "", "urn:x"},
    {base, json, "{\"remark\":\"" + std::string(1 << 20, 'x') + "\"}", "", "1048576 bytes"},
};

TEST(YangRefusal, PointsAtTheNodeAndSaysWhatWasExpected) {
    for (const Refusal &row : refusals) {
        SCOPED_TRACE(row.text.substr(0, 200));
        const auto reader = make_validating_reader(modules(), row.schema, row.format);
        const std::string error = error_of([&] { reader->read(row.text, {"L", std::nullopt}); });
        // Sequence numbers that the text gives may stand in the path's brackets.
        const std::string start =
            std::string("/").append(module_name(row.schema)).append(":acls/acl[name='L']/entry");
        EXPECT_EQ(error.compare(0, start.size(), start), 0) << error;
        std::string below = error.substr(start.size());
        if (below.compare(0, 17, "[sequence-number=") == 0) {
            below.erase(0, below.find(']') + 1);
        }
        EXPECT_EQ(below.compare(0, std::string(row.path).size() + 1, std::string(row.path) + ':'),
                  0)
            << error;
        EXPECT_NE(below.find(row.word), std::string::npos) << error;
    }
}

TEST(YangRefusal, TheSequenceNumbersOfTextAndCallerMustAgree) {
    const auto reader = make_validating_reader(modules(), base, json);
    EXPECT_EQ(error_of([&] {
                  reader->read(R"({"sequence-number":20})", {"L", 10});
              }),
              "/aceconv-base:acls/acl[name='L']/entry[sequence-number='10']/sequence-number: 20; "
              "expected 10");
}

TEST(YangRefusal, ManyNodesAreRefusedBeforeTheyCost) {
    const auto from_json = make_validating_reader(modules(), um, json);
    const auto from_xml = make_validating_reader(modules(), um, xml);
    std::string members = "{\"m\":1";
    std::string elements = "<entry><permit><udf-entries><udf/>";
    for (int i = 1; i < 4096; ++i) {
        members += ",\"m" + std::to_string(i) + "\":1";
        elements += i < 4093 ? "<udf/>" : "";
    }
    const std::string ends[] = {"}", "</udf-entries></permit></entry>"};
    for (const char *more : {"", "one more"}) {
        const bool too_many = *more != '\0';
        const std::string one[] = {too_many ? ",\"x\":1" : "", too_many ? "<udf/>" : ""};
        EXPECT_EQ(error_of([&] {
                      from_json->read(members + one[0] + ends[0], {});
                  }).ends_with("more than 4096 members"),
                  too_many);
        EXPECT_EQ(error_of([&] {
                      from_xml->read(elements + one[1] + ends[1], {});
                  }).ends_with("more than 4096 elements"),
                  too_many);
        const std::string blanks((1 << 20) - (too_many ? 1 : 2), ' ');
        EXPECT_EQ(error_of([&] {
                      from_json->read('{' + blanks + '}', {});
                  }).ends_with("more than 1048576 bytes"),
                  too_many);
    }
}

/// A damaged text is refused or read as something else; it never does more.
TEST(YangRefusal, PrefixesAndFlippedBitsDoNoHarm) {
    const std::string texts[] = {
        R"({"sequence-number":10,"deny":{"source":{"host":"1.2.3.4"},"udf-entries":{"udf":[)"
        R"({"udf-name":"a","udf-mask":"ff"}]},"log":{}},"remark":"caf\u00e9 \ud83d\ude00"})",
        "<entry xmlns=\"urn:aceconv:um\"><sequence-number>10</sequence-number><deny><udf-entries>"
        "<udf><udf-name>a</udf-name></udf></udf-entries><log/></deny><remark>&lt;<![CDATA[x]]>"
        "</remark></entry>"};
    for (const Format format : {json, xml}) {
        const std::string &text = texts[format == json ? 0 : 1];
        const auto reader = make_validating_reader(modules(), um, format);
        ASSERT_NO_THROW(reader->read(text, {"L", 10}));
        for (std::size_t length = 0; length < text.size(); ++length) {
            EXPECT_THROW(reader->read(text.substr(0, length), {"L", 10}), DataError) << length;
        }
        int refused = 0;
        for (std::size_t bit = 0; bit < text.size() * 8; ++bit) {
            std::string damaged = text;
            damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
            try {
                EXPECT_NE(reader->read(damaged, {"L", 10}), nullptr);
            } catch (const DataError &error) {
                ++refused;
                EXPECT_EQ(error.path().compare(0, 17, "/aceconv-um:acls/"), 0);
                EXPECT_STRNE(error.what(), "");
            }
        }
        EXPECT_GT(refused, static_cast<int>(text.size()) * 5);
    }
}

} // namespace
} // namespace aceconv::testing
