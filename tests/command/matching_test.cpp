// What `diff --by content` matches entries by: their meanings, and the longest common
// subsequence of these, against plain definitions of both.
#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>

#include "compare/common_subsequence.h"
#include "compare/losses.h"
#include "compare/meanings.h"
#include "host/plugin_loader.h"
#include "testing/generator/rule.h"

namespace aceconv {
namespace {

using Numbers = std::vector<std::uint32_t>;

std::size_t longest_by_table(const Numbers &a, const Numbers &b) {
    std::vector<std::size_t> above(b.size() + 1);
    for (const std::uint32_t element : a) {
        std::vector<std::size_t> row(1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            row.push_back(element == b[j] ? above[j] + 1 : std::max(row[j], above[j + 1]));
        }
        above = row;
    }
    return above.back();
}

/// Its length; it has to be common to both, and in order.
std::size_t length_of(const std::vector<Matched> &matched, const Numbers &a, const Numbers &b) {
    for (std::size_t i = 0; i < matched.size(); ++i) {
        EXPECT_EQ(a.at(matched[i].a), b.at(matched[i].b));
        EXPECT_TRUE(i == 0 || (matched[i - 1].a < matched[i].a && matched[i - 1].b < matched[i].b));
    }
    return matched.size();
}

TEST(CommonSubsequence, Table) {
    const struct {
        Numbers a, b;
        std::vector<Matched> matched;
    } rows[] = {
        {{}, {}, {}},
        {{1}, {}, {}},
        {{1, 2}, {1, 2}, {{0, 0}, {1, 1}}},
        {{1, 3}, {1, 2, 3}, {{0, 0}, {1, 2}}},
        {{1, 2, 3, 4}, {1, 4}, {{0, 0}, {3, 1}}},
        {{1, 2, 3, 4}, {2, 3, 4, 1}, {{1, 0}, {2, 1}, {3, 2}}},
        {{1, 2}, {3, 4}, {}},
        {{7, 1, 7, 2, 7}, {7, 1, 7, 3, 7, 2, 7}, {{0, 0}, {1, 1}, {2, 2}, {3, 5}, {4, 6}}},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(common_subsequence(row.a, row.b), row.matched);
    }
}

TEST(CommonSubsequence, IsTheLongestOrCutShort) {
    bench::Random random(1);
    for (int round = 0; round < 500; ++round) {
        const std::uint32_t kinds = random.between(1, 40);
        Numbers a(random.below(40));
        Numbers b(random.below(40));
        for (Numbers *numbers : {&a, &b}) {
            for (std::uint32_t &number : *numbers) {
                number = random.below(kinds);
            }
        }
        if (random.percent(50)) { // one edited into the other
            b = a;
            b.insert(b.begin() + random.below(static_cast<std::uint32_t>(b.size()) + 1), 41);
            std::swap(b.front(), b[random.below(static_cast<std::uint32_t>(b.size()))]);
        }
        const std::size_t longest = longest_by_table(a, b);
        EXPECT_EQ(length_of(common_subsequence(a, b), a, b), longest);
        EXPECT_LE(length_of(common_subsequence(a, b, random.below(100)), a, b), longest);
    }
}

/// Lists of 100,000 entries, which a quadratic search would take minutes for.
TEST(CommonSubsequence, LongAndUnlike) {
    constexpr std::uint32_t count = 100'000;
    Numbers a(count);
    std::iota(a.begin(), a.end(), 0U);
    Numbers b(a.rbegin(), a.rend());
    EXPECT_EQ(length_of(common_subsequence(a, b), a, b), 1U);
    for (std::uint32_t &number : b) {
        number += count;
    }
    EXPECT_EQ(length_of(common_subsequence(a, b), a, b), 0U);
    bench::Random random(2);
    for (std::uint32_t i = 0; i < count; ++i) { // a thousand different ones each, and not the first
        a[i] = random.below(1000);
        b[i] = i == 0 ? 1000 : a[i - 1];
    }
    b.back() = 1001;
    EXPECT_EQ(length_of(common_subsequence(a, b), a, b), count - 2);
    std::sort(b.begin(), b.end()); // too many pairs to look at all of them
    EXPECT_GE(length_of(common_subsequence(a, b), a, b), 1U);
}

TEST(Meanings, AreTheSameWhereNothingDiffers) {
    const Plugin plugin = load_plugin(ACECONV_PLUGIN);
    const RecordView view(*plugin.descriptor);
    Meanings meanings(*plugin.descriptor);
    struct Made {
        Schema schema;
        Bytes encoding;
        Meanings::Numbers numbers;
    };
    std::vector<Made> all;
    bench::Random random(3);
    char ten[] = "10";
    char other[] = "010";
    for (int i = 0; i < 120; ++i) {
        ipv4_acl_config_ace record{};
        const std::uint32_t what = random.below(4);
        if (what == 0) { // kinds of fragments
            record.ConfigurationMask = std::uint64_t{1} << 60;
            record.FragmentFlags = static_cast<std::uint8_t>(random.below(20));
        } else if (what == 1) { // every protocol
            record.ConfigurationMask = 2 | (random.percent(30) ? std::uint64_t{1} << 53 : 0);
            record.protocol = static_cast<std::uint16_t>(512 * random.below(2) + random.below(2));
            record.proto_oper = static_cast<std::uint8_t>(random.below(2) * 5);
        } else if (what == 2) { // bits that repeat others
            for (const int bit : {34, 35, 40, 41, 42, 43}) {
                record.ConfigurationMask |= std::uint64_t{random.below(2)} << bit;
            }
        } else {
            record.ConfigurationMask = std::uint64_t{random.below(2)} << 52;
            record.SequenceStr = random.percent(50) ? ten : other;
        }
        const Schema schema = random.percent(50) ? Schema::base : Schema::um;
        const Bytes encoding = encode_record(*plugin.descriptor, record);
        all.push_back({schema, encoding, meanings.add(schema, encoding, 11)});
        EXPECT_EQ(meanings.schema(all.back().numbers.encoding), schema);
        const Encoding kept = meanings.encoding(all.back().numbers.encoding);
        EXPECT_EQ(Bytes(kept.begin(), kept.end()), encoding);
        const bool silent =
            meanings.add(schema, encoding, 10).meaning != all.back().numbers.meaning;
        EXPECT_EQ(silent, record.SequenceStr == ten); // no more than the entry's number
    }
    for (const Made &a : all) {
        for (const Made &b : all) {
            EXPECT_EQ(
                a.numbers.meaning == b.numbers.meaning,
                differences(view, *plugin.descriptor, a.encoding, a.schema, b.encoding, b.schema)
                    .empty());
        }
    }
}

} // namespace
} // namespace aceconv
