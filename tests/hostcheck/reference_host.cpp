// The reference host under check, behind aceconv/hostcheck.h: trees by either of its
// readers, as HOST_BACKEND says, and outputs that become nodes.
#include <cstdlib>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "aceconv/hostcheck.h"
#include "host/entry.h"
#include "host/entry_nodes.h"

namespace {

using namespace aceconv;
using Json = nlohmann::ordered_json;

/// A thread's modules, and what was made of them.
struct Made {
    Modules modules{ACECONV_MODULES};
    std::map<ccv_yang_node *, std::unique_ptr<EntryReader>> trees;
    std::map<ccv_yang_output *, std::unique_ptr<EntryMirror>> outputs;
};
thread_local Made made;

const EntryKey key{"checked", 10};

Schema schema_of(hostcheck_schema schema) {
    return schema == HOSTCHECK_BASE ? Schema::base : Schema::um;
}

bool validating() {
    const char *const backend = std::getenv("HOST_BACKEND");
    return backend != nullptr && std::string_view(backend) == "validating";
}

/// The members that the rows from `row` on describe, down to `depth`.
Json members(const hostcheck_row *&row, std::uint32_t depth) {
    Json object = Json::object();
    while (row->name != nullptr && row->depth >= depth) {
        const hostcheck_row &here = *row++;
        Json &value = object[here.name];
        switch (here.form) {
        case HOSTCHECK_CONTAINER:
            value = members(row, depth + 1);
            break;
        case HOSTCHECK_LIST:
            value = Json::array();
            while (row->name != nullptr && row->depth > depth) {
                ++row;
                value.push_back(members(row, depth + 2));
            }
            break;
        case HOSTCHECK_NUMBER:
        case HOSTCHECK_BOOLEAN:
            value = Json::parse(here.value, nullptr, false);
            break;
        case HOSTCHECK_EMPTY:
            value = Json::array({nullptr});
            break;
        default:
            value = here.value;
            break;
        }
    }
    return object;
}

void show(const ccv_yang_node &parent, std::uint32_t depth,
          void (*visit)(void *, const hostcheck_row *), void *context) {
    for (ccv_yang_node *node = first_child(parent); node != nullptr; node = next_sibling(*node)) {
        const std::string name(node_name(*node)), value = is_leaf(*node) ? leaf_text(*node) : "";
        const hostcheck_row row{depth, is_leaf(*node) ? HOSTCHECK_STRING : HOSTCHECK_CONTAINER,
                                name.c_str(), is_leaf(*node) ? value.c_str() : nullptr};
        if (name != "sequence-number" || depth != 0) {
            visit(context, &row);
        }
        show(*node, depth + 1, visit, context);
    }
}

} // namespace

ccv_yang_node *hostcheck_tree_create(hostcheck_schema schema, const hostcheck_row *rows) {
    auto reader = validating()
                      ? make_validating_reader(made.modules, schema_of(schema), Format::json)
                      : make_bulk_reader(made.modules, schema_of(schema));
    try {
        ccv_yang_node *const entry = reader->read(members(rows, 0).dump(), key);
        made.trees[entry] = std::move(reader);
        return entry;
    } catch (const std::exception &) {
        return nullptr;
    }
}
void hostcheck_tree_free(ccv_yang_node *entry) {
    made.trees.erase(entry);
}

ccv_yang_output *hostcheck_output_create(hostcheck_schema schema) {
    auto mirror = make_mirror(made.modules, schema_of(schema));
    ccv_yang_output *const output = mirror->begin(key);
    made.outputs[output] = std::move(mirror);
    return output;
}
std::uint32_t hostcheck_output_status(ccv_yang_output *output) {
    try {
        made.outputs[output]->finish();
        return 0;
    } catch (const DataError &) {
        return 1;
    }
}
void hostcheck_output_show(ccv_yang_output *output, void (*visit)(void *, const hostcheck_row *),
                           void *context) {
    try {
        show(made.outputs[output]->finish(), 0, visit, context);
    } catch (const DataError &) {
    }
}
void hostcheck_output_free(ccv_yang_output *output) {
    made.outputs.erase(output);
}

std::uint32_t hostcheck_encoding_create(void **out_a, void **out_b) {
    *out_a = new std::uint8_t *(nullptr);
    *out_b = new std::uint32_t(0);
    return 0;
}
const std::uint8_t *hostcheck_encoding_bytes(void *out_a, void *out_b, std::uint32_t *length) {
    *length = *static_cast<std::uint32_t *>(out_b);
    return *static_cast<std::uint8_t **>(out_a);
}
void hostcheck_encoding_free(void *out_a, void *out_b) {
    std::free(*static_cast<std::uint8_t **>(out_a));
    delete static_cast<std::uint8_t **>(out_a);
    delete static_cast<std::uint32_t *>(out_b);
}
