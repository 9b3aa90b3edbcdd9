// The iterator and the readers of aceconv/host/yang_access.h, for any backend.
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "host/platform/tree_walk.h"

using aceconv::code;
using aceconv::Value;
using aceconv::ValueKind;
using aceconv::Wanted;
using aceconv::YangStatus;

namespace {

const Value &look_at(ccv_yang_node *node) {
    node->owner->looked_at = node;
    return node->value;
}

std::uint32_t refuse(ccv_yang_node *node, YangStatus status, const Wanted &wanted) {
    node->owner->wanted = wanted;
    return code(status);
}

const ccv_yang_keyword *find(const ccv_yang_keyword *table, std::string_view name) {
    for (const ccv_yang_keyword *row = table; row->name != nullptr; ++row) {
        // Most names differ in their first character.
        if (row->name[0] == name[0] && std::strncmp(row->name, name.data(), name.size()) == 0 &&
            row->name[name.size()] == '\0') {
            return row;
        }
    }
    return nullptr;
}

/// The table's row for the leaf's name. A name that is met again is not looked for again:
/// tables are constants of the plug-in.
const ccv_yang_keyword *row_of(const ccv_yang_node &node, const ccv_yang_keyword *table) {
    if (node.name == 0) {
        return find(table, node.value.text);
    }
    const aceconv::SchemaNode &leaf = *node.schema;
    if (leaf.keywords != table) {
        try {
            leaf.keyword_rows.assign(leaf.names.size(), nullptr);
        } catch (const std::bad_alloc &) {
            return find(table, node.value.text);
        }
        leaf.keywords = table;
    }
    const ccv_yang_keyword *&row = leaf.keyword_rows[node.name - 1U];
    if (row == nullptr) {
        row = find(table, node.value.text);
    }
    return row;
}

std::uint32_t read_name(ccv_yang_node *node, const ccv_yang_keyword *table, std::uint32_t *value) {
    const ccv_yang_keyword *row = row_of(*node, table);
    if (row == nullptr) {
        return refuse(node, YangStatus::no_keyword, {.table = table});
    }
    *value = row->value;
    return 0;
}

template <class Number>
std::uint32_t read_number(ccv_yang_node *node, Number *value) {
    constexpr std::uint64_t largest = std::numeric_limits<Number>::max();
    const Value &found = look_at(node);
    if (found.kind != ValueKind::number) {
        return refuse(node, YangStatus::wrong_type, {.largest = largest});
    }
    if (found.number > largest) {
        return refuse(node, YangStatus::out_of_range, {.largest = largest});
    }
    *value = static_cast<Number>(found.number);
    return 0;
}

} // namespace

// ---- Iterator ----------------------------------------------------------------

std::uint32_t ccv_yang_iter_create(ccv_yang_node *node, ccv_yang_iter **iterator) {
    look_at(node);
    ccv_yang_iter *spare = node->owner->spare_walk.release();
    if (spare != nullptr) {
        spare->restart(*node);
    } else if ((spare = new (std::nothrow) ccv_yang_iter(*node)) == nullptr) {
        return code(YangStatus::no_memory);
    }
    *iterator = spare;
    return 0;
}

std::int32_t ccv_yang_iter_is_active(ccv_yang_iter *iterator) {
    return iterator->active() ? 1 : 0;
}

void ccv_yang_iter_first(std::uint32_t step, ccv_yang_iter *iterator, std::uint32_t *status,
                         ccv_yang_node **current, std::int32_t *index) {
    const YangStatus result = iterator->first(step, *current, index);
    if (result != YangStatus::ok) {
        *current = nullptr;
        *status = code(result);
    }
}

std::int32_t ccv_yang_iter_is_finished(std::uint32_t step, ccv_yang_iter *iterator,
                                       std::uint32_t * /*status*/) {
    return iterator->finished(step) ? 1 : 0;
}

void ccv_yang_iter_next(ccv_yang_iter *iterator, std::uint32_t * /*status*/,
                        ccv_yang_node **current, std::int32_t *index) {
    iterator->next(*current, index);
}

void ccv_yang_iter_destroy(ccv_yang_iter *iterator) {
    if (iterator != nullptr) {
        iterator->owner().spare_walk.reset(iterator);
    }
}

// ---- Readers -----------------------------------------------------------------

const char *ccv_yang_get_node_name(ccv_yang_node *node) {
    look_at(node);
    return node->schema->name;
}

std::uint32_t ccv_yang_get_enum(ccv_yang_node *node, const ccv_yang_keyword *table,
                                std::uint32_t *value) {
    if (look_at(node).kind != ValueKind::name) {
        return refuse(node, YangStatus::wrong_type, {.table = table});
    }
    return read_name(node, table, value);
}

std::uint32_t ccv_yang_get_enum_or_uint32(ccv_yang_node *node, const ccv_yang_keyword *table,
                                          std::uint32_t *value) {
    return look_at(node).kind == ValueKind::name ? read_name(node, table, value)
                                                 : read_number(node, value);
}

std::uint32_t ccv_yang_get_bits(ccv_yang_node *node, const ccv_yang_keyword *table,
                                std::uint32_t *bits) {
    const Value &found = look_at(node);
    if (found.kind != ValueKind::bits) {
        return refuse(node, YangStatus::wrong_type, {.table = table});
    }
    std::uint32_t set = 0;
    std::string_view rest = found.text;
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find(' '));
        rest.remove_prefix(name.size() < rest.size() ? name.size() + 1 : name.size());
        const ccv_yang_keyword *row = find(table, name);
        if (row == nullptr || row->value > 31) {
            return refuse(node, YangStatus::no_keyword, {.table = table});
        }
        set |= std::uint32_t{1} << row->value;
    }
    *bits = set;
    return 0;
}

std::uint32_t ccv_yang_get_uint8(ccv_yang_node *node, std::uint8_t *value) {
    return read_number(node, value);
}

std::uint32_t ccv_yang_get_uint16(ccv_yang_node *node, std::uint16_t *value) {
    return read_number(node, value);
}

std::uint32_t ccv_yang_get_uint32(ccv_yang_node *node, std::uint32_t *value) {
    return read_number(node, value);
}

std::uint32_t ccv_yang_get_bool(ccv_yang_node *node, std::uint32_t *value) {
    const Value &found = look_at(node);
    if (found.kind != ValueKind::boolean) {
        return refuse(node, YangStatus::wrong_type, {.what = "true or false"});
    }
    *value = found.number != 0 ? 1 : 0;
    return 0;
}

// Addresses are in network byte order, as in struct in_addr.
std::uint32_t ccv_yang_get_ipv4(ccv_yang_node *node, std::uint32_t *address) {
    const Value &found = look_at(node);
    if (found.kind != ValueKind::ipv4) {
        return refuse(node, YangStatus::wrong_type, {.what = "an IPv4 address"});
    }
    *address = static_cast<std::uint32_t>(found.number);
    return 0;
}

std::uint32_t ccv_yang_get_string(ccv_yang_node *node, char **text) {
    const Value &found = look_at(node);
    if (found.kind != ValueKind::text && found.kind != ValueKind::name) {
        return refuse(node, YangStatus::wrong_type, {.what = "a string"});
    }
    auto *copy = static_cast<char *>(std::malloc(found.text.size() + 1));
    if (copy == nullptr) {
        return code(YangStatus::no_memory);
    }
    std::memcpy(copy, found.text.data(), found.text.size());
    copy[found.text.size()] = '\0';
    *text = copy;
    return 0;
}

std::uint32_t ccv_yang_get_list_entry_count(ccv_yang_node *node, std::uint32_t *count) {
    look_at(node);
    if (node->form != NodeForm::list) {
        return refuse(node, YangStatus::wrong_type, {.what = "a list"});
    }
    *count = node->entries;
    return 0;
}
