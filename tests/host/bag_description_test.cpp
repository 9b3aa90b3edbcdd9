// Descriptions, layouts and their registration.

#include <numeric>

#include "bag_testing.h"
#include "host/error.h"

namespace bag_testing {
namespace {

using aceconv::BagStatus;

/// A descriptor of one or two types.
struct Described {
    std::string long_text, short_text;
    std::uint64_t rows, size;
    std::vector<std::uint64_t> offsets;
    std::uint64_t inner_tag = 2, inner_size = 4;
    std::vector<std::uint64_t> inner_offsets = {0, 2};
};

TEST(BagDescription, AcceptedAndRefused) {
    const auto members = [](int count, const char *name) { // of one type
        std::string text = "$1=";
        for (int i = 0; i < count; ++i) {
            text += (*name == '\0' ? "" : name + std::to_string(i) + "}") + "C";
        }
        return text + ";";
    };
    const auto types = [](int count, const char *name) {
        std::string text;
        for (int i = 1; i <= count; ++i) {
            text += "$" + std::to_string(i) + "=" + name + "C;";
        }
        return text;
    };
    std::vector<std::uint64_t> each(256);
    std::iota(each.begin(), each.end(), 0);
    const struct {
        const char *why; // empty when it is accepted
        Described described;
    } cases[] = {
        {"", {"$1={a}C{b}I;", "$1=CI;", 0, 4, {0, 2}}},
        {"", {"$1={a}C{b}$2;$2={c}C{d}I;", "$1=C$2.;$2=CI;", 1, 6, {0, 2}}},
        {"", {"$1={a}$2{b}3x;$2={c}C{d}I;", "$1=$2.3x;$2=CI;", 1, 8, {0, 4}}},
        {"", {"$1={a}a($2){b}[u]e;$2={c}C{d}I;", "$1=a($2)e;$2=CI;", 1, 24, {0, 8, 16}}},
        // grammar
        {"long description, character 0: expected \"$\"", {"", "$1=C;", 0, 1, {0}}},
        {"long description, character 1: expected a number", {"$={a}C;", "$1=C;", 0, 1, {0}}},
        {"expected a number from 1 to 65535", {"$70000={a}C;", "$1=C;", 0, 1, {0}}},
        {"character 4: expected a name", {"$1={}C;", "$1=C;", 0, 1, {0}}},
        {"character 6: expected a type", {"$1={a}Z;", "$1=Z;", 0, 1, {0}}},
        {"character 7: expected \"{\"", {"$1={a}C", "$1=C;", 0, 1, {0}}},
        {"expected \"{\"", {"$1=;", "$1=;", 0, 0, {0}}},
        {"expected \"x\"", {"$1={a}17;", "$1=17x;", 0, 17, {0}}},
        {"expected a number", {"$1={a}0x;", "$1=0x;", 0, 1, {0}}},
        {"expected \"e\"", {"$1={a}[u]D;", "$1=D;", 0, 4, {0}}},
        {"expected \")\"", {"$1={a}a($2;$2={c}C{d}I;", "$1=a($2);$2=CI;", 1, 16, {0, 8}}},
        {"short description, character 3", {"$1={a}[u]e;", "$1=[u]e;", 0, 4, {0}}},
        // the descriptions together
        {"long and short description differ", {"$1={a}C;", "$1=I;", 0, 1, {0}}},
        {"differ", {"$1={a}C;", "$1=CC;", 0, 1, {0}}},
        {"differ", {"$1={a}C;", "$2=C;", 0, 1, {0}}},
        {"differ", {"$1={a}4x;", "$1=5x;", 0, 4, {0}}},
        {"type $1 has two members \"a\"", {"$1={a}C{a}C;", "$1=CC;", 0, 2, {0, 1}}},
        {"type $1 is defined twice", {"$1={a}C;$1={a}C;", "$1=C;$1=C;", 1, 1, {0}, 1}},
        {"member a: type $1 is not defined after its use", {"$1={a}$1;", "$1=$1;", 0, 4, {0}}},
        {"type $1 is not defined after its use",
         {"$1={a}$2;$2={c}a($1){d}C;", "$1=$2;$2=a($1)C;", 1, 24, {0}}},
        {"", {members(256, "{m"), members(256, ""), 0, 256, each}},
        {"type $1 has more than 256 members", {members(257, "{m"), members(257, ""), 0, 257, each}},
        {"the description has 15", {types(16, "{a}"), types(16, ""), 0, 1, each}},
        {"more than 16 types", {types(17, "{a}"), types(17, ""), 0, 1, each}},
        // the layout
        {"the layout announces 1 sub-records, the description has 0",
         {"$1={a}C;", "$1=C;", 1, 1, {0}}},
        {"type $2 has no layout row", {"$1={a}$2;$2={c}C{d}I;", "$1=$2;$2=CI;", 1, 4, {0}, 3}},
        {"type $2: size 8, expected 4", {"$1={a}$2;$2={c}C{d}I;", "$1=$2;$2=CI;", 1, 4, {0}, 2, 8}},
        {"member d: offset 1, expected 2",
         {"$1={a}$2;$2={c}C{d}I;", "$1=$2;$2=CI;", 1, 4, {0}, 2, 4, {0, 1}}},
        {"type $1: size 3, expected 4", {"$1={a}C{b}I;", "$1=CI;", 0, 3, {0, 2}}},
        {"a layout row has no offsets", {"$1={a}C;", "$1=C;", 0, 1, {}}},
        {"member b: offset 4, expected 2", {"$1={a}C{b}I;", "$1=CI;", 0, 6, {0, 4}}},
        {"member a: offset 16, expected 8",
         {"$1={a}a($2){b}C;$2={c}C{d}I;", "$1=a($2)C;$2=CI;", 1, 24, {0, 16}}},
        {"", {"$1={a}65535x{b}1x;", "$1=65535x1x;", 0, 65536, {0, 65535}}},
        {"type $1 is too large", {"$1={a}65535x{b}2x;", "$1=65535x2x;", 0, 65537, {0, 65535}}},
        {"type $2 has two members \"c\"", {"$1={a}$2;$2={c}C{c}I;", "$1=$2;$2=CI;", 1, 4, {0}}},
    };
    for (const auto &row : cases) {
        const Described &described = row.described;
        SCOPED_TRACE(described.long_text.substr(0, 80));
        const bag_layout layouts[] = {
            {described.rows, described.size, described.offsets.data()},
            {described.inner_tag, described.inner_size, described.inner_offsets.data()}};
        const bag_descriptor descriptor = {1,
                                           "t",
                                           5,
                                           1,
                                           "test",
                                           layouts,
                                           described.long_text.c_str(),
                                           described.short_text.c_str()};
        ASSERT_EQ(bag_register_start(), 0U);
        const std::uint32_t status = bag_register(&descriptor);
        const std::string why = aceconv::bag_last_error();
        EXPECT_EQ(bag_register_abort(), 0U);
        if (*row.why == '\0') {
            EXPECT_EQ(status, 0U) << why;
            continue;
        }
        EXPECT_EQ(status, code(BagStatus::bad_description));
        EXPECT_NE(why.find(row.why), std::string::npos) << why;
        EXPECT_THROW(static_cast<void>(aceconv::bag_members(descriptor)), aceconv::DataError);
    }
}

TEST(BagDescription, IncompleteDescriptors) {
    const std::string lacks = ": the descriptor lacks its type name, layout or a description";
    EXPECT_EQ(bag_register_start(), 0U);
    for (void (*const damage)(bag_descriptor &) : {
             +[](bag_descriptor &d) { d.type_name = nullptr; },
             +[](bag_descriptor &d) { d.type_name = ""; },
             +[](bag_descriptor &d) { d.type_name = "\xFF"; },
             +[](bag_descriptor &d) { d.layouts = nullptr; },
             +[](bag_descriptor &d) { d.long_description = nullptr; },
             +[](bag_descriptor &d) { d.short_description = nullptr; },
         }) {
        bag_descriptor descriptor = small;
        damage(descriptor);
        EXPECT_THROW(static_cast<void>(aceconv::bag_fingerprint(descriptor)), aceconv::DataError);
        EXPECT_EQ(bag_register(&descriptor), code(BagStatus::bad_description));
        const char *name = descriptor.type_name;
        EXPECT_EQ(aceconv::bag_last_error(),
                  "type " + (name == nullptr   ? "without a name" + lacks
                             : *name == '\xFF' ? "?: the type's name is not UTF-8"
                                               : name + lacks));
    }
    EXPECT_EQ(bag_register(nullptr), code(BagStatus::bad_description));
    EXPECT_EQ(aceconv::bag_last_error(), "no descriptor");
    EXPECT_EQ(bag_register_abort(), 0U);
}

TEST(BagDescription, MembersOfAnAccessListEntry) {
    const auto members = aceconv::bag_members(ace);
    ASSERT_EQ(members.size(), 68U); // 65, with the four of Police instead of the one
    const struct {
        std::size_t index;
        aceconv::BagMember member;
    } cases[] = {{0, {"ConfigurationMask", "H", 0, 8}},
                 {19, {"capture", "b", 64, 4}},
                 {54, {"remark", "s", 200, 8}},
                 {59, {"UDF", "a($12)", 224, 16}},
                 {63, {"Police.PoliceUnit", "[bag_acl_rate_unit]e", 248, 4}},
                 {67, {"icmp_on", "C", 261, 1}}};
    for (const auto &row : cases) {
        const aceconv::BagMember &member = members[row.index];
        EXPECT_EQ(std::tie(member.name, member.type, member.offset, member.width),
                  std::tie(row.member.name, row.member.type, row.member.offset, row.member.width));
    }
}

TEST(BagRegistry, IsATransaction) {
    const std::uint32_t closed = code(BagStatus::not_registered);
    for (const std::uint32_t status :
         {bag_register(&small), bag_register_abort(), bag_register_end()}) {
        EXPECT_EQ(status, closed);
        EXPECT_EQ(aceconv::bag_last_error(), "no registration is open");
    }

    static bag_descriptor descriptor = small; // an address of its own
    bag_definition *definition = nullptr;
    EXPECT_EQ(bag_register_start(), 0U);
    EXPECT_EQ(bag_register_start(), closed) << "one at a time";
    EXPECT_EQ(aceconv::bag_last_error(), "a registration is already open");
    EXPECT_EQ(bag_register(&descriptor), 0U);
    EXPECT_EQ(bag_definition_init(&descriptor, &definition), closed) << "not before the end";
    EXPECT_EQ(aceconv::bag_last_error(), "the type is not registered");
    EXPECT_EQ(bag_register_abort(), 0U);
    EXPECT_EQ(bag_definition_init(&descriptor, &definition), closed);
    EXPECT_EQ(definition, nullptr);

    bag_definition *first = nullptr;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(bag_register_start(), 0U);
        EXPECT_EQ(bag_register(&descriptor), 0U);
        EXPECT_EQ(bag_register(&descriptor), 0U);
        EXPECT_EQ(bag_register_end(), 0U);
        EXPECT_EQ(bag_definition_init(&descriptor, &definition), 0U);
        EXPECT_EQ(first == nullptr ? definition : first, definition);
        first = definition;
    }
    descriptor.type_name = "other";
    EXPECT_EQ(bag_register_start(), 0U);
    EXPECT_EQ(bag_register(&descriptor), code(BagStatus::bad_description)) << "has changed";
    EXPECT_EQ(aceconv::bag_last_error(),
              "type other: its descriptor has changed since it was registered");
    EXPECT_EQ(bag_register_abort(), 0U);
    EXPECT_NE(aceconv::bag_fingerprint(descriptor), aceconv::bag_fingerprint(small));
    bag_definition_free(definition);
    bag_definition_free(nullptr);
    EXPECT_EQ(bag_encode_v3(nullptr, nullptr, &descriptor, nullptr, 1), closed);
    EXPECT_EQ(bag_decode_v3(nullptr, 0, nullptr, nullptr, 0), closed);
}

} // namespace
} // namespace bag_testing
