// Encodings byte by byte, and records that come back as they were.

#include <arpa/inet.h>
#include <thread>

#include "bag_testing.h"

namespace bag_testing {
namespace {

char *text(const char *content) {
    return strdup(content);
}

TEST(BagCodec, SmallRecordsByteByByte) {
    using Element = Small::List::Element;
    const struct {
        const char *name;
        void (*fill)(Small &);
        const char *map;
    } cases[] = {
        {"nothing set", [](Small &) {}, "A0"},
        {"one byte", [](Small &r) { r.n8 = 23; }, "A1 00 17"},
        {"head of one more byte", [](Small &r) { r.n8 = 24; }, "A1 00 1818"},
        {"two bytes", [](Small &r) { r.n16 = 0x0100; }, "A1 01 190100"},
        {"four bytes", [](Small &r) { r.n32 = 0x80000000; }, "A1 02 1A80000000"},
        {"eight bytes", [](Small &r) { r.n64 = UINT64_MAX; }, "A1 03 1BFFFFFFFFFFFFFFFF"},
        {"a small number in a wide member", [](Small &r) { r.n64 = 1; }, "A1 03 01"},
        {"a boolean keeps its number", [](Small &r) { r.flag = 2; }, "A1 04 02"},
        {"text", [](Small &r) { r.text = text("h\xC3\xA9"); }, "A1 05 63 68C3A9"},
        {"three bytes a character", [](Small &r) { r.text = text("\u0800\uD7FF\uE000\uFFFF"); },
         "A1 05 6C E0A080 ED9FBF EE8080 EFBFBF"},
        {"four bytes a character", [](Small &r) { r.text = text("\U00010000\U0010FFFF"); },
         "A1 05 68 F0908080 F48FBFBF"},
        {"an empty string is not a missing one", [](Small &r) { r.text = text(""); }, "A1 05 60"},
        {"not UTF-8", [](Small &r) { r.text = text("\xC3"); }, "A1 05 41 C3"},
        {"fixed", [](Small &r) { std::memcpy(r.fixed, "ab", 2); }, "A1 06 42 6162"},
        {"fixed with a zero inside", [](Small &r) { r.fixed[3] = 'z'; }, "A1 06 44 0000007A"},
        {"elements, one of them empty",
         [](Small &r) {
             r.list = {2, static_cast<Element *>(std::calloc(2, sizeof(Element)))};
             r.list.elements[1] = {7, text("x")};
         },
         "A1 07 82 A0 A2 00 07 01 61 78"},
        {"a block without elements",
         [](Small &r) {
             r.list = {0, static_cast<Element *>(std::malloc(sizeof(Element)))};
         },
         "A0"},
        {"sub-record",
         [](Small &r) {
             r.inner = {9, nullptr};
         },
         "A1 08 A1 00 09"},
        {"keys ascend",
         [](Small &r) {
             r.last = 1;
             r.inner.y = text("y");
             r.n8 = 2;
         },
         "A3 00 02 08 A1 01 61 79 09 01"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        Small record{};
        row.fill(record);
        const Bytes bytes = encode(small, &record);
        EXPECT_EQ(bytes, with_head(small, from_hex(row.map)));
        EXPECT_EQ(aceconv::cbor_item_length(bytes), bytes.size());
        EXPECT_EQ(probe<Small>(small, bytes), 0U);
        bag_free_indirections(&record, &small);
    }
}

TEST(BagCodec, StoredAccessListEntry) {
    // permit tcp any host 192.0.2.1 eq 80, written out; it has to stay readable.
    ipv4_acl_config_ace record{};
    record.ConfigurationMask = 0x683;
    record.grant = 1;
    record.protocol = 6;
    record.daddr = inet_addr("192.0.2.1");
    record.dopr = 1;
    record.dport1 = 80;
    const Bytes stored = from_hex("83 73 697076345F61636C5F636F6E6669675F616365"
                                  "48 A084FAAB7D4CB32C"
                                  "A6 00 190683 02 01 04 06 09 1AC0000201 0F 01 10 1850");
    EXPECT_EQ(encode(ace, &record), stored);
    EXPECT_EQ(probe<ipv4_acl_config_ace>(ace, stored), 0U);
}

TEST(BagCodec, RandomEntriesComeBack) {
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        ipv4_acl_config_ace record = random_ace(random);
        ipv4_acl_config_ace copy;
        std::memset(&copy, 0xA5, sizeof copy);
        const Bytes bytes = encode(ace, &record);
        ASSERT_EQ(decode(ace, bytes, &copy), 0U) << aceconv::bag_last_error();
        ASSERT_EQ(encode(ace, &copy), bytes);
        char **const strings = &record.vrf1;
        char **const copied = &copy.vrf1;
        for (int i = 0; i < 13; ++i) {
            ASSERT_EQ(strings[i] == nullptr, copied[i] == nullptr);
            if (strings[i] != nullptr) {
                ASSERT_STREQ(strings[i], copied[i]);
            }
        }
        ASSERT_EQ(record.UDF.count, copy.UDF.count);
        if (record.UDF.count != 0) {
            ASSERT_EQ(std::memcmp(record.UDF.elements, copy.UDF.elements,
                                  record.UDF.count * sizeof(ace_udf_element)),
                      0);
        }
        bag_free_indirections(&record, &ace);
        bag_free_indirections(&copy, &ace);
        // Pointers are null by now; everything else, padding included, is equal.
        ASSERT_EQ(std::memcmp(&record, &copy, sizeof copy), 0);
    }
}

TEST(BagCodec, RecordsThatCannotBeStored) {
    using aceconv::BagStatus;
    const std::string longest(65536, 'x');
    Small::List::Element element{};
    const struct {
        const char *why;
        BagStatus status;
        Small record;
    } cases[] = {
        {"member text: a string of more than 65536 bytes",
         BagStatus::too_large,
         {.text = text((longest + "x").c_str())}},
        {"member fixed: no NUL at the end of 5 bytes",
         BagStatus::too_large,
         {.fixed = {'a', 'b', 'c', 'd', 'e'}}},
        {"member list: 4097 elements, at most 4096",
         BagStatus::too_large,
         {.list = {4097, &element}}},
        {"member list: 1 elements, but no block holds them",
         BagStatus::malformed,
         {.list = {1, nullptr}}},
    };
    for (const auto &row : cases) {
        std::uint32_t status = 0;
        EXPECT_TRUE(encode(small, &row.record, &status).empty());
        EXPECT_EQ(status, code(row.status));
        EXPECT_EQ(aceconv::bag_last_error(), row.why);
        std::free(row.record.text);
    }
    Small largest{.text = text(longest.c_str()), .fixed = {'a', 'b', 'c', 'd'}};
    largest.list = {
        4096, static_cast<Small::List::Element *>(std::calloc(4096, sizeof(Small::List::Element)))};
    EXPECT_EQ(probe<Small>(small, encode(small, &largest)), 0U);
    bag_free_indirections(&largest, &small);
}

TEST(BagCodec, LongestEncoding) {
    constexpr std::size_t most = 16 * 1024 * 1024;
    std::string name(60000, 'n');
    std::string last(1000, 'l');
    std::vector<Small::List::Element> elements(280, {0, name.data()});
    const Small record{.list = {280, elements.data()}};
    elements.back().name = last.data();
    last.resize(last.size() + most - encode(small, &record).size(), 'l');
    elements.back().name = last.data();
    EXPECT_EQ(probe<Small>(small, encode(small, &record)), 0U);
    last += 'l';
    elements.back().name = last.data();
    for (const std::uint32_t count : {280U, 400U}) { // seen at the end, and before the next item
        elements.resize(count, {0, name.data()});
        const Small larger{.list = {count, elements.data()}};
        std::uint32_t status = 0;
        EXPECT_TRUE(encode(small, &larger, &status).empty());
        EXPECT_EQ(status, code(aceconv::BagStatus::too_large));
        EXPECT_EQ(aceconv::bag_last_error(), "an encoding of more than 16777216 bytes");
    }
}

TEST(BagCodec, ReleaseTolerates) {
    Small record{};
    record.list.count = 3; // counted, then not allocated
    bag_free_indirections(&record, &small);
    record.text = text("t");
    record.inner.y = text("y");
    bag_free_indirections(&record, &small);
    EXPECT_EQ(record.text, nullptr);
    EXPECT_EQ(record.inner.y, nullptr);
    bag_free_indirections(&record, &small);
    bag_descriptor unknown = small; // not registered: still released
    record.text = text("t");
    bag_free_indirections(&record, &unknown);
    EXPECT_EQ(record.text, nullptr);
}

TEST(BagCodec, BagDecodeLooksTheTypeUp) {
    const Bytes bytes = with_head(small, from_hex("A1 00 07"));
    static_cast<void>(definition_of(small));
    Small record{};
    const auto length = static_cast<std::uint32_t>(bytes.size());
    EXPECT_EQ(bag_decode(bytes.data(), length, &record, &small), 0U);
    EXPECT_EQ(record.n8, 7);
    const bag_descriptor unknown = small;
    EXPECT_EQ(bag_decode(bytes.data(), length, &record, &unknown),
              code(aceconv::BagStatus::not_registered));
    EXPECT_EQ(aceconv::bag_last_error(), "the type is not registered");
}

TEST(BagCodec, ThreadsConvertAtOnce) {
    static_cast<void>(definition_of(ace));
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; ++seed) {
        threads.emplace_back([seed] {
            std::mt19937 random(seed);
            for (int round = 0; round < 200; ++round) {
                ipv4_acl_config_ace record = random_ace(random);
                Bytes bytes = encode(ace, &record);
                bag_free_indirections(&record, &ace);
                EXPECT_EQ(probe<ipv4_acl_config_ace>(ace, bytes), 0U);
                bytes.pop_back();
                EXPECT_EQ(probe<ipv4_acl_config_ace>(ace, bytes),
                          code(aceconv::BagStatus::truncated));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace bag_testing
