// The quick answer that nothing is lost, against the slow one leaf by leaf.
#include <gtest/gtest.h>

#include "compare/leaves.h"
#include "host/plugin_loader.h"
#include "testing/generator/rule.h"
#include "tests/print_schema.h"

namespace aceconv {
namespace {

class Losses : public ::testing::TestWithParam<Schema> {
  protected:
    Bytes encode(const std::string &text) {
        Entry entry{.schema = GetParam(), .format = Format::json, .text = text};
        const Encoding encoding = codec_.encode(entry);
        return {encoding.begin(), encoding.end()};
    }

    bool slow(const std::string &text, Encoding encoding) {
        std::string kept;
        codec_.decode(encoding, GetParam(), Format::json, {}, kept);
        return lost_leaves(leaves_of(text, Format::json), leaves_of(kept, Format::json), GetParam())
            .empty();
    }

    /// The quick answer, which must not be yes where the slow one is no.
    bool quick(const std::string &text, Encoding encoding) {
        (void)encode(text);
        const bool nothing_lost = codec_.gives_back(encoding, GetParam(), {});
        EXPECT_TRUE(!nothing_lost || slow(text, encoding)) << text;
        return nothing_lost;
    }

    Codec codec_{{load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk}};
};

TEST_P(Losses, AreNeverOverlooked) {
    constexpr std::uint32_t count = 1000;
    bench::Random random(3);
    std::uint32_t kept = 0;
    std::uint32_t lost = 0;
    for (std::uint32_t i = 1; i <= count; ++i) {
        std::string text;
        const bench::Rule rule = bench::random_rule(random, i);
        (GetParam() == Schema::um ? bench::append_um : bench::append_base)(text, rule);
        kept += quick(text, encode(text)) ? 1U : 0U;
        for (int mutant = 0; mutant < 3; ++mutant) { // another entry that is almost the same
            std::string other = text;
            other[random.below(static_cast<std::uint32_t>(text.size()))] =
                static_cast<char>('0' + random.below(10));
            try {
                lost += quick(text, encode(other)) ? 0U : 1U;
            } catch (const DataError &) { // no entry
            }
        }
    }
    EXPECT_GT(kept, count * 9 / 10);
    EXPECT_GT(lost, count / 4);
}

TEST_P(Losses, OfNodesTheConverterPassesOver) {
    const char *const entries[] = {R"({"permit":{},"deny":{}})",
                                   R"({"permit":{"source":{"port":{"eq":80,"gt":90}}}})",
                                   R"({"deny":{"nexthop2":{"vrf":"v"}}})"};
    for (const std::string text : entries) {
        if (GetParam() == Schema::um) {
            EXPECT_FALSE(quick(text, encode(text))) << text;
        }
    }
    EXPECT_TRUE(quick(R"({"sequence-number":5})", encode("{}")));
}

INSTANTIATE_TEST_SUITE_P(Schemas, Losses, ::testing::Values(Schema::base, Schema::um),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace aceconv
