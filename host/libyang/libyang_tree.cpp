#include "host/libyang/libyang_tree.h"

#include <bit>
#include <new>

#include "host/data_path.h"
#include "host/error.h"
#include "host/schema/leaf_value.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

using Node = LibyangTree::Node;

const SchemaNode &schema_of(const lyd_node &data) {
    return *static_cast<const SchemaNode *>(data.schema->priv);
}

Value value_of(const lyd_node &data) {
    const lyd_value *value = &reinterpret_cast<const lyd_node_term &>(data).value;
    if (value->realtype->basetype == LY_TYPE_UNION) {
        value = &value->subvalue->value;
    }
    switch (value->realtype->basetype) {
    case LY_TYPE_UINT8:
        return {.kind = ValueKind::number, .number = value->uint8};
    case LY_TYPE_UINT16:
        return {.kind = ValueKind::number, .number = value->uint16};
    case LY_TYPE_UINT32:
        return {.kind = ValueKind::number, .number = value->uint32};
    case LY_TYPE_ENUM:
        return {.kind = ValueKind::name, .text = value->enum_item->name};
    case LY_TYPE_BITS:
        return {.kind = ValueKind::bits, .text = lyd_get_value(&data)};
    case LY_TYPE_BOOL:
        return {.kind = ValueKind::boolean, .number = value->boolean != 0 ? 1U : 0U};
    case LY_TYPE_EMPTY:
        return {.kind = ValueKind::empty};
    default:
        break;
    }
    Value result{.kind = ValueKind::text, .text = lyd_get_value(&data)};
    if (schema_of(data).type == LeafType::ipv4) {
        (void)ipv4_value(result.text, result); // libyang takes no other form
    }
    return result;
}

std::size_t count_nodes(const lyd_node *first) {
    std::size_t count = 0;
    for (const lyd_node *node = first; node != nullptr; node = node->next) {
        // One more for the list node that may stand before an instance.
        count += 2 + count_nodes(lyd_child(node));
    }
    return count;
}

} // namespace

TreeOwner new_list(Modules::Context &context, Schema schema) {
    const lys_module *module =
        ly_ctx_get_module_implemented(context.libyang(), module_name(schema).data());
    lyd_node *acls = nullptr;
    if (lyd_new_inner(nullptr, module, "acls", 0, &acls) != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    TreeOwner owner(acls);
    if (lyd_new_list(acls, nullptr, "acl", 0, nullptr, "-") != LY_SUCCESS) {
        throw std::bad_alloc();
    }
    return owner;
}

void LibyangTree::clear() {
    restart(0);
    entry_.reset();
}

void LibyangTree::assign(TreeOwner entry, bool show_sequence) {
    clear();
    entry_ = std::move(entry);
    restart(1 + count_nodes(lyd_child(entry_.get())));
    Node &root = add(schema_of(*entry_), nullptr, NodeForm::entry);
    add_children(root, lyd_child(entry_.get()));
    if (!show_sequence) {
        root.child = root.child->next; // the key is the first child
    }
}

void LibyangTree::add_children(Node &parent, const lyd_node *first) {
    std::uint64_t given = 0;
    const lyd_node *children[max_siblings]; // by place, as far as they are given
    for (const lyd_node *data = first; data != nullptr; data = data->next) {
        const SchemaNode &schema = schema_of(*data);
        const std::uint64_t bit = std::uint64_t{1} << schema.place;
        if ((given & bit) == 0) {
            children[schema.place] = data;
        }
        given |= bit;
    }
    for (; given != 0; given &= given - 1) {
        const lyd_node &data = *children[std::countr_zero(given)];
        switch (schema_of(data).kind) {
        case NodeKind::leaf:
            add_leaf(parent, data);
            break;
        case NodeKind::container:
            add_children(add(schema_of(data), &parent, NodeForm::container), lyd_child(&data));
            break;
        case NodeKind::list:
            add_list(parent, data);
            break;
        }
    }
}

void LibyangTree::add_leaf(Node &parent, const lyd_node &data) {
    Node &leaf = add(schema_of(data), &parent, NodeForm::leaf);
    leaf.value = value_of(data);
    if (leaf.value.kind == ValueKind::text) {
        if (const char *fault = text_fault(leaf.value.text); fault != nullptr) {
            throw DataError(path(leaf), fault);
        }
    }
}

void LibyangTree::add_list(Node &parent, const lyd_node &first) {
    Node &list = add(schema_of(first), &parent, NodeForm::list);
    for (const lyd_node *data = &first; data != nullptr; data = data->next) {
        if (data->schema == first.schema) {
            ++list.entries;
            add_children(add(schema_of(*data), &list, NodeForm::list_entry), lyd_child(data));
        }
    }
    if (list.entries > list.schema->most_entries) {
        throw DataError(path(list),
                        "more than " + std::to_string(list.schema->most_entries) + " entries");
    }
    check_keys(list);
}

void LibyangTree::check_keys(const Node &list) {
    if (const std::string_view *twice = repeated_key(list); twice != nullptr) {
        throw DataError(path(list) + key_predicate(list.child->child->schema->name, *twice),
                        "a second entry with the same key");
    }
}

} // namespace aceconv
