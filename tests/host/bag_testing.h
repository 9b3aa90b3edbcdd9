// Two descriptors, the plug-in's and a small one, and what the bag tests share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "aceconv/plugin.h"
#include "host/bag_library.h"

namespace bag_testing {

using Bytes = std::vector<std::uint8_t>;

inline const bag_descriptor &ace = ipv4_acl_config_ace_bag;

/// Every kind of member, an array of elements that own strings, a sub-record
/// that owns one.
struct Small {
    std::uint8_t n8{};
    std::uint16_t n16{};
    std::uint32_t n32{};
    std::uint64_t n64{};
    std::uint32_t flag{};
    char *text{};
    char fixed[5]{};
    struct List {
        std::uint32_t count;
        struct Element {
            std::uint8_t a;
            char *name;
        } * elements;
    } list{};
    struct Inner {
        std::uint32_t x;
        char *y;
    } inner{};
    std::uint8_t last{};
};
inline constexpr std::uint64_t small_offsets[] = {0, 2, 4, 8, 16, 24, 32, 40, 48, 56, 72};
inline constexpr std::uint64_t pair_offsets[] = {0, 8};
inline constexpr bag_layout small_layouts[] = {
    {2, sizeof(Small), small_offsets}, {3, 16, pair_offsets}, {2, 16, pair_offsets}};
inline const bag_descriptor small = {
    1,
    "small",
    5,
    1,
    "test",
    small_layouts,
    "$1={n8}C{n16}I{n32}D{n64}H{flag}b{text}s{fixed}5x{list}a($2){inner}$3{last}C;"
    "$2={a}C{name}s;$3={x}D{y}s;",
    "$1=CIDHbs5xa($2)$3.C;$2=Cs;$3=Ds;"};

inline std::uint32_t code(aceconv::BagStatus status) {
    return static_cast<std::uint32_t>(status);
}

inline bag_definition *definition_of(const bag_descriptor &descriptor) {
    bag_definition *definition = nullptr;
    if (bag_definition_init(&descriptor, &definition) != 0) {
        EXPECT_EQ(bag_register_start(), 0U);
        EXPECT_EQ(bag_register(&descriptor), 0U) << aceconv::bag_last_error();
        EXPECT_EQ(bag_register_end(), 0U);
        EXPECT_EQ(bag_definition_init(&descriptor, &definition), 0U);
    }
    return definition;
}

/// The encoding; empty, with the status in `status`, when it is refused.
inline Bytes encode(const bag_descriptor &descriptor, const void *record,
                    std::uint32_t *status = nullptr) {
    std::uint8_t *encoded = nullptr;
    std::uint32_t length = 0;
    const std::uint32_t result =
        bag_encode_v3(&encoded, &length, record, definition_of(descriptor), 1);
    EXPECT_EQ(result == 0, encoded != nullptr);
    EXPECT_TRUE(status != nullptr || result == 0) << aceconv::bag_last_error();
    if (status != nullptr) {
        *status = result;
    }
    const Bytes bytes(encoded, encoded + length);
    std::free(encoded);
    return bytes;
}

inline std::uint32_t decode(const bag_descriptor &descriptor, const Bytes &bytes, void *record) {
    // A block of exactly this size, so that reads beyond it are seen.
    auto *const block = static_cast<std::uint8_t *>(std::malloc(bytes.size() + 1));
    auto *const start = block + 1;
    std::copy(bytes.begin(), bytes.end(), start);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    const std::uint32_t status = bag_decode_v3(start, length, record, definition_of(descriptor), 0);
    std::free(block);
    return status;
}

/// Decodes into a record of rubbish. What is accepted has to encode to the same
/// bytes, what is refused has to leave zeros and a reason.
template <typename Record>
std::uint32_t probe(const bag_descriptor &descriptor, const Bytes &bytes) {
    Record record;
    std::memset(static_cast<void *>(&record), 0xA5, sizeof record);
    const std::uint32_t status = decode(descriptor, bytes, &record);
    EXPECT_EQ(aceconv::bag_last_error().empty(), status == 0);
    if (status == 0) {
        EXPECT_EQ(encode(descriptor, &record), bytes);
        bag_free_indirections(&record, &descriptor);
    } else {
        const Record zero{};
        EXPECT_EQ(std::memcmp(&record, &zero, sizeof record), 0);
    }
    return status;
}

inline Bytes from_hex(std::string_view text) {
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += text[i] == ' ' ? 1 : 2) {
        if (text[i] != ' ') {
            bytes.push_back(
                static_cast<std::uint8_t>(std::stoul(std::string(text.substr(i, 2)), nullptr, 16)));
        }
    }
    return bytes;
}

/// What encodings of `descriptor` start with, stated independently; `map` follows.
inline Bytes with_head(const bag_descriptor &descriptor, const Bytes &map) {
    const std::string name = descriptor.type_name;
    Bytes bytes{0x83, static_cast<std::uint8_t>(0x60 + name.size())};
    std::copy(name.begin(), name.end(), std::back_inserter(bytes));
    const Bytes digest = from_hex("48" + aceconv::bag_fingerprint(descriptor));
    std::copy(digest.begin(), digest.end(), std::back_inserter(bytes));
    std::copy(map.begin(), map.end(), std::back_inserter(bytes));
    return bytes;
}

/// A record that owns random blocks; about half of its members are set.
inline ipv4_acl_config_ace random_ace(std::mt19937 &random) {
    static const char *const texts[] = {"", "permit-all", "caf\xC3\xA9", "\xFF\xFE raw",
                                        "a name of more than twenty-three bytes"};
    static const auto members = aceconv::bag_members(ace);
    const auto below = [&](std::uint32_t bound) {
        return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(random);
    };
    ipv4_acl_config_ace record{};
    for (const aceconv::BagMember &member : members) {
        auto *const field = reinterpret_cast<std::uint8_t *>(&record) + member.offset;
        if (below(2) == 0) {
            continue;
        }
        if (member.type == "s") {
            char *const text = strdup(texts[below(5)]);
            std::memcpy(field, &text, sizeof text);
        } else if (member.type == "a($12)") {
            record.UDF.count = 1 + below(8);
            record.UDF.elements = static_cast<ace_udf_element *>(
                std::calloc(record.UDF.count, sizeof(ace_udf_element)));
            for (std::uint32_t i = 0; i < record.UDF.count; ++i) {
                const std::uint32_t start = below(17); // zeros in front count
                std::memset(record.UDF.elements[i].UDFName + start, 'u', below(17 - start));
                record.UDF.elements[i].UDFValue = below(3);
                record.UDF.elements[i].UDFMask = below(UINT32_MAX);
            }
        } else {
            const std::size_t bytes = 1 + below(static_cast<std::uint32_t>(member.width));
            for (std::size_t i = 0; i < bytes; ++i) {
                field[i] = static_cast<std::uint8_t>(below(256));
            }
        }
    }
    return record;
}

} // namespace bag_testing
