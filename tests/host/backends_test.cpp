// The two YANG backends against each other: what one accepts the other accepts,
// with the same encodings, documents and messages.
#include <cstdlib>
#include <fstream>

#include "aceconv/plugin.h"
#include "host/schema/modules.h"
#include "testing/generator/rule.h"
#include "tests/host/yang_testing.h"
#include "tests/print_schema.h"

namespace aceconv::testing {
namespace {

using bench::Random;

struct Backend {
    std::unique_ptr<EntryReader> reader;
    std::unique_ptr<EntryWriter> writer;
};

struct Backends {
    Backend validating;
    Backend bulk;
    decltype(&ccv_custom_encoder_ipv4_acl_ace) encode;
    decltype(&ccv_custom_decoder_ipv4_acl_ace) decode;
};

Backends backends(Schema schema) {
    static const std::uint32_t registered = bag_register_all_ipv4_acl_bags();
    EXPECT_EQ(registered, 0U);
    const bool um = schema == Schema::um;
    return {{make_validating_reader(modules(), schema, Format::json),
             make_validating_writer(modules(), schema, Format::json)},
            {make_bulk_reader(modules(), schema), make_bulk_writer(modules(), schema)},
            um ? ccv_custom_encoder_ipv4_acl_ace_um : ccv_custom_encoder_ipv4_acl_ace,
            um ? ccv_custom_decoder_ipv4_acl_ace_um : ccv_custom_decoder_ipv4_acl_ace};
}

/// Everything that a user sees of one entry: the encoding and the document made
/// from it, or the message.
std::string outcome(const Backends &all, const Backend &backend, const std::string &text) {
    const EntryKey where{"LIST", std::nullopt};
    std::string seen;
    std::uint8_t *encoded = nullptr;
    std::uint32_t length = 0;
    try {
        ccv_yang_node *node = backend.reader->read(text, where);
        seen = std::to_string(backend.reader->sequence().value_or(0)) + ' ';
        const std::uint32_t status = all.encode(node, nullptr, 0, &encoded, &length);
        if (status != 0) {
            throw backend.reader->explain(status);
        }
        seen.append(reinterpret_cast<const char *>(encoded), length) += '\n';
        ccv_yang_output *output = backend.writer->begin({"LIST", backend.reader->sequence()});
        if (all.decode(output, encoded, length) != 0) {
            seen += "not decoded ";
        }
        backend.writer->finish(seen);
    } catch (const DataError &error) {
        seen += error.path() + ": " + error.what();
    }
    std::free(encoded);
    return seen;
}

void expect_agreement(const Backends &all, const std::string &text) {
    EXPECT_EQ(outcome(all, all.bulk, text), outcome(all, all.validating, text)) << text;
}

/// Of texts that are read one after the other. The bulk reader looks at them together,
/// unless it is told nothing of them.
void expect_agreement(const Backends &all, const std::vector<std::string> &texts, bool told) {
    const std::vector<std::string_view> ahead(texts.begin(), texts.end());
    all.bulk.reader->look_ahead(told ? ahead : std::vector<std::string_view>());
    for (const std::string &text : texts) {
        expect_agreement(all, text);
    }
}

constexpr std::string_view tokens[] = {
    "{",
    "}",
    "[",
    "]",
    ",",
    ":",
    "\"",
    "null",
    "true",
    "false",
    "[null]",
    "0",
    "-1",
    "1.0",
    "1e2",
    "65536",
    "4294967296",
    "007",
    "\\u0000",
    "\\u0041",
    "\\ud83d\\ude00",
    "\x7f",
    "\x01",
    "\xff",
    "\xc3\xa9",
    "\xef\xbf\xbe",
    " ",
    "\n",
    "tcp",
    "www",
    "WWW",
    "192.0.2.1",
    "01.2.3.4",
    "1.2.3",
    "\"grant\":\"deny\",",
    "syn",
    "ack syn",
    "syn  ack",
    "aceconv-base:",
    "aceconv-um:",
    "@",
    "{},",
};

/// One to three edits: a token put in, bytes cut out, or a piece repeated.
std::string mutated(Random &random, std::string text) {
    for (std::uint32_t edits = random.between(1, 3); edits > 0 && !text.empty(); --edits) {
        const std::size_t at = random.below(static_cast<std::uint32_t>(text.size()));
        const std::size_t length = random.between(1, 12);
        switch (random.below(4)) {
        case 0:
            text.insert(at, tokens[random.below(std::size(tokens))]);
            break;
        case 1:
            text.erase(at, length);
            break;
        case 2:
            text.replace(at, length, tokens[random.below(std::size(tokens))]);
            break;
        default: {
            const std::string piece = text.substr(at, 4 * length);
            text.insert(random.below(static_cast<std::uint32_t>(text.size())), piece);
        }
        }
    }
    return text;
}

class BackendsAgree : public ::testing::TestWithParam<Schema> {};

TEST_P(BackendsAgree, OnGeneratedAndMutatedEntries) {
    const Backends all = backends(GetParam());
    const bool more = std::getenv("ACECONV_LONG_TESTS") != nullptr;
    Random random(7);
    for (std::uint32_t i = 1; i <= (more ? 100000U : 1000U) && !HasFailure(); ++i) {
        std::string text;
        const bench::Rule rule = bench::random_rule(random, i);
        (GetParam() == Schema::um ? bench::append_um : bench::append_base)(text, rule);
        std::vector<std::string> texts{text};
        for (int mutant = 0; mutant < 4; ++mutant) {
            texts.push_back(mutated(random, text));
        }
        texts.push_back(text);
        expect_agreement(all, texts, i % 4 != 0);
    }
}

// No byte may pass between the tokens of one backend that the other refuses.
TEST_P(BackendsAgree, OnOneByteMoreAnywhere) {
    const Backends all = backends(GetParam());
    const std::string entry =
        GetParam() == Schema::um
            ? R"({"permit":{"ttl":{"eq":7},"source":{"host":"10.0.0.1"}}})"
            : R"({"grant":"deny" ,"capture":true,"icmp-off":[null],"qos-group":7})";
    for (std::size_t at = 0; at <= entry.size(); ++at) {
        for (unsigned byte = 0; byte < 256; byte += byte < 0x30 ? 1 : 0x0B) {
            std::string text = entry;
            expect_agreement(all, text.insert(at, 1, static_cast<char>(byte)));
        }
    }
}

TEST_P(BackendsAgree, OnTheExamples) {
    const Backends all = backends(GetParam());
    for (const char *name : {"border-filter", "management-plane", "qos-nexthop", "border-filter-um",
                             "management-plane-um", "qos-nexthop-um", "um-only"}) {
        std::ifstream file(std::string(ACECONV_EXAMPLES_DIRECTORY "/") + name + ".json");
        ASSERT_TRUE(file) << name;
        // Entries of the other schema are refused by both.
        for (std::string line; std::getline(file, line);) {
            line.resize(line.find_last_of('}') + 1);
            expect_agreement(all, line);
        }
    }
}

TEST_P(BackendsAgree, OnRareForms) {
    const Backends all = backends(GetParam());
    const std::vector<std::string> texts = {
        R"({})",
        R"({"sequence-number":0})",
        R"({"remark":"x","sequence-number":5})",
        R"({"remark":""})",
        R"({"remark":"a\"b\\c\/d\n\r\té\ud83d\ude00"})",
        R"({"remark":"\b\f"})",
        R"({"remark":"\u007f"})",
        R"({"rem\u0061rk":"x"})",
        R"({"rem\u0061rk":"x","remark":"y"})",
        R"({"\u0061ceconv-base:remark":"x","\u0040x":1})",
        R"({"rem\u0061rk\u0000":"x"})",
        R"({"rem\u0061rk\n":"x"})",
        R"({"rem\u006":"x"})",
        R"({"p\u0065rmit":{"udf-entries":{"ud\u0066":[{"udf-n\u0061me":"\ud800\udc00"}]}}})",
        R"({"remark":"\\ud83d\\ude00"})",
        R"({"aceconv-base:remark":"x"})",
        R"({"aceconv-um:remark":"x"})",
        R"({"remark":"a","remark":"b"})",
        R"({"remark":"a"} )",
        R"({"remark":"a"}x)",
        R"({"remark":"a"}{})",
        R"({"remark":"a",})",
        R"({"remark":7})",
        R"({"remark":["a"]})",
        R"({"tcp":{"tcp-bits":"ack syn"}})",
        R"({"tcp":{"tcp-bits":"syn ack"}})",
        R"({"tcp":{"tcp-bits":""}})",
        R"({"icmp-off":[null],"fragments":[null,null]})",
        R"({"icmp-off":[null]})",
        R"({"icmp-off":null})",
        R"({"capture":"true"})",
        R"({"qos-group":"5"})",
        R"({"qos-group":5.0})",
        R"({"qos-group":5e0})",
        R"({"grant":"permit","protocol":"6"})",
        R"({"protocol":"TCP"})",
        R"({"dscp":[]})",
        R"({"grant":"d\u0065ny","protocol":"tcp" })",
        R"({"grant":"deny\"","remark":"x"})",
        R"({"grant" : "deny" , "aceconv-base:dscp" : { "aceconv-base:dscp-min" : 7 } })",
        R"({"aceconv-base:gr\u0061nt":"deny"})",
        R"({"aceconv-base:":"deny"})",
        R"({"a name that is longer than any that the module has, and than what stands behind it":1})",
        R"({"source-network":{"source-address":"255.255.255.255","source-wild-card-bits":"0.0.0.0"}})",
        R"({"source-network":{"source-address":"256.0.0.1"}})",
        R"({"source-network":{"source-address":"1.2.3.4.5"}})",
        R"({"source-network":{"source-address":"1..3.4"}})",
        R"({"source-network":{"source-address":"1.2.3."}})",
        R"({"source-network":{"source-address":"1.2.3.00"}})",
        R"({"source-network":{"source-address":"4294967297.2.3.4"}})",
        R"({"source-network":{"source-address":"1.2.3.4 "}})",
        R"({"source-network":{"source-address":""}})",
        R"({"permit":{"udf-entries":{"udf":[]}}})",
        R"({"permit":{"udf-entries":{"udf":[{}]}}})",
        R"({"permit":{"udf-entries":{"udf":[1]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"a"},"b"]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-value":"1"}]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-value":"1","udf-name":"a"}]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"a"},{"udf-name":"a"}]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"a","udf-mask":"0xFf"},{"udf-name":"b"}]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"a","udf-mask":"0xFg"}]}}})",
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"éééééééééééééééé"}]}}})",
        R"({"permit":{"source":{"port":{"range":{}}}}})",
        R"({"permit":{"tcp-flags":{"match-all":{"tcp-bits":"+syn +syn"}}}})",
    };
    for (const bool told : {false, true}) {
        expect_agreement(all, texts, told);
    }
    // It may be told of texts and read others between them.
    all.bulk.reader->look_ahead(std::vector<std::string_view>(texts.begin(), texts.end()));
    for (const std::string &text : texts) {
        expect_agreement(all, text);
        expect_agreement(all, "{\"remark\":\"x\"}");
    }
}

INSTANTIATE_TEST_SUITE_P(Schemas, BackendsAgree, ::testing::Values(Schema::base, Schema::um),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace aceconv::testing
