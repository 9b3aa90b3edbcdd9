// The two YANG modules against the keyword tables and the record's widths.
#include "yang_testing.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <tuple>

#include "aceconv/keywords.h"
#include "host/schema/modules.h"

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
    const char *ending; // of the leaf's path; the longest one that fits counts
    const ccv_yang_keyword *table;
    std::uint64_t largest; // plain number that the leaf takes as well; 0 for none
};

// Which table the converters use for which leaf, and the width of its field.
const Row base_rows[] = {
    {"/grant", acl_yang_acl_grant, 0},
    {"-operator", acl_yang_acl_operator, 0},
    {"/protocol", acl_yang_acl_protocol, 0xFFFF},
    {"/protocol2", acl_yang_acl_protocol, 0xFFFF},
    {"t-source-port", acl_yang_acl_port, 0xFFFF},
    {"d-source-port", acl_yang_acl_port, 0xFFFF},
    {"t-destination-port", acl_yang_acl_port, 0xFFFF},
    {"d-destination-port", acl_yang_acl_port, 0xFFFF},
    {"/icmp/icmp-type-code", acl_yang_acl_icmp_type_code, 0xFFFFFFFF},
    {"/tcp/tcp-bits-match-operator", acl_yang_acl_tcp_bits_match, 0xFF},
    {"/tcp/tcp-bits", acl_yang_acl_tcp_bits, 0},
    {"/tcp/tcp-bits-mask", acl_yang_acl_tcp_bits, 0},
    {"/fragment-type", acl_yang_acl_fragment_flags, 0xFF},
    {"/next-hop/next-hop-type", acl_yang_acl_nexthop_type, 0},
    {"/igmp-message-type", acl_yang_acl_igmp_type, 0xFF},
    {"/dscp-min", acl_yang_acl_dscp, 0xFF},
    {"/dscp-max", acl_yang_acl_dscp, 0xFF},
    {"/precedence", acl_yang_acl_precedence, 0xFF},
    {"/log-option", acl_yang_acl_log, 0},
};
const Row um_rows[] = {
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

template <std::size_t N>
class Comparison {
  public:
    explicit Comparison(const Row (&rows)[N]) : rows_(rows) {}

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
            const std::string ending = candidate.ending;
            if (path.size() >= ending.size() && ending.size() > best &&
                path.compare(path.size() - ending.size(), ending.size(), ending) == 0) {
                row = &candidate;
                best = ending.size();
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

    const Row (&rows_)[N];
    std::map<const Row *, bool> uses_;
};

TEST(YangModules, AgreeWithTheKeywordTables) {
    Comparison base(base_rows);
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

TEST(YangModules, AMissingDirectoryOrModuleIsReported) {
    EXPECT_NE(error_of([] { Modules("/nonexistent"); }).find("/nonexistent"), std::string::npos);
    EXPECT_NE(error_of([] { Modules("/"); }).find("aceconv-base.yang"), std::string::npos);
}

} // namespace
} // namespace aceconv::testing
