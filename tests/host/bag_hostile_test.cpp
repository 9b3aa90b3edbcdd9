// Encodings that nobody should trust.

#include "bag_testing.h"

namespace bag_testing {
namespace {

using aceconv::BagStatus;

TEST(BagHostile, MapsAreRefused) {
    const struct {
        BagStatus status;
        const char *map;
        const char *why; // part of the text
    } cases[] = {
        // not a CBOR map, or not the end
        {BagStatus::malformed, "80", "expected a map"},
        {BagStatus::malformed, "A0 00", "1 bytes after the encoding"},
        {BagStatus::malformed, "BF FF", "indefinite"},
        {BagStatus::malformed, "1C", "not a CBOR item"},
        {BagStatus::malformed, "C1 A0", "a tag"},
        {BagStatus::truncated, "A1", "ends early"},
        {BagStatus::truncated, "A1 00", "ends early"},
        // keys
        {BagStatus::malformed, "A1 0A 01", "no member has this index"},
        {BagStatus::malformed, "A1 1BFFFFFFFFFFFFFFFF 01", "no member has this index"},
        {BagStatus::malformed, "A1 61 61 01", "expected a member's index"},
        {BagStatus::malformed, "A1 20 01", "negative"},
        {BagStatus::malformed, "A2 01 01 00 01", "out of order"},
        {BagStatus::malformed, "A2 00 01 00 01", "repeated"},
        {BagStatus::malformed, "A1 1800 01", "shortest"},
        // numbers
        {BagStatus::malformed, "A1 00 00", "member n8: an explicit zero"},
        {BagStatus::malformed, "A1 00 190100", "member n8: a number beyond the member's width"},
        {BagStatus::malformed, "A1 01 1A00010000", "beyond the member's width"},
        {BagStatus::malformed, "A1 02 1B0000000100000000", "beyond the member's width"},
        {BagStatus::malformed, "A1 00 1817", "shortest"},
        {BagStatus::malformed, "A1 03 1B00000000FFFFFFFF", "shortest"},
        {BagStatus::malformed, "A1 00 20", "negative"},
        {BagStatus::malformed, "A1 04 F5", "simple"},
        {BagStatus::malformed, "A1 02 F93C00", "float"},
        {BagStatus::malformed, "A1 00 61 31", "member n8: expected a number"},
        // strings
        {BagStatus::malformed, "A1 05 63 610062", "member text: a NUL inside a string"},
        {BagStatus::malformed, "A1 05 42 6162", "UTF-8"},
        {BagStatus::malformed, "A1 05 40", "UTF-8"},
        {BagStatus::malformed, "A1 05 61 FF", "UTF-8"},
        {BagStatus::malformed, "A1 05 62 C080", "UTF-8"},     // overlong
        {BagStatus::malformed, "A1 05 63 E08080", "UTF-8"},   // overlong
        {BagStatus::malformed, "A1 05 63 EDA080", "UTF-8"},   // surrogate
        {BagStatus::malformed, "A1 05 64 F4908080", "UTF-8"}, // beyond U+10FFFF
        {BagStatus::malformed, "A1 05 62 E282", "UTF-8"},     // cut off
        {BagStatus::malformed, "A1 05 7F 61 61 FF", "indefinite"},
        {BagStatus::malformed, "A1 05 7801 61", "shortest"},
        {BagStatus::malformed, "A1 05 01", "expected a string"},
        {BagStatus::truncated, "A1 05 62 61", "ends early"},
        // fixed arrays
        {BagStatus::malformed, "A1 06 40", "empty byte string"},
        {BagStatus::malformed, "A1 06 42 6100", "ends in a zero"},
        {BagStatus::malformed, "A1 06 61 61", "expected a byte string"},
        {BagStatus::too_large, "A1 06 45 6162636465", "more than 4 bytes"},
        // counted arrays and sub-records
        {BagStatus::malformed, "A1 07 80", "empty array"},
        {BagStatus::malformed, "A1 07 A0", "expected an array"},
        {BagStatus::malformed, "A1 07 81 01", "expected a map"},
        {BagStatus::malformed, "A1 07 82 A1 01 61 61 A1 00 00", "member a: an explicit zero"},
        {BagStatus::malformed, "A1 08 A0", "member inner: an empty sub-record"},
        {BagStatus::malformed, "A2 05 61 61 08 A1 02 01", "no member has this index"},
        // what is announced is not there
        {BagStatus::truncated, "BBFFFFFFFFFFFFFFFF 00 01", "ends early"},
        {BagStatus::truncated, "BA00010000 00 01", "ends early"},
        {BagStatus::truncated, "A2 00 00 01", "ends early"},     // before its first pair is read
        {BagStatus::truncated, "A1 07 991001 A0", "ends early"}, // before its limit is looked at
        {BagStatus::truncated, "A1 05 7BFFFFFFFFFFFFFFFF 61", "ends early"},
        {BagStatus::truncated, "A1 06 5B8000000000000000 61", "ends early"},
        {BagStatus::truncated, "A1 07 9BFFFFFFFFFFFFFFFF A0", "ends early"},
        {BagStatus::truncated, "A1 07 9A10000000 A0", "ends early"},
    };
    for (const auto &row : cases) {
        SCOPED_TRACE(row.map);
        EXPECT_EQ(probe<Small>(small, with_head(small, from_hex(row.map))), code(row.status));
        EXPECT_NE(aceconv::bag_last_error().find(row.why), std::string::npos)
            << aceconv::bag_last_error();
    }
    EXPECT_EQ(probe<Small>(small, with_head(small, from_hex("A2 00 01 01 00"))),
              code(BagStatus::malformed));
    EXPECT_EQ(aceconv::bag_last_error(), "byte 20, member n16: an explicit zero");
}

TEST(BagHostile, HeadsAreRefused) {
    const Bytes good = with_head(small, {0xA0});
    const auto changed = [&](std::size_t at, std::uint8_t byte) {
        Bytes bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    const struct {
        BagStatus status;
        Bytes bytes;
        const char *why; // the start of the text
    } cases[] = {
        {BagStatus::truncated, {}, "byte 0: the encoding ends early"},
        {BagStatus::malformed, {0x00}, "byte 0: expected an array of three"},
        {BagStatus::malformed, {0x82, 0x01, 0x02}, "byte 0: expected an array of three"},
        {BagStatus::malformed, from_hex("83 01 48 0000000000000000 A0"),
         "byte 1: expected the type's name"},
        {BagStatus::malformed, from_hex("83 61 73 61 74 A0"), "byte 3: expected a fingerprint"},
        {BagStatus::malformed, from_hex("83 65 736D616C6C 47 00000000000000 A0"),
         "byte 7: expected a fingerprint of 8 bytes"},
        {BagStatus::truncated, Bytes(good.begin(), good.end() - 1), "byte 7: the encoding ends"},
        {BagStatus::malformed, from_hex("83 7805 736D616C6C 48 0000000000000000 A0"),
         "byte 1: not in its shortest form"},
        {BagStatus::malformed, from_hex("9F 65 736D616C6C 48 0000000000000000 A0 FF"),
         "byte 0: a tag,"},
        {BagStatus::mismatch, changed(6, 'L'), "the encoding is of type smalL, fingerprint "},
        {BagStatus::mismatch, changed(9, good[9] ^ 1), "the encoding is of type small, finger"},
    };
    for (const auto &row : cases) {
        EXPECT_EQ(probe<Small>(small, row.bytes), code(row.status));
        EXPECT_EQ(aceconv::bag_last_error().find(row.why), 0U) << aceconv::bag_last_error();
    }
    EXPECT_EQ(probe<Small>(small, changed(2, 0x1B)), code(BagStatus::mismatch));
    EXPECT_NE(aceconv::bag_last_error().find("type ?mall,"),
              std::string::npos); // no control characters
    EXPECT_EQ(probe<Small>(small, with_head(ace, {0xA0})), code(BagStatus::mismatch));
    EXPECT_EQ(aceconv::bag_last_error(),
              "the encoding is of type ipv4_acl_config_ace, fingerprint " +
                  aceconv::bag_fingerprint(ace) + "; expected small, fingerprint " +
                  aceconv::bag_fingerprint(small));
    Bytes longest = from_hex("83 7841"); // 64 bytes of a name are shown, and 399 of a text
    longest.resize(longest.size() + 65, 'x');
    for (const std::uint8_t byte : from_hex("48 0000000000000000 A0")) {
        longest.push_back(byte);
    }
    EXPECT_EQ(probe<Small>(small, longest), code(BagStatus::mismatch));
    EXPECT_EQ(aceconv::bag_last_error().find(" " + std::string(64, 'x') + ", "), 23U);
}

// RecordsThatCannotBeStored has what is just allowed.
TEST(BagHostile, BeyondTheLimits) {
    const auto repeated = [](const char *start, std::size_t count, std::uint8_t byte) {
        Bytes bytes = with_head(small, from_hex(start));
        bytes.resize(bytes.size() + count, byte);
        return bytes;
    };
    const struct {
        Bytes bytes;
        const char *why;
    } cases[] = {
        {repeated("A1 05 7A00010001", 65537, 'x'),
         "byte 18, member text: a string of more than 65536 bytes"},
        {repeated("A1 07 991001", 4097, 0xA0), "byte 18, member list: more than 4096 elements"},
        {repeated("A0", 16 * 1024 * 1024, 0), "an encoding of more than 16777216 bytes"},
    };
    for (const auto &row : cases) {
        EXPECT_EQ(probe<Small>(small, row.bytes), code(BagStatus::too_large));
        EXPECT_EQ(aceconv::bag_last_error(), row.why);
    }
    EXPECT_EQ(probe<Small>(small, repeated("", 16 * 1024 * 1024 - 16, 0)),
              code(BagStatus::malformed));
}

TEST(BagHostile, PrefixesAndFlippedBits) {
    std::mt19937 random(7);
    for (int round = 0; round < 8; ++round) {
        ipv4_acl_config_ace record = random_ace(random);
        const Bytes bytes = encode(ace, &record);
        bag_free_indirections(&record, &ace);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            const auto end = bytes.begin() + static_cast<std::ptrdiff_t>(length);
            const Bytes prefix(bytes.begin(), end);
            ASSERT_EQ(probe<ipv4_acl_config_ace>(ace, prefix), code(BagStatus::truncated));
            ASSERT_EQ(aceconv::cbor_item_length(prefix), std::nullopt);
        }
        int accepted = 0;
        for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
            Bytes flipped = bytes;
            flipped[bit / 8] = static_cast<std::uint8_t>(flipped[bit / 8] ^ (1U << bit % 8));
            accepted += probe<ipv4_acl_config_ace>(ace, flipped) == 0 ? 1 : 0;
        }
        EXPECT_GT(accepted, 0); // values change, which no format can see
    }
}

TEST(BagHostile, ItemLengths) {
    const struct {
        const char *bytes;
        std::optional<std::size_t> length;
    } cases[] = {
        {"", std::nullopt},
        {"00", 1},
        {"82 65 6564676531 0A  83", 8}, // a label, and the next item
        {"82 F6 F6", 3},
        {"A1 01 82 02 41 03", 6},
        {"C1 00", 2},
        {"FB 0000000000000000", 9},
        {"C6 00", 2}, // no meaning yet
        {"DA00000100 A0", 6},
        {"82 F3 F820", 4},
        {"F81F", std::nullopt},
        {"9F 00 82 01 02 9F FF FF", 8}, // of indefinite length
        {"82 7F FF 00", 4},
        {"5F 41 01 40 FF", 5},
        {"BF 00 F6 FF 00", 4},
        {"5F 61 01 FF", std::nullopt},
        {"5F 5F FF FF", std::nullopt},
        {"BF 00 FF", std::nullopt},
        {"9F 82 01 FF", std::nullopt},
        {"9F C1 FF", std::nullopt},
        {"9F 00", std::nullopt},
        {"82 00", std::nullopt},
        {"A1 00", std::nullopt},
        {"C1", std::nullopt},
        {"FF", std::nullopt},
        {"1C", std::nullopt},
        {"9BFFFFFFFFFFFFFFFF 00", std::nullopt},
        {"82 9BFFFFFFFFFFFFFFFF 00", std::nullopt},
        {"BB8000000000000000 00", std::nullopt},
        {"5BFFFFFFFFFFFFFFFF 00", std::nullopt},
    };
    for (const auto &row : cases) {
        EXPECT_EQ(aceconv::cbor_item_length(from_hex(row.bytes)), row.length) << row.bytes;
    }
}

} // namespace
} // namespace bag_testing
