// The two YANG modules against the keyword tables and the record's widths.
#include "yang_testing.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <tuple>

#include "aceconv/keywords.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"
#include "host/schema/suggestion.h"
#include "tests/plugin/entries.h"
#include "tests/plugin/record_text.h"

namespace aceconv::testing {
namespace {

struct TemporaryDirectory {
    TemporaryDirectory() {
        std::string name = std::filesystem::temp_directory_path() / "aceconv-modules-XXXXXX";
        path = ::mkdtemp(name.data());
    }
    ~TemporaryDirectory() { std::filesystem::remove_all(path); }
    TemporaryDirectory(const TemporaryDirectory &) = delete;
    TemporaryDirectory &operator=(const TemporaryDirectory &) = delete;

    std::string path;
};

struct Row {
    std::string ending; // of the leaf's path; the longest one that fits counts
    const ccv_yang_keyword *table;
    std::uint64_t largest; // plain number that the leaf takes as well; 0 for none
};

// Which table the converters use for which leaf, and the width of its field: of
// the base schema as the tests of the plug-in state it.
std::vector<Row> base_rows() {
    std::vector<Row> rows;
    for (const test::Leaf &leaf : test::base_leaves) {
        if (leaf.table == nullptr) {
            continue;
        }
        std::string path = std::string("/") + leaf.tree;
        path.erase(path.find('='));
        std::replace(path.begin(), path.end(), '{', '/');
        const std::string record = leaf.record;
        const bool number = leaf.emission[0] == 'E' || leaf.emission[0] == 'u';
        for (const test::Member &member : test::members()) {
            if (record.substr(0, record.find('=')) == member.name) {
                rows.push_back(
                    {path, leaf.table, number ? UINT64_MAX >> (64 - 8 * member.width) : 0});
            }
        }
    }
    return rows;
}

const std::vector<Row> um_rows = {
    {"/protocol", acl_yang_acl_protocol_um, 0xFFFF},
    {"t/eq", acl_yang_acl_protocol_um, 0xFFFF}, // of permit
    {"y/eq", acl_yang_acl_protocol_um, 0xFFFF}, // of deny
    {"/range/start-protocol", acl_yang_acl_protocol_um, 0xFFFF},
    {"/range/end-protocol", acl_yang_acl_protocol_um, 0xFFFF},
    {"/port/eq", acl_yang_acl_port_um, 0xFFFF},
    {"/port/gt", acl_yang_acl_port_um, 0xFFFF},
    {"/port/lt", acl_yang_acl_port_um, 0xFFFF},
    {"/port/neq", acl_yang_acl_port_um, 0xFFFF},
    {"/port/range/start-value", acl_yang_acl_port_um, 0xFFFF},
    {"/port/range/end-value", acl_yang_acl_port_um, 0xFFFF},
    {"/tcp-flags/tcp-bits", acl_yang_acl_tcp_bits, 0},
    {"/icmp/message-type-name", acl_yang_acl_icmp_type_code_um, 0xFFFFFFFF},
    {"/igmp-type", acl_yang_acl_igmp_type, 0xFF},
    {"/dscp/dscp-value", acl_yang_acl_dscp, 0xFF},
    {"/dscp/eq", acl_yang_acl_dscp, 0xFF},
    {"/dscp/gt", acl_yang_acl_dscp, 0xFF},
    {"/dscp/lt", acl_yang_acl_dscp, 0xFF},
    {"/dscp/neq", acl_yang_acl_dscp, 0xFF},
    {"/dscp/range/start-value", acl_yang_acl_dscp, 0xFF},
    {"/dscp/range/end-value", acl_yang_acl_dscp, 0xFF},
    {"/precedence", acl_yang_acl_precedence_um, 0xFF},
    {"/fragment-type", acl_yang_acl_fragment_type_um, 0},
    {"/police/unit", acl_yang_acl_rate_unit_um, 0},
    {"/police/peak-unit", acl_yang_acl_rate_unit_um, 0},
    {"/police/priority", acl_yang_acl_priority_um, 0},
};

class Comparison {
  public:
    explicit Comparison(std::vector<Row> rows) : rows_(std::move(rows)) {}

    void visit(const SchemaNode &node, const std::string &path) {
        for (const SchemaNode &child : node.children) {
            visit(child, path + '/' + child.name);
        }
        if (!node.names.empty()) {
            compare(node, path);
        }
    }

    void expect_all_used() const {
        for (const Row &row : rows_) {
            EXPECT_GT(uses_.count(&row), 0U) << "no leaf ends with " << row.ending;
        }
    }

  private:
    void compare(const SchemaNode &leaf, const std::string &path) {
        SCOPED_TRACE(path);
        const Row *row = nullptr;
        std::size_t best = 0;
        for (const Row &candidate : rows_) {
            if (candidate.ending.size() > best && path.ends_with(candidate.ending)) {
                row = &candidate;
                best = candidate.ending.size();
            }
        }
        ASSERT_NE(row, nullptr) << "a leaf of names without a keyword table";
        uses_[row] = true;
        std::map<std::string, std::uint32_t> in_module;
        for (const SchemaNode::Name &name : leaf.names) {
            in_module[std::string(name.text)] = name.value;
        }
        std::map<std::string, std::uint32_t> in_table;
        for (const ccv_yang_keyword *keyword = row->table; keyword->name != nullptr; ++keyword) {
            in_table[keyword->name] = keyword->value;
        }
        EXPECT_EQ(in_module, in_table);
        EXPECT_EQ(leaf.type == LeafType::name_or_number, row->largest != 0);
        EXPECT_EQ(leaf.largest, row->largest);
    }

    const std::vector<Row> rows_;
    std::map<const Row *, bool> uses_;
};

TEST(YangModules, AgreeWithTheKeywordTables) {
    Comparison base(base_rows());
    base.visit(modules().context().entry(Schema::base), "");
    base.expect_all_used();
    Comparison um(um_rows);
    um.visit(modules().context().entry(Schema::um), "");
    um.expect_all_used();
}

void expect_same(const SchemaNode &table, const SchemaNode &libyang) {
    SCOPED_TRACE(libyang.name);
    EXPECT_EQ(table.member, libyang.member);
    EXPECT_EQ(std::tie(table.key, table.kind, table.type, table.place, table.smallest,
                       table.largest, table.most_entries, table.pattern),
              std::tie(libyang.key, libyang.kind, libyang.type, libyang.place, libyang.smallest,
                       libyang.largest, libyang.most_entries, libyang.pattern));
    ASSERT_EQ(table.names.size(), libyang.names.size());
    for (std::size_t i = 0; i < table.names.size(); ++i) {
        EXPECT_EQ(table.names[i].value, libyang.names[i].value);
        EXPECT_EQ(table.names[i].text, libyang.names[i].text);
    }
    ASSERT_EQ(table.children.size(), libyang.children.size());
    for (std::size_t i = 0; i < table.children.size(); ++i) {
        EXPECT_EQ(table.children[i].parent, &table);
        expect_same(table.children[i], libyang.children[i]);
    }
}

// By any of the texts that differ from one of them in a byte or in their length, too.
template <class Find>
void expect_names_found(const std::vector<std::string> &names, Find find) {
    const auto place = [&](const std::string &text) -> std::size_t {
        const auto found = std::find(names.begin(), names.end(), text);
        return found == names.end() ? NameTable::none : found - names.begin();
    };
    for (const std::string &name : names) {
        std::string text = name + "        "; // as many bytes may be read
        for (std::size_t length = 0; length <= name.size() + 1; ++length) {
            EXPECT_EQ(find({text.data(), length}), place(text.substr(0, length))) << text;
        }
        for (std::size_t at = 0; at < name.size(); ++at) {
            text[at] ^= 1;
            EXPECT_EQ(find({text.data(), name.size()}), place(text.substr(0, name.size())));
            text[at] ^= 1;
        }
    }
}

void expect_names_found(const SchemaNode &node) {
    std::vector<std::string> names;
    for (const SchemaNode &child : node.children) {
        names.emplace_back(child.key);
        expect_names_found(child);
    }
    expect_names_found(names, [&](std::string_view text) -> std::size_t {
        const SchemaNode *child = node.child(text);
        return child == nullptr ? NameTable::none : child->place;
    });
    names.clear();
    for (const SchemaNode::Name &name : node.names) {
        names.emplace_back(name.text);
    }
    expect_names_found(names, [&](std::string_view text) { return node.name_place(text); });
}

TEST(YangModules, NamesAreFoundInTheirTables) {
    expect_names_found(modules().context().entry(Schema::base));
    expect_names_found(modules().context().entry(Schema::um));
    // With the same ends, so that they share a slot of the table.
    const std::vector<std::string> names{"12345678-a-12345678", "12345678-b-12345678",
                                         "12345678-c-12345678", "1234567812345678", "12345678"};
    NameTable table;
    table.make(names.size(), [&](std::size_t i) { return std::string_view(names[i]); });
    expect_names_found(names, [&](std::string_view text) { return table.find(text); });
}

TEST(YangModules, OtherTextsThanThoseOfTheBuildAreCompiled) {
    const Modules built(ACECONV_YANG_DIRECTORY);
    const TemporaryDirectory other;
    for (const Schema schema : {Schema::base, Schema::um}) {
        const auto copy = module_file(other.path, schema);
        std::filesystem::copy_file(module_file(ACECONV_YANG_DIRECTORY, schema), copy);
        std::ofstream(copy, std::ios::app) << "// edited\n";
    }
    const Modules edited(other.path);
    for (const Schema schema : {Schema::base, Schema::um}) {
        const SchemaNode &table = built.context().entry(schema);
        EXPECT_EQ(table.compiled, nullptr);
        EXPECT_NE(edited.context().entry(schema).compiled, nullptr);
        expect_same(table, edited.context().entry(schema));
    }
    const SchemaNode &leaf = built.context().entry(Schema::um).children[0];
    EXPECT_STREQ(compiled_node(leaf).name, "sequence-number");
    EXPECT_STREQ(leaf.compiled->name, "sequence-number");

    const auto um = module_file(other.path, Schema::um);
    std::ofstream(um) << "module aceconv-um { }";
    EXPECT_NE(error_of([&] { const Modules broken(other.path); }).find(um), std::string::npos);
}

std::string repeated(int times, const std::function<std::string(int)> &text) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text(i);
    }
    return all;
}
std::string nested(int levels) {
    return repeated(levels, [](int i) { return "container c" + std::to_string(i) + " {"; }) +
           "leaf x { type empty; }" + std::string(static_cast<std::size_t>(levels), '}');
}
std::string siblings(int count) {
    return repeated(count,
                    [](int i) { return "leaf l" + std::to_string(i) + " { type empty; } "; });
}

/// The UM module with `nodes` beside the sequence number.
void write_um(const TemporaryDirectory &directory, const std::string &nodes) {
    std::ofstream(module_file(directory.path, Schema::um))
        << "module aceconv-um { yang-version 1.1; namespace 'urn:aceconv:um'; prefix u; "
           "container acls { list acl "
           "{ key name; leaf name { type string; } list entry { key sequence-number; "
           "leaf sequence-number { type uint32; } "
        << nodes << "} } } }";
}

// Constructs that the modules do not have now.
TEST(YangModules, WhatTheHostDoesNotKnowIsRefused) {
    const TemporaryDirectory other;
    std::filesystem::copy_file(module_file(ACECONV_YANG_DIRECTORY, Schema::base),
                               module_file(other.path, Schema::base));
    const struct {
        std::string nodes; // beside the sequence number
        const char *said;  // or what "x" is expected to be
    } rows[] = {
        {"leaf x { type string { length 1..max; } }", "a string that is not empty"},
        {"leaf x { type string { length 2..3; pattern 'a+'; } }",
         "a string of 2 to 3 characters of the form a+"},
        {"leaf x { type string { length 0..3|5..7; } }", "a string of 0 to 7 characters"},
        {"leaf x { type string; }", "a string"},
        {"leaf x { type uint8 { range 3..9; } }", "a number 3 to 9"},
        {"leaf x { type union { type enumeration { enum a; } type uint16; } }",
         "a number 0 to 65535 or one of: a"},
        {"leaf x { type enumeration {" +
             repeated(12, [](int i) { return " enum " + std::to_string(i) + ";"; }) + "} }",
         "one of: 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11"},
        {"leaf x { type empty; }", "[null] in JSON, an empty element in XML"},
        {"container x { " + nested(12) + " }", "a container"},
        {siblings(62) + "leaf x { type boolean; }", "true or false"},
        {"leaf x { type int8; }", "aceconv-um: node x: type"},
        {"leaf x { type uint64; }", "aceconv-um: node x: type"},
        {"leaf x { type union { type string; type uint8; } }", "aceconv-um: node x: union"},
        {"leaf x { type union { type enumeration { enum a; } type uint8; type uint16; } }",
         "aceconv-um: node x: union"},
        {"leaf x { type enumeration { enum 'a\"b'; } }", "name a\"b: quoted characters"},
        {"leaf-list x { type string; }", "aceconv-um: node x: kind of node"},
        {"container x { " + nested(13) + " }", "aceconv-um: node x: nested too deep"},
        {siblings(63) + "leaf x { type empty; }", "aceconv-um: node entry: too many children"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.nodes);
        write_um(other, row.nodes);
        try {
            Modules loaded(other.path);
            const SchemaNode *x = loaded.context().entry(Schema::um).find("x");
            ASSERT_NE(x, nullptr);
            EXPECT_EQ(expected(*x), row.said);
        } catch (const std::logic_error &error) {
            EXPECT_STREQ(error.what(), row.said);
        }
    }
    std::ofstream(module_file(other.path, Schema::um))
        << "module aceconv-um { namespace 'urn:aceconv:um'; prefix u; container acls { } }";
    EXPECT_EQ(error_of([&] { const Modules loaded(other.path); }),
              ": the module has no list /aceconv-um:acls/acl/entry");
}

// What is said of a text without libyang is what libyang says.
TEST(YangModules, PlainPatternsFitWhatLibyangTakes) {
    const struct {
        const char *pattern;
        bool plain;
    } rows[] = {
        {"(0[xX])?[0-9a-fA-F]{1,8}", true},
        {"[ -~]*", true},
        {"a?a?b+", true},
        {"(a)?(ab)?(b)?a{2}", true},
        {"[ab]{1,}0{0,1}", true},
        {"(a)?(a)?(a)?(a)?", false},
        {"(a)+", false},
        {"((a)?b)?", false},
        {"a|b", false},
        {"[^a]*", false},
        {".*", false},
        {"\\d+", false},
        {"[a-]*", false},
        {"^a$", false},
        {"a'; pattern 'aa", false},
        {"[0-9]'; pattern '[1-9]' { modifier invert-match; } pattern '.", false},
    };
    std::vector<std::string> texts{"",  "0x", "0X1f", "0123456789", "12345678", "0x123456789",
                                   "g", " ~", "\x7f", "\xc3\xa4",   "a\nb",     "^a$",
                                   "-a"};
    for (unsigned number = 0; number < 64; ++number) { // and what is made of two characters
        std::string text;
        for (unsigned left = number | 64U; left > 1; left /= 2) {
            text += (left & 1U) != 0 ? 'a' : 'b';
            texts.push_back(text);
        }
    }
    const TemporaryDirectory other;
    std::filesystem::copy_file(module_file(ACECONV_YANG_DIRECTORY, Schema::base),
                               module_file(other.path, Schema::base));
    for (const auto &row : rows) {
        SCOPED_TRACE(row.pattern);
        write_um(other, "leaf x { type string { pattern '" + std::string(row.pattern) + "'; } }");
        Modules loaded(other.path);
        const SchemaNode &quick = *loaded.context().entry(Schema::um).find("x");
        EXPECT_EQ(quick.plain_pattern, row.plain);
        SchemaNode asked = quick;
        asked.plain_pattern = false;
        for (const std::string &text : texts) {
            EXPECT_EQ(takes_text(quick, text), takes_text(asked, text)) << text;
        }
    }
}

TEST(YangModules, ReadingTextNeedsNoLibyang) {
    Modules built(ACECONV_YANG_DIRECTORY);
    const char *const text =
        R"({"permit":{"udf-entries":{"udf":[{"udf-name":"f","udf-value":"0x1","udf-mask":"f"}]}}})";
    EXPECT_NE(make_bulk_reader(built, Schema::um)->read(text, {}), nullptr);
    EXPECT_EQ(built.context().entry(Schema::um).compiled, nullptr);
}

TEST(YangModules, EverydayWordsHaveNames) {
    const struct {
        const char *said, *base, *um; // what is proposed in some leaf of the schema
    } rows[] = {
        {"http", "www", "WWW"},        {"domain", "dns", "DNS"},
        {"dhcp", "boot-ps", "BootPS"}, {"ike", "isakmp", "ISAKMP"},
        {"ping", "echo", "Echo"},      {"ipip", "ip-in-ip", nullptr},
        {"any", "ip", nullptr},        {"ip", nullptr, "ipv4"},
        {"allow", "permit", nullptr},  {"accept", "permit", nullptr},
        {"drop", "deny", nullptr},     {"block", "deny", nullptr},
        {"reject", "deny", nullptr},   {"reset", "rst", nullptr},
        {"push", "psh", nullptr},      {"urgent", "urg", nullptr},
        {"tpc", "tcp", "tcp"},         {"aPplication/json", nullptr, nullptr},
    };
    const std::function<void(const SchemaNode &, const char *, std::set<std::string> &)> look =
        [&](const SchemaNode &node, const char *said, std::set<std::string> &meant) {
            for (const SchemaNode &child : node.children) {
                look(child, said, meant);
            }
            const std::string text = node.names.empty() ? "" : value_refusal(node, said);
            const std::size_t at = text.find("; did you mean ");
            if (at != std::string::npos) {
                meant.insert(text.substr(at + 15, text.size() - at - 16));
            }
        };
    for (const auto &row : rows) {
        for (const Schema schema : {Schema::base, Schema::um}) {
            std::set<std::string> meant;
            look(modules().context().entry(schema), row.said, meant);
            const char *name = schema == Schema::base ? row.base : row.um;
            EXPECT_EQ(meant.count(name == nullptr ? "" : name), name == nullptr ? 0U : 1U)
                << row.said << ::testing::PrintToString(meant);
        }
    }
}

TEST(YangModules, AMissingDirectoryOrModuleIsReported) {
    EXPECT_NE(error_of([] { Modules("/nonexistent"); }).find("/nonexistent"), std::string::npos);
    EXPECT_NE(error_of([] { Modules("/"); }).find("aceconv-base.yang"), std::string::npos);
}

} // namespace
} // namespace aceconv::testing
