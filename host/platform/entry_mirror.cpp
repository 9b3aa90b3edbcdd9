// A decoder's output as nodes, and whether they say all that another entry says.
#include <algorithm>
#include <array>
#include <memory_resource>

#include "host/platform/entry_tree.h"
#include "host/schema/entry_text.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"

namespace aceconv {

namespace {

using Node = ccv_yang_node;

struct MirrorTree final : EntryTree {
    using EntryTree::add;
    using EntryTree::restart;
};

class MirrorOutput final : public ccv_yang_output {
  public:
    MirrorOutput(Modules::Context &context, Schema schema)
        : ccv_yang_output(schema, context.entry(schema)), entry_(context.entry(schema)) {}

    void start(const EntryKey &where) {
        restart(where);
        tree_.restart(max_entry_nodes);
        texts_.release();
        count_ = 0;
        at_ = &tree_.add(entry_, nullptr, NodeForm::entry);
    }

    const Node &finish() {
        check_complete();
        return tree_.root();
    }

  protected:
    bool open(const SchemaNode &container, std::string &why) override {
        return enter(container, NodeForm::container, why);
    }

    // The list itself has no call of its own: its first entry brings it.
    bool open_entry(const SchemaNode &list, std::string_view key, std::string &why) override {
        if (at_->last != nullptr && at_->last->schema == &list) {
            at_ = at_->last;
        } else if (!enter(list, NodeForm::list, why)) {
            return false;
        }
        ++at_->entries;
        return enter(list, NodeForm::list_entry, why) &&
               put(list.children[0], {.kind = ValueKind::text, .text = key}, why);
    }

    void close() override {
        at_ = at_->parent;
        if (at_->form == NodeForm::list) {
            at_ = at_->parent;
        }
    }

    bool put(const SchemaNode &leaf, const Value &value, std::string &why) override {
        if (!takes_value(leaf, value, why)) {
            return false;
        }
        Node *node = add(leaf, NodeForm::leaf, why);
        if (node == nullptr) {
            return false;
        }
        node->value = value;
        node->value.text = keep(value.text);
        return true;
    }

  private:
    Node *add(const SchemaNode &schema, NodeForm form, std::string &why) {
        if (++count_ == max_entry_nodes) {
            why = "more than " + std::to_string(max_entry_nodes) + " nodes";
            return nullptr;
        }
        return &tree_.add(schema, at_, form);
    }

    bool enter(const SchemaNode &schema, NodeForm form, std::string &why) {
        Node *node = add(schema, form, why);
        at_ = node != nullptr ? node : at_;
        return node != nullptr;
    }

    std::string_view keep(std::string_view text) {
        auto *copy = static_cast<char *>(texts_.allocate(text.size() + 1, 1));
        text.copy(copy, text.size());
        return {copy, text.size()};
    }

    const SchemaNode &entry_;
    MirrorTree tree_;
    Node *at_ = nullptr; // what is open
    std::size_t count_ = 0;
    std::array<std::byte, 2048> room_; // for the texts of most entries
    std::pmr::monotonic_buffer_resource texts_{room_.data(), room_.size()};
};

class Mirror final : public EntryMirror {
  public:
    Mirror(Modules &modules, Schema schema) : output_(modules.context(), schema) {}
    ccv_yang_output *begin(const EntryKey &where) override {
        output_.start(where);
        return &output_;
    }
    const ccv_yang_node &finish() override { return output_.finish(); }

  private:
    MirrorOutput output_;
};

bool stands_for(const SchemaNode &leaf, std::string_view name, std::uint64_t number) {
    return std::any_of(leaf.names.begin(), leaf.names.end(), [&](const SchemaNode::Name &row) {
        return row.value == number && row.text == name;
    });
}

bool same_value(const SchemaNode &leaf, const Value &a, const Value &b) {
    if (a.kind == ValueKind::number && b.kind == ValueKind::name) {
        return stands_for(leaf, b.text, a.number);
    }
    if (a.kind == ValueKind::name && b.kind == ValueKind::number) {
        return stands_for(leaf, a.text, b.number);
    }
    const bool numeric = a.kind == ValueKind::number || a.kind == ValueKind::boolean;
    return a.kind == b.kind && (numeric ? a.number == b.number : a.text == b.text);
}

} // namespace

std::unique_ptr<EntryMirror> make_mirror(Modules &modules, Schema schema) {
    return std::make_unique<Mirror>(modules, schema);
}

bool says_all_of(const ccv_yang_node &entry, const ccv_yang_node &original) {
    const Node *mine = entry.child;
    for (const Node *node = original.child; node != nullptr; node = node->next) {
        if (original.form == NodeForm::entry && node->schema->place == 0) {
            continue; // the sequence number
        }
        // Both stand in the module's order; entries of a list all have one schema.
        while (mine != nullptr && mine->schema->place < node->schema->place) {
            mine = mine->next;
        }
        if (mine == nullptr || mine->schema != node->schema ||
            (node->form == NodeForm::leaf ? !same_value(*node->schema, mine->value, node->value)
                                          : !says_all_of(*mine, *node))) {
            return false;
        }
        mine = mine->next;
    }
    return true;
}

} // namespace aceconv
