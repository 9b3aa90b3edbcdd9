// Part of the build: writes the source file behind compiled_modules.h from the
// folder of the YANG modules. compile_modules FOLDER > FILE
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <vector>

#include "host/schema/compiled_modules.h"
#include "host/schema/modules.h"

namespace aceconv {

/// Equal to no module, so that libyang loads them.
const CompiledModule &compiled_module(Schema) {
    static const CompiledModule none{"", nullptr};
    return none;
}

namespace {

/// "nullptr" or the table of `names`, which is written when it is the first with
/// these names.
std::string names_table(const std::vector<SchemaNode::Name> &names, std::ostream &out) {
    static std::map<std::string, std::string> tables;
    if (names.empty()) {
        return "nullptr";
    }
    std::string rows;
    for (const SchemaNode::Name &name : names) {
        rows += "    {" + std::to_string(name.value) + "U, \"" + std::string(name.text) + "\"},\n";
    }
    const auto [table, is_new] = tables.try_emplace(rows, "names_" + std::to_string(tables.size()));
    if (is_new) {
        out << "const SchemaNode::Name " << table->second << "[] = {\n" << rows << "};\n\n";
    }
    return table->second;
}

/// The nodes of one module in the order of their levels.
void write_nodes(const char *table, const SchemaNode &entry, std::ostream &out) {
    std::vector<const SchemaNode *> nodes{&entry};
    std::string rows;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const SchemaNode &node = *nodes[i];
        rows += "    {\"" + std::string(node.name) + "\", NodeKind(" +
                std::to_string(static_cast<int>(node.kind)) + "), LeafType(" +
                std::to_string(static_cast<int>(node.type)) + "), " +
                std::to_string(node.smallest) + "U, " + std::to_string(node.largest) + "U, " +
                std::to_string(node.most_entries) + "U, R\"yang(" + node.pattern + ")yang\", " +
                (node.plain_pattern ? "true, " : "false, ") + names_table(node.names, out) + ", " +
                std::to_string(node.names.size()) + ", " + std::to_string(nodes.size()) + ", " +
                std::to_string(node.children.size()) + "},\n";
        for (const SchemaNode &child : node.children) {
            nodes.push_back(&child);
        }
    }
    out << "const CompiledNode " << table << "[] = {\n" << rows << "};\n\n";
}

void write_text(const char *name, const std::string &file, std::ostream &out) {
    std::ifstream in(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    out << "const char " << name << "[] = R\"yang(" << text << ")yang\";\n\n";
}

int run(const std::string &directory) {
    const Modules modules(directory);
    std::ostream &out = std::cout;
    out << "#include \"host/schema/compiled_modules.h\"\n\nnamespace aceconv {\nnamespace {\n\n";
    for (const auto &[schema, name] : {std::pair(Schema::base, "base"), {Schema::um, "um"}}) {
        write_text((std::string(name) + "_text").c_str(), module_file(directory, schema), out);
        write_nodes((std::string(name) + "_nodes").c_str(), modules.context().entry(schema), out);
        out << "const CompiledModule " << name << "_module{{" << name << "_text, sizeof " << name
            << "_text - 1}, " << name << "_nodes};\n\n";
    }
    out << "} // namespace\n\nconst CompiledModule &compiled_module(Schema schema) {\n"
           "    return schema == Schema::base ? base_module : um_module;\n}\n\n"
           "} // namespace aceconv\n";
    return out.flush() ? 0 : 1;
}

} // namespace
} // namespace aceconv

int main(int argc, char **argv) {
    try {
        return argc == 2 ? aceconv::run(argv[1]) : 2;
    } catch (const std::exception &e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}
