// What shows at a glance, against the full search: a yes that the search does not bear out
// is a loss in silence. Texts are all pairs of the UM schema's nodes, records all states
// of each group of members; losses_test.cpp has random ones of both.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

#include "compare/kept_nodes.h"
#include "compare/quick_proof.h"
#include "compare/translation.h"
#include "host/plugin_loader.h"
#include "host/schema/modules.h"
#include "stream/codec.h"
#include "stream/errors.h"
#include "stream/text.h"
#include "testing/generator/rule.h"

namespace aceconv {
namespace {

using Json = nlohmann::json;

class QuickProof : public ::testing::Test {
  protected:
    /// Whether it shows that the record of the UM text keeps it; a yes is looked into.
    bool check_text(const std::string &text) {
        Entry entry{.schema = Schema::um, .format = Format::json, .text = text};
        const Encoding encoding = codec_.encode(entry);
        const DecodedRecord record(codec_.descriptor(), encoding);
        const bool sure = surely_kept(*codec_.nodes(), record.get());
        if (sure) {
            const auto &decoded = codec_.decode_nodes(encoding, Schema::um, {});
            EXPECT_TRUE(nodes_not_kept(codec_, view_, Schema::um, encoding, decoded).empty())
                << text;
        }
        return sure;
    }

    /// The same of text in `schema` that says the record; false where there is none.
    bool check_record(Encoding encoding, Schema schema) {
        DecodedRecord before(codec_.descriptor(), encoding);
        const bool sure = surely_said(view_, before.get(), schema);
        if (sure) {
            try {
                DecodedRecord after(
                    codec_.descriptor(),
                    codec_.encode_nodes(codec_.decode_nodes(encoding, schema, {}), schema));
                clear_derived_bits(before.get());
                clear_derived_bits(after.get());
                EXPECT_EQ(before.encode(), after.encode())
                    << schema_name(schema) << described(before.get(), schema);
            } catch (const DataError &) { // a number without a name
                return false;
            }
        }
        return sure;
    }

    std::string described(const ipv4_acl_config_ace &record, Schema schema) const {
        std::string text;
        for (const FieldValue &value : view_.describe(record, schema)) {
            text += "; " + value.name + " " + value_text(value) + " by " + bits_text(value.bits);
        }
        return text;
    }

    Codec codec_{{load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk}};
    RecordView view_{codec_.descriptor()};
    const bool long_ = std::getenv("ACECONV_LONG_TESTS") != nullptr;
};

// ---- Texts ---------------------------------------------------------------------

Json value_of(const SchemaNode &leaf, bool other) {
    switch (leaf.type) {
    case LeafType::ipv4:
        return other ? "0.0.0.0" : "192.0.2.1";
    case LeafType::enumeration:
        return leaf.names.at(other ? 1 : 0).text;
    case LeafType::name_or_number:
        return other ? Json(leaf.names.at(1).text) : Json(7);
    case LeafType::bits:
        return other ? "ack" : "syn";
    case LeafType::string:
        return std::string_view(leaf.name) == "tcp-bits" ? (other ? "-ack syn" : "+ack")
                                                         : (other ? "b" : "a");
    default:
        return other ? 0 : 9;
    }
}

/// One entry for each node below `parent`, which stands in it: leaves with either value, and
/// empty containers.
void add_texts(const SchemaNode &parent, const std::function<Json(Json)> &around,
               std::vector<Json> &texts) {
    for (const SchemaNode &node : parent.children) {
        const auto in = [&](Json value) {
            if (node.kind == NodeKind::list) {
                value["udf-name"] = value.value("udf-name", "f");
                value = Json::array({value});
            }
            return around({{node.name, std::move(value)}});
        };
        if (node.kind != NodeKind::leaf) {
            if (node.kind == NodeKind::container) {
                texts.push_back(in(Json::object()));
            }
            if (std::string_view(node.name) != "permit") { // the same as in "deny"
                add_texts(node, in, texts);
            }
        } else if (std::string_view(node.name) != "sequence-number") {
            texts.push_back(in(value_of(node, false)));
            texts.push_back(in(value_of(node, true)));
        }
    }
}

TEST_F(QuickProof, TextsOfTwoOrMoreNodes) {
    const Modules modules(ACECONV_MODULES);
    std::vector<Json> texts;
    add_texts(
        modules.context().entry(Schema::um), [](Json entry) { return entry; }, texts);
    const auto check = [this](const Json &text) {
        try {
            (void)check_text(text.dump());
        } catch (const DataError &) { // the actions name one user-defined field twice
        }
    };
    for (std::size_t i = 0; i < texts.size() && !HasFailure(); ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            Json both = texts[i];
            both.merge_patch(texts[j]);
            check(both);
            for (std::size_t k = long_ ? 0 : j; k < j; ++k) {
                Json three = both;
                three.merge_patch(texts[k]);
                check(three);
            }
        }
    }
}

TEST_F(QuickProof, SignsOfFlags) {
    const struct {
        const char *text;
        bool kept;
    } rows[] = {{"+syn -ack", true}, {"-ack +syn", true}, {"syn +ack -fin", true},
                {"syn", true},       {"-ack syn", false}, {"s-+yn", false},
                {"+ syn", false},    {"syn -", false},    {"", false},
                {"-ack", true},      {"syn  ack", true},  {"-ack  fin", false},
                {"syn+", false},     {"syn ", true}};
    for (const auto &row : rows) {
        const Json text = {{"deny", {{"tcp-flags", {{"match-any", {{"tcp-bits", row.text}}}}}}}};
        try {
            EXPECT_EQ(check_text(text.dump()), row.kept) << row.text;
        } catch (const DataError &) { // no flag
            EXPECT_FALSE(row.kept) << row.text;
        }
    }
}

// ---- Records -------------------------------------------------------------------

using Members = std::vector<const RecordField *>;

class Records : public QuickProof {
  protected:
    void set(ipv4_acl_config_ace &record, const RecordField &field, std::uint32_t number) {
        static char text[] = "text";
        static ace_udf_element elements[9] = {{"a", 1, 2}, {"a\0b", 3, 4}};
        for (const BagMember &member : members_) {
            auto *at = reinterpret_cast<std::uint8_t *>(&record) + member.offset;
            if (member.name != field.name) {
                continue;
            }
            char *const string = number != 0 ? text : nullptr;
            if (member.type == "s") {
                std::memcpy(at, &string, sizeof string);
            } else if (member.type.front() == 'a') {
                record.UDF = number < 3    ? ace_udf_array{1, &elements[number / 2]}
                             : number == 3 ? ace_udf_array{9, elements}
                                           : ace_udf_array{};
            } else {
                std::memcpy(at, &number, member.width);
            }
        }
    }
    static std::uint64_t &mask(ipv4_acl_config_ace &record, int bit) {
        return bit < second_mask ? record.ConfigurationMask : record.ConfigurationMask2;
    }
    static void mark(ipv4_acl_config_ace &record, int bit) {
        mask(record, bit) |= std::uint64_t{1} << (bit % second_mask);
    }
    static bool is_marked(ipv4_acl_config_ace &record, const RecordField &field) {
        bool marked = false;
        for (int bit = std::max(field.first_bit, 0); bit <= field.last_bit; ++bit) {
            marked = marked || (mask(record, bit) >> (bit % second_mask) & 1U) != 0;
        }
        return marked;
    }
    const std::vector<BagMember> members_ = bag_members(codec_.descriptor());
};

TEST_F(Records, EveryStateOfAGroup) {
    std::map<Group, Members> groups;
    std::vector<Members> all;
    for (const RecordField &field : record_fields()) {
        auto &members = field.group == Group::none ? all.emplace_back() : groups[field.group];
        members.push_back(&field);
    }
    for (const auto &[group, members] : groups) {
        all.push_back(members);
    }
    for (const Members &members : all) {
        std::vector<int> bits;
        for (const RecordField *field : members) {
            for (int bit = std::max(field->first_bit, 0); bit <= field->last_bit; ++bit) {
                if (bit <= second_mask + 1 || bit > second_mask + 23 || bit % 8 == 0) {
                    bits.push_back(bit); // of eight user-defined fields the first is enough
                }
            }
        }
        const std::uint32_t codes = members.size() > 4 ? 4 : 7; // next hops are many
        const std::uint32_t states = codes << bits.size();
        for (std::uint32_t state = 0; state < 3 * states && !HasFailure(); ++state) {
            const std::uint32_t code = state % codes;
            const std::uint32_t zero = state / states; // the place of a member without value
            ipv4_acl_config_ace record{};
            for (std::size_t i = 0; i < bits.size(); ++i) {
                if ((state % states / codes >> i & 1U) != 0) {
                    mark(record, bits[i]);
                }
            }
            for (std::uint32_t i = 0; i < members.size(); ++i) {
                if (code == 6 || is_marked(record, *members[i])) {
                    set(record, *members[i], i == 0 ? code : i == zero ? 0 : 1 + (code + i) % 4);
                }
            }
            check_record(encode_record(codec_.descriptor(), record), Schema::base);
            for (const std::uint8_t grant :
                 {std::uint8_t{0}, std::uint8_t{1}}) { // under UM little is said without
                mark(record, 0);
                record.grant = grant;
                check_record(encode_record(codec_.descriptor(), record), Schema::um);
            }
        }
    }
}

// The search is for few entries.
TEST_F(QuickProof, IsEnoughForMostEntries) {
    bench::Random random(7);
    std::map<std::string, int> sure;
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        const bench::Rule rule = bench::random_rule(random, 1);
        std::string text;
        bench::append_um(text, rule);
        sure["um text"] += check_text(text) ? 1 : 0;
        Entry um{.schema = Schema::um, .format = Format::json, .text = text};
        sure["um record"] += check_record(codec_.encode(um), Schema::um) ? 1 : 0;
        text.clear();
        bench::append_base(text, rule);
        Entry base{.schema = Schema::base, .format = Format::json, .text = text};
        sure["base record"] += check_record(codec_.encode(base), Schema::base) ? 1 : 0;
    }
    for (const auto &[what, times] : sure) {
        EXPECT_GT(times, count * 95 / 100) << what;
    }
}

} // namespace
} // namespace aceconv
