// Losses as they are found, on nodes and records, against a slow look: the finished
// text read again by the other backend, and each leaf of the source by itself.
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "compare/loss_reasons.h"
#include "compare/losses.h"
#include "compare/translation.h"
#include "host/plugin_loader.h"
#include "host/schema/modules.h"
#include "testing/generator/rule.h"
#include "tests/print_schema.h"

namespace aceconv {
namespace {

using Json = nlohmann::json;
using Names = std::set<std::string>;

class LossesOf : public ::testing::TestWithParam<Schema> {
  protected:
    Bytes encode(Schema schema, const std::string &text, Format format = Format::json) {
        Entry entry{.schema = schema, .format = format, .text = text};
        const Encoding encoding = slow_.encode(entry);
        return {encoding.begin(), encoding.end()};
    }

    /// The fields that differ between `encoding` and the record of `text` in `to`.
    Names fields_lost(Encoding encoding, const std::string &text, Schema to, Format format) {
        const Bytes again = encode(to, text, format);
        DecodedRecord before(quick_.descriptor(), encoding);
        DecodedRecord after(quick_.descriptor(), again);
        Names names;
        for (const Untranslated &number : translate(before.get(), GetParam(), to).untranslated) {
            names.insert(number.field);
        }
        clear_derived_bits(before.get());
        clear_derived_bits(after.get());
        const auto left = view_.describe(before.get(), to);
        const auto right = view_.describe(after.get(), to);
        for (const Difference &difference : compare(left, right)) {
            names.insert(difference.any().name);
        }
        return names;
    }

    /// Every leaf below `at` that the record of all, `encoding`, does not have as the
    /// record of the leaf alone has it is among `lost`. `alone` holds `at` and nothing
    /// else.
    void look_at_leaves(Json &alone, Json &at, const std::string &path, Encoding encoding,
                        const Names &lost) {
        const Json all = at;
        for (const auto &[name, value] : all.items()) {
            const std::string here = path + (path.empty() ? "" : "/") + name;
            at = {{name, value}};
            if (value.is_object()) {
                look_at_leaves(alone, at[name], here, encoding, lost);
            } else if (name.find("message-") != 0 && lost.count(here) == 0) {
                const Bytes single = encode(GetParam(), alone.dump());
                const auto mine = describe(single);
                const auto whole = describe(encoding);
                for (const FieldValue &field : mine) {
                    const FieldValue *held = find_value(whole, field.name);
                    EXPECT_TRUE(field.name == "grant" ||
                                (held != nullptr && same_value(*held, field)))
                        << here;
                }
            }
        }
        at = all;
    }

    std::vector<FieldValue> describe(Encoding encoding) {
        return view_.describe(DecodedRecord(quick_.descriptor(), encoding).get(), GetParam());
    }

    /// Converts the entry and looks at its losses; how many there are.
    std::size_t check(Entry entry, Schema to) {
        std::string text;
        Losses losses;
        const Format format = ++checked_ % 4 == 0 ? Format::xml : Format::json;
        convert(quick_, view_, entry, to, format, text, &losses);
        Names fields;
        Names leaves;
        for (const Change &loss : losses) {
            EXPECT_NE(loss.reason, "") << change_text(loss);
            EXPECT_EQ(loss.reason.find(unexplained), std::string::npos) << change_text(loss);
            (loss.field.empty() ? leaves : fields)
                .insert(loss.field.empty() ? loss.leaf : loss.field);
        }
        const Bytes encoding = entry.format ? encode(GetParam(), entry.text) : entry.encoding;
        EXPECT_EQ(fields, fields_lost(encoding, text, to, format)) << entry.text << '\n' << text;
        if (entry.format) {
            Json whole = Json::parse(entry.text);
            look_at_leaves(whole, whole, "", encoding, leaves);
        }
        return losses.size();
    }

    Codec quick_{{load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk}};
    Codec slow_{{load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::validating}};
    RecordView view_{quick_.descriptor()};
    int checked_ = 0;
};

Json random_entry(bench::Random &random, Schema schema) {
    std::string text;
    const bench::Rule rule = bench::random_rule(random, 1);
    (schema == Schema::um ? bench::append_um : bench::append_base)(text, rule);
    return Json::parse(text);
}

/// Takes a leaf or a whole container out.
void erase_any(bench::Random &random, Json &at) {
    if (at.empty()) {
        return;
    }
    auto member = at.begin();
    std::advance(member, random.below(static_cast<std::uint32_t>(at.size())));
    if (member->is_object() && random.percent(80)) {
        erase_any(random, *member);
    } else {
        at.erase(member);
    }
}

// Two entries in one give what replaces each other, less of them what lacks its other half.
TEST_P(LossesOf, GeneratedEntriesMergedAndCut) {
    bench::Random random(3);
    std::uint32_t lossy = 0;
    for (int i = 0; i < 200 && !HasFailure(); ++i) {
        Json entry = random_entry(random, GetParam());
        if (random.percent(60)) {
            entry.merge_patch(random_entry(random, GetParam()));
        }
        for (std::uint32_t cuts = random.below(4); cuts > 0; --cuts) {
            erase_any(random, entry);
        }
        for (const Schema to : {Schema::base, Schema::um}) {
            const Entry source{.schema = GetParam(), .format = Format::json, .text = entry.dump()};
            lossy += check(source, to) != 0 ? 1U : 0U;
        }
    }
    EXPECT_GT(lossy, 50U);
}

/// A record with a few presence bits, and values of any kind.
Bytes random_record(const bag_descriptor &descriptor, bench::Random &random) {
    static ace_udf_element fields[] = {{"a", 1, 2}, {"b", 3, 4}};
    static char text[] = "text";
    constexpr std::uint32_t numbers[] = {0, 0, 1, 1, 1, 2, 3, 4, 5, 5, 6, 17, 512, 0x8FFFF};
    ipv4_acl_config_ace record{};
    const std::uint32_t often = random.between(3, 40);
    for (int bit = 0; bit < 64; ++bit) {
        record.ConfigurationMask |= std::uint64_t{random.percent(often)} << bit;
        record.ConfigurationMask2 |= std::uint64_t{random.percent(often)} << bit;
    }
    for (const BagMember &member : bag_members(descriptor)) {
        auto *at = reinterpret_cast<std::uint8_t *>(&record) + member.offset;
        if (member.type == "s") {
            char *const value = text;
            std::memcpy(at, &value, sizeof value);
        } else if (member.type.front() != 'a' && member.type != "H" && random.percent(70)) {
            const std::uint32_t number = numbers[random.below(std::size(numbers))];
            std::memcpy(at, &number, member.width);
        }
    }
    record.ConfigurationMask |= random.percent(70) ? 1U : 0U; // an action
    record.grant = static_cast<std::uint8_t>(random.below(2));
    record.UDF = {random.below(3), fields};
    return encode_record(descriptor, record);
}

TEST_P(LossesOf, RandomRecords) {
    bench::Random random(5);
    std::uint32_t written = 0;
    for (int i = 0; i < 500 && !HasFailure(); ++i) {
        const Bytes encoding = random_record(quick_.descriptor(), random);
        for (const Schema to : {Schema::base, Schema::um}) {
            try {
                written += check({.schema = GetParam(), .encoding = encoding}, to) != 0 ? 1U : 0U;
            } catch (const DataError &) { // a number that the schema has no name for
            }
        }
    }
    EXPECT_GT(written, 200U);
}

// What no text leads to, but a record of another program may hold.
TEST(LossesOfRecords, HaveTheirReasons) {
    using Record = ipv4_acl_config_ace;
    const auto bit = [](int n) { return std::uint64_t{1} << n; };
    static ace_udf_element fields[9] = {{"a", 1, 2}};
    for (int i = 1; i < 9; ++i) {
        fields[i].UDFName[0] = static_cast<char>('a' + i);
    }
    const struct {
        Schema schema;
        std::function<void(Record &)> change; // of a record that permits everything
        const char *loss;                     // its end
    } rows[] = {
        {Schema::base, [](Record &r) { r.qos_group = 7; },
         "absent; no presence bit marks the value"},
        {Schema::base, [&](Record &r) { r.ConfigurationMask |= bit(61); },
         "bit 61: set -> absent; the bit marks no field"},
        {Schema::base, [&](Record &r) { r.ConfigurationMask |= bit(42); },
         "absent; a next hop marked as configured, but without address and VRF"},
        {Schema::base, [&](Record &r) { r.ConfigurationMask |= bit(23); },
         "frags (fragments): 0 -> absent; it is marked, but not set"},
        {Schema::base,
         [&](Record &r) {
             r.ConfigurationMask |= bit(30);
             r.icmp_off = 2;
         },
         "icmp_off (icmp-off): 2 -> 1; its presence is its value"},
        {Schema::base,
         [&](Record &r) {
             r.ConfigurationMask |= bit(19);
             r.icmp_type_code = 0x80000;
         },
         "524288 -> 589823 (echo); any code is marked, whatever the number says"},
        {Schema::base,
         [&](Record &r) {
             r.ConfigurationMask |= bit(18) | bit(19);
             r.icmp_type_code = 0x8FFFF;
         },
         "589823 (echo) -> 589823 (echo); presence bits 18-19 -> 19"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(13);
             r.log = 3;
         },
         "log (log|log-input): 3 -> absent; a number without a name"},
        {Schema::um, [](Record &r) { r.grant = 2; },
         "grant (.): 2 -> absent; an action by a number without a name"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(27) | bit(28);
             r.ttloper = 9;
         },
         "ttl1 (ttl): 0 -> absent; its operator is a number without a name; matches more than "
         "before"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(27) | bit(29);
             r.ttloper = 9;
         },
         "0 -> absent; its operator is a number without a name; matches more than before"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(27);
             r.ttloper = 9;
         },
         "ttloper (ttl): 9 -> absent; an operator by a number without a name"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(32);
             r.nexthop = 3;
         },
         "nexthop1): 3 -> absent; a next hop type by a number without a name"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(32) | bit(40);
             r.nexthop = 3;
             r.vrf2 = fields[0].UDFName;
         },
         "vrf2 (nexthop2/vrf): \"a\" -> absent; the next hop type is a number without a name"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(32) | bit(39);
             r.nexthop = 3;
             r.vrf1 = fields[0].UDFName;
         },
         "vrf1 (nexthop1/vrf): \"a\" -> absent; the next hop type is a number without a name"},
        {Schema::um, [&](Record &r) { r.ConfigurationMask2 |= bit(0); },
         "empty -> absent; a list without user-defined fields is not written"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask2 |= bit(1);
             r.UDF = {1, fields};
         },
         "absent; the bit of the first user-defined field is not set; matches more than before"},
        {Schema::um,
         [&](Record &r) {
             r.UDF = {9, fields};
         },
         "i 0x0/0x0 -> absent; no presence bit marks the value"},
    };
    Codec codec({load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk});
    const RecordView view(codec.descriptor());
    for (const auto &row : rows) {
        Record record{};
        record.ConfigurationMask = 1;
        record.grant = 1;
        row.change(record);
        Entry entry{.schema = row.schema, .encoding = encode_record(codec.descriptor(), record)};
        std::string text;
        Losses losses;
        convert(codec, view, entry, row.schema, Format::json, text, &losses);
        ASSERT_FALSE(losses.empty()) << row.loss;
        EXPECT_TRUE(change_text(losses.back()).ends_with(row.loss)) << change_text(losses.back());
    }
}

// Why there is no text for a record of another program.
TEST(LossesOfRecords, HaveNoText) {
    using Record = ipv4_acl_config_ace;
    const auto bit = [](int n) { return std::uint64_t{1} << n; };
    static std::string quotes(65536, '"'); // twice as long in JSON
    const struct {
        Schema schema;
        std::function<void(Record &)> change; // of a record that permits everything
        const char *fault;
    } rows[] = {
        {Schema::base, [](Record &r) { r.grant = 2; },
         "/grant: no name stands for 2; expected one of: deny, permit"},
        {Schema::base, [&](Record &r) { r.ConfigurationMask |= bit(31); },
         "/remark: the entry marks a text that it does not hold"},
        {Schema::um, [&](Record &r) { r.ConfigurationMask2 |= bit(25), r.Police.PoliceUnit = 5; },
         ": an unknown rate unit; expected 0 to 4, pps to gbps"},
        {Schema::um,
         [&](Record &r) {
             r.ConfigurationMask |= bit(20) | bit(21) | bit(22);
             r.tcpflagsopr = 1;
             r.tcpflags = r.tcpflags_mask = 0x40;
         },
         ": a TCP flag that has no name; expected flags fin, syn, rst, psh, ack, urg"},
        {Schema::base,
         [&](Record &r) {
             for (int n = 0; n < 10; ++n) { // of vrf1 and what follows
                 (&r.vrf1)[n] = quotes.data();
             }
             r.ConfigurationMask |= bit(39) | bit(40) | bit(41) | bit(44) | bit(45) | bit(46) |
                                    bit(47) | bit(48) | bit(49) | bit(50);
         },
         ": more than 1048576 bytes as text"},
    };
    Codec codec({load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk});
    const auto fault_of = [&](Encoding encoding, Schema schema) -> std::string {
        std::string text;
        try {
            codec.decode(encoding, schema, Format::json, {}, text);
        } catch (const DataError &fault) {
            return fault.path() + ": " + fault.what();
        }
        return text;
    };
    for (const auto &row : rows) {
        Record record{};
        record.ConfigurationMask = 1;
        record.grant = 1;
        row.change(record);
        const std::string fault = fault_of(encode_record(codec.descriptor(), record), row.schema);
        EXPECT_TRUE(fault.ends_with(row.fault)) << fault.substr(0, 200);
    }
    EXPECT_EQ(fault_of(Bytes{0x80}, Schema::um), ": byte 0: expected an array of three");
}

/// The node at `path` below `node`, or null.
const SchemaNode *node_at(const SchemaNode *node, const std::string &path) {
    for (std::size_t at = 0; node != nullptr && at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string step = path.substr(at, end - at);
        node = step == ".." ? node->parent : node->find(step);
        at = end + 1;
    }
    return node;
}

// "source/address|host": the second one stands beside the first.
TEST(RecordFields, NameNodesOfTheModules) {
    const Modules modules(ACECONV_MODULES);
    for (const Schema schema : {Schema::base, Schema::um}) {
        const SchemaNode &entry = modules.context().entry(schema);
        const SchemaNode *top = schema == Schema::um ? entry.find("deny") : &entry;
        for (const RecordField &field : record_fields()) {
            std::istringstream leaves(field.leaf(schema) == nullptr ? "" : field.leaf(schema));
            const SchemaNode *around = top;
            for (std::string leaf; std::getline(leaves, leaf, '|') && leaf != ".";) {
                const SchemaNode *found = node_at(around, leaf);
                ASSERT_NE(found, nullptr) << field.name << ' ' << leaf;
                around = found->parent;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Schemas, LossesOf, ::testing::Values(Schema::base, Schema::um),
                         [](const auto &parameter) {
                             return std::string(parameter.param == Schema::um ? "um" : "base");
                         });

} // namespace
} // namespace aceconv
