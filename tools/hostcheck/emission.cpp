#include "tools/hostcheck/emission.h"

#include <algorithm>
#include <map>

namespace aceconv::hostcheck {
namespace {

using enum Kind;

const char *emitter_of(const Row &row) {
    switch (row.kind) {
    case container:
        return "ccv_yang_container_begin";
    case presence:
        return "ccv_yang_presence";
    case list:
        return "ccv_yang_list_begin";
    case list_entry:
        return "ccv_yang_list_entry_begin";
    case keyword:
        return "ccv_yang_enum";
    case keyword_or_number:
        return "ccv_yang_enum_or_uint32";
    case bits:
        return "ccv_yang_bits";
    case boolean:
        return "ccv_yang_bool";
    case address:
        return "ccv_yang_ipv4";
    case string:
        return "ccv_yang_string";
    case empty:
        return "ccv_yang_empty";
    default:
        return "ccv_yang_uint32";
    }
}

/// Without the containers that say nothing.
std::vector<Shown> without_empty(std::vector<Shown> nodes, Rows rows) {
    const auto is_marked = [&](const Shown &node) {
        return std::any_of(rows.begin(), rows.end(), [&](const Row &row) {
            return !is_leaf(row) && row.kind != container && node.name == row.name;
        });
    };
    for (std::size_t i = nodes.size(); i-- > 0;) {
        const bool has_children = i + 1 < nodes.size() && nodes[i + 1].depth > nodes[i].depth;
        if (!nodes[i].leaf && !has_children && !is_marked(nodes[i])) {
            nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    return nodes;
}

std::string quoted(const Shown &node) {
    return "\"" + node.name + "\"" + (node.leaf ? " \"" + node.value + "\"" : "");
}

} // namespace

void Output::expect(const Entry &entry) {
    const Rows rows = written(entry.rows);
    std::vector<Shown> nodes;
    CALL(check_, hostcheck_output_show)
    (
        handle_,
        [](void *context, const hostcheck_row *row) {
            static_cast<std::vector<Shown> *>(context)->push_back(
                {row->depth, row->name, row->value != nullptr,
                 row->value != nullptr ? row->value : ""});
        },
        &nodes);
    nodes = without_empty(std::move(nodes), rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row &row = rows[i];
        const char *const emitter = emitter_of(row);
        if (i == nodes.size()) {
            check_.broken(emitter,
                          "loses the node: " + quoted(row) + " was written and is not shown");
        }
        const Shown &node = nodes[i];
        if (node.name != row.name) {
            const bool comes_later =
                std::any_of(nodes.begin() + static_cast<std::ptrdiff_t>(i), nodes.end(),
                            [&](const Shown &later) { return later.name == row.name; });
            check_.broken(emitter,
                          comes_later
                              ? "does not keep the order of the calls: " + quoted(node) +
                                    " is shown where " + quoted(row) + " was written"
                              : "loses the node: " + quoted(row) + " was written and is not shown");
        }
        if (node.depth != row.depth) {
            check_.broken("ccv_yang_container_end",
                          "or an emitter like it puts nodes on the wrong level: " + quoted(row) +
                              " is shown at depth " + std::to_string(node.depth) + ", not " +
                              std::to_string(row.depth));
        }
        if (is_leaf(row) && node.value != written(row)) {
            if (i != 0 && rows[i - 1].kind == list_entry &&
                std::any_of(nodes.begin() + static_cast<std::ptrdiff_t>(i), nodes.end(),
                            [&](const Shown &later) {
                                return later.name == row.name && later.value == written(row);
                            })) {
                check_.broken("ccv_yang_list_entry_begin",
                              "does not keep the order of the calls: the entry of " + quoted(node) +
                                  " is shown where that of " + quoted(row) + " was written");
            }
            check_.broken(emitter, "keeps \"" + node.value + "\" as the value of \"" + row.name +
                                       "\", not \"" + written(row) + "\"");
        }
    }
    if (nodes.size() > rows.size()) {
        check_.broken(emitter_of(rows.back()),
                      "adds a node: " + quoted(nodes[rows.size()]) + " was not written");
    }
}

Overwritten emit(Check &check, ccv_yang_output *output, const Entry &entry, ccv_yang_node *tree) {
    std::map<const Row *, std::uint32_t> addresses;
    walk(check, tree, entry, [&](const Row &row, ccv_yang_node *node) {
        if (row.kind == address) {
            check.expect_success(CALL(check, ccv_yang_get_ipv4)(node, &addresses[&row]));
        }
    });
    Overwritten texts;
    std::vector<const Row *> open;
    const auto close = [&](std::uint32_t depth) {
        for (; open.size() > depth; open.pop_back()) {
            const Kind kind = open.back()->kind;
            check.expect_success(kind == list ? CALL(check, ccv_yang_list_end)(output)
                                 : kind == list_entry
                                     ? CALL(check, ccv_yang_list_entry_end)(output)
                                     : CALL(check, ccv_yang_container_end)(output));
        }
    };
    const auto write = [&](const Row &row) -> std::uint32_t {
        switch (row.kind) {
        case container:
            return CALL(check, ccv_yang_container_begin)(output, row.name);
        case presence: {
            const std::uint32_t status = CALL(check, ccv_yang_container_begin)(output, row.name);
            return status != 0 ? status : CALL(check, ccv_yang_presence)(output);
        }
        case list:
            return CALL(check, ccv_yang_list_begin)(output, row.name);
        case list_entry:
            return CALL(check, ccv_yang_list_entry_begin)(output, row.name, 1);
        case keyword:
            return CALL(check, ccv_yang_enum)(output, row.name, row.table, number_of(row));
        case keyword_or_number:
            return CALL(check, ccv_yang_enum_or_uint32)(output, row.name, row.table,
                                                        number_of(row));
        case bits:
            return CALL(check, ccv_yang_bits)(output, row.name, row.table, number_of(row));
        case boolean:
            return CALL(check, ccv_yang_bool)(output, row.name, number_of(row));
        case address:
            return CALL(check, ccv_yang_ipv4)(output, row.name, addresses[&row]);
        case string: {
            std::string &text = texts.emplace_back(row.value);
            const std::uint32_t status =
                CALL(check, ccv_yang_string)(output, row.name, text.c_str());
            std::fill(text.begin(), text.end(), '#');
            return status;
        }
        case empty:
            return CALL(check, ccv_yang_empty)(output, row.name);
        default:
            return CALL(check, ccv_yang_uint32)(output, row.name, number_of(row));
        }
    };
    for (const Row &row : written(entry.rows)) {
        close(row.depth);
        check.at("the node " + quoted(row) + " of " + entry.name);
        check.expect_success(write(row));
        if (!is_leaf(row)) {
            open.push_back(&row);
        }
    }
    close(0);
    check.at(entry.name);
    return texts;
}

} // namespace aceconv::hostcheck
