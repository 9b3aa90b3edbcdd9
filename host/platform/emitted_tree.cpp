#include "host/platform/emitted_tree.h"

#include "host/schema/entry_text.h"
#include "host/schema/ipv4_text.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"

namespace aceconv {

void EmittedTree::start(const SchemaNode &entry) {
    restart(max_entry_nodes);
    texts_.release();
    count_ = 0;
    at_ = &EntryTree::add(entry, nullptr, NodeForm::entry);
}

bool EmittedTree::open(const SchemaNode &container, std::string &why) {
    return enter(container, NodeForm::container, why);
}

// The list itself has no call of its own: its first entry brings it.
bool EmittedTree::open_entry(const SchemaNode &list, std::string_view key, std::string &why) {
    if (at_->last != nullptr && at_->last->schema == &list) {
        at_ = at_->last;
    } else if (!enter(list, NodeForm::list, why)) {
        return false;
    }
    if (++at_->entries > list.most_entries) {
        why = "more than " + std::to_string(list.most_entries) + " entries";
        return false;
    }
    return enter(list, NodeForm::list_entry, why) &&
           put(list.children[0], {.kind = ValueKind::text, .text = key}, why);
}

void EmittedTree::close() {
    at_ = at_->parent;
    if (at_->form == NodeForm::list) {
        at_ = at_->parent;
    }
}

bool EmittedTree::put(const SchemaNode &leaf, const Value &value, std::string &why) {
    Node *node = add(leaf, NodeForm::leaf, why);
    if (node == nullptr) {
        return false;
    }
    node->value = value;
    if (value.kind == ValueKind::ipv4) {
        node->value.text = keep(Ipv4Text(static_cast<std::uint32_t>(value.number)).text());
        return true;
    }
    node->value.text = keep(value.text);
    if (value.kind == ValueKind::text && leaf.type == LeafType::enumeration) {
        node->value.kind = ValueKind::name;
    }
    return true;
}

EntryTree::Node *EmittedTree::add(const SchemaNode &schema, NodeForm form, std::string &why) {
    if (++count_ == max_entry_nodes) {
        why = "more than " + std::to_string(max_entry_nodes) + " nodes";
        return nullptr;
    }
    return &EntryTree::add(schema, at_, form);
}

bool EmittedTree::enter(const SchemaNode &schema, NodeForm form, std::string &why) {
    Node *node = add(schema, form, why);
    at_ = node != nullptr ? node : at_;
    return node != nullptr;
}

std::string_view EmittedTree::keep(std::string_view text) {
    auto *copy = static_cast<char *>(texts_.allocate(text.size() + 1, 1));
    text.copy(copy, text.size());
    return {copy, text.size()};
}

namespace {

/// Writes no text, but checks as if it did.
class MirrorOutput final : public ccv_yang_output {
  public:
    MirrorOutput(Modules::Context &context, Schema schema)
        : ccv_yang_output(schema, context.entry(schema)) {
        keep_nodes();
    }

    void start(const EntryKey &where) { restart(where); }
    ccv_yang_node &finish() {
        check_complete();
        return nodes();
    }

  protected:
    bool open(const SchemaNode & /*container*/, std::string & /*why*/) override { return true; }
    bool open_entry(const SchemaNode &list, std::string_view key, std::string &why) override {
        return put(list.children[0], {.kind = ValueKind::text, .text = key}, why);
    }
    void close() override {}
    bool put(const SchemaNode &leaf, const Value &value, std::string &why) override {
        return takes_value(leaf, value, why);
    }
};

class Mirror final : public EntryMirror {
  public:
    Mirror(Modules &modules, Schema schema) : output_(modules.context(), schema) {}
    ccv_yang_output *begin(const EntryKey &where) override {
        output_.start(where);
        return &output_;
    }
    ccv_yang_node &finish() override { return output_.finish(); }

  private:
    MirrorOutput output_;
};

} // namespace

std::unique_ptr<EntryMirror> make_mirror(Modules &modules, Schema schema) {
    return std::make_unique<Mirror>(modules, schema);
}

} // namespace aceconv
