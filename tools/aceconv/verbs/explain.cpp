// aceconv explain and schema: what may be written, and what becomes of it.
#include <algorithm>

#include "converter/explanation.h"
#include "host/nearest.h"
#include "stream/errors.h"
#include "stream/output.h"
#include "stream/text.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/setup.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

constexpr std::size_t most_columns = 100;
const std::string indent(11, ' ');

Schema other_than(Schema schema) {
    return schema == Schema::base ? Schema::um : Schema::base;
}

/// Names and numbers in lines of a terminal's width.
std::string name_lines(const SchemaItem &item) {
    std::string text, line = "  names    ";
    for (const SchemaItem::Name &name : item.names) {
        const std::string next = name.text + " " + std::to_string(name.number);
        if (line.size() + next.size() > most_columns) {
            text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
            line = indent;
        }
        line += next + (&name == &item.names.back() ? "" : ", ");
    }
    return item.names.empty() ? "" : text + line + "\n";
}

std::string bits_of(const RecordField &field) {
    return bit_name(field.first_bit) +
           (field.last_bit > field.first_bit ? " to " + bit_name(field.last_bit) : "");
}

/// What the other schema has for the field.
std::string in_other(const RecordField &field, Schema other) {
    const std::string name(schema_name(other));
    const char *leaf = field.leaf(other);
    if (leaf == nullptr) {
        return "the " + name + " schema has no such leaf";
    }
    const std::string path = leaf;
    if (other == Schema::base) {
        return "in base: " + path;
    }
    return path == "."               ? "in um: permit|deny"
           : path.starts_with("../") ? "in um: " + path.substr(3)
                                     : "in um, below permit and deny: " + path;
}

std::string explanation(const SchemaItem &item, Schema schema,
                        const std::vector<FieldValue> &fields) {
    std::string text =
        item.path + " (" + std::string(schema_name(schema)) + ")\n  type     " + item.type;
    if (item.least) {
        text += ", " + std::to_string(*item.least) + " to " + std::to_string(*item.most);
    } else if (item.type == "string" && item.takes != "a string") {
        text += ": " + item.takes;
    }
    text += "\n" + name_lines(item);
    for (const FieldValue &field : fields) {
        text += (&field == &fields.front() ? "  record   " : indent) + field.name + ", bit " +
                bits_of(*field.field) + ", offset " + std::to_string(field.offset) + ", " +
                std::to_string(field.width) + (field.width == 1 ? " byte; " : " bytes; ") +
                in_other(*field.field, other_than(schema)) + "\n";
    }
    return fields.empty() ? text + "  record   nothing of its own\n" : text;
}

/// Whether the path, or the end of it, is what was asked for.
bool is_meant(const SchemaItem &item, const std::string &asked) {
    return item.path == asked || item.path.ends_with("/" + asked);
}

/// What stands in "deny" and, just so, in "permit".
bool is_repeated(const std::vector<SchemaItem> &items, const SchemaItem &item) {
    constexpr std::string_view deny = "deny/", permit = "permit/";
    if (item.path.starts_with(permit)) {
        const std::string twin = std::string(deny) + item.path.substr(permit.size());
        return std::any_of(items.begin(), items.end(),
                           [&](const SchemaItem &other) { return other.path == twin; });
    }
    return false;
}

} // namespace

int run_explain(const ExplainOptions &options) {
    Codec codec(start(options.common));
    const RecordView view(codec.descriptor());
    Modules modules = load_modules(find_modules(options.common));
    std::vector<std::string> names;
    std::string text;
    for (const Schema schema : {Schema::base, Schema::um}) {
        if (options.schema && *options.schema != schema) {
            continue;
        }
        const auto items = schema_items(modules, schema);
        for (std::size_t place = 0; place < items.size(); ++place) {
            const SchemaItem &item = items[place];
            names.push_back(item.name);
            names.push_back(item.path);
            if (is_meant(item, options.leaf) &&
                (item.path == options.leaf || !is_repeated(items, item))) {
                const auto fields = fields_set_by(codec, view, schema, items, place);
                text += options.json ? explanation_json(item, schema, fields) + "\n"
                                     : explanation(item, schema, fields);
            }
        }
    }
    if (text.empty()) {
        throw UsageError("no node " + options.leaf + ", aceconv schema shows all" +
                         did_you_mean(options.leaf, names));
    }
    Output output("-");
    output.write(text);
    output.commit();
    return exit_ok;
}

int run_schema(const SchemaOptions &options) {
    Modules modules = load_modules(find_modules(options.common));
    Output output("-");
    for (const Schema schema : {Schema::base, Schema::um}) {
        if (options.schema && *options.schema != schema) {
            continue;
        }
        if (options.tree && !options.json) {
            output.write(std::string(schema_name(schema)) + "\n");
        }
        for (const SchemaItem &item : schema_items(modules, schema)) {
            const bool is_leaf = !item.takes.empty();
            if (options.json) {
                output.write(item_json(item, schema) + "\n");
            } else if (options.tree) {
                output.write(std::string(2 * item.depth + 2, ' ') + item.name +
                             (is_leaf ? ": " + item.type : "/") + "\n");
            } else if (is_leaf) {
                output.write((options.schema ? "" : std::string(schema_name(schema)) + " ") +
                             item.path + ": " + item.takes + "\n");
            }
        }
    }
    output.commit();
    return exit_ok;
}

} // namespace aceconv::tool
