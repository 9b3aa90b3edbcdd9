// The bulk backend's reader: one pass of simdjson over an entry's text, checked
// against the module's compiled form. simdjson refuses bad UTF-8 and control
// characters inside strings; between them only JSON's tokens pass, and each string
// is a name of the module or checked as a value.
//
// It takes only what it is sure that the validating reader takes, with the same
// values. Whatever else a text holds (a fault, or a rare way of writing) is read
// again by the validating reader, whose verdict and message hold: so both
// backends accept and refuse the same texts.
#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <cstring>

#include "host/data_path.h"
#include "host/platform/entry_tree.h"
#include "host/schema/entry_text.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"

namespace aceconv {

namespace {

namespace json = simdjson::ondemand;

/// The entry's nodes from JSON text; the values point into the parser's buffers.
class BulkTree final : public EntryTree {
  public:
    explicit BulkTree(Schema schema) : module_(std::string(module_name(schema)) + ':') {}

    /// False for a text that has to be read the other way.
    bool assign(std::string_view text, const SchemaNode &entry) {
        if (const std::size_t size = text.size() + simdjson::SIMDJSON_PADDING;
            size > padded_.size()) {
            padded_.resize(2 * size);
        }
        std::memcpy(padded_.data(), text.data(), text.size());
        std::memset(padded_.data() + text.size(), 0, simdjson::SIMDJSON_PADDING);
        // No node is shorter than a list entry "{},".
        restart(2 + text.size() / 2);
        members_ = 0;
        json::document document;
        json::object object;
        if (parser_.iterate(padded_.data(), text.size(), padded_.size()).get(document) !=
                simdjson::SUCCESS ||
            document.get_object().get(object) != simdjson::SUCCESS) {
            return false;
        }
        return take_members(object, add(entry, nullptr, NodeForm::entry)) &&
               document.current_location().error() == simdjson::OUT_OF_BOUNDS; // nothing behind it
    }

    /// The entry's key when the text has one.
    [[nodiscard]] const Node *sequence() {
        const Node *first = root().child;
        return first != nullptr && first->schema->place == 0 ? first : nullptr;
    }

  private:
    /// The child that a member names, with or without the module's prefix; null also
    /// for a name that is written with escapes.
    [[nodiscard]] const SchemaNode *child(const SchemaNode &parent, json::raw_json_string name,
                                          std::size_t hint) const {
        const auto is_name = [&](std::string_view key) { return name.unsafe_is_equal(key); };
        const SchemaNode *found = parent.find_if(is_name, hint);
        if (found != nullptr || std::strncmp(name.raw(), module_.data(), module_.size()) != 0) {
            return found;
        }
        const char *rest = name.raw() + module_.size();
        const char *end = static_cast<const char *>(std::memchr(rest, '"', padded_.size()));
        return parent.find({rest, static_cast<std::size_t>(end - rest)}, hint);
    }

    bool take_members(json::object object, Node &parent) {
        std::uint64_t given = 0;
        std::size_t hint = 0;
        for (auto member : object) {
            json::field field;
            if (std::move(member).get(field) != simdjson::SUCCESS || ++members_ > max_entry_nodes) {
                return false;
            }
            const SchemaNode *schema = child(*parent.schema, field.key(), hint);
            const std::uint64_t bit = schema == nullptr ? 0 : std::uint64_t{1} << schema->place;
            if (bit == 0 || (given & bit) != 0) {
                return false;
            }
            given |= bit;
            hint = schema->place + 1U;
            if (!take(field.value(), *schema, parent)) {
                return false;
            }
        }
        return true;
    }

    bool take(json::value value, const SchemaNode &schema, Node &parent) {
        json::object object;
        json::array array;
        switch (schema.kind) {
        case NodeKind::leaf:
            return take_leaf(value, add(schema, &parent, NodeForm::leaf));
        case NodeKind::container:
            return value.get_object().get(object) == simdjson::SUCCESS &&
                   take_members(object, add(schema, &parent, NodeForm::container));
        case NodeKind::list:
            break;
        }
        return value.get_array().get(array) == simdjson::SUCCESS &&
               take_entries(array, add(schema, &parent, NodeForm::list));
    }

    bool take_entries(json::array array, Node &list) {
        for (auto element : array) {
            json::object object;
            if (element.get_object().get(object) != simdjson::SUCCESS) {
                return false;
            }
            Node &entry = add(*list.schema, &list, NodeForm::list_entry);
            ++list.entries;
            if (!take_members(object, entry) || entry.child == nullptr ||
                entry.child->schema->place != 0) {
                return false;
            }
        }
        return list.entries != 0 && list.entries <= list.schema->most_entries &&
               repeated_key(list) == nullptr;
    }

    bool take_leaf(json::value value, Node &leaf) {
        std::uint64_t number = 0;
        bool truth = false;
        switch (const std::string_view token = value.raw_json_token(); token.front()) {
        case '"':
            return take_string(value, token, leaf);
        case 't':
        case 'f':
            return leaf.schema->type == LeafType::boolean &&
                   value.get_bool().get(truth) == simdjson::SUCCESS &&
                   (leaf.value = {.kind = ValueKind::boolean, .number = truth ? 1U : 0U}, true);
        case '[':
            leaf.value = {.kind = ValueKind::empty};
            return leaf.schema->type == LeafType::empty && is_empty_value(value);
        default:
            return value.get_uint64().get(number) == simdjson::SUCCESS &&
                   number_value(*leaf.schema, number, leaf.value);
        }
    }

    /// `token` ends where the next one starts, so behind the quote stand blanks at
    /// most. Names and addresses are compared as they are written, without escapes.
    static bool take_string(json::value value, std::string_view token, Node &leaf) {
        std::string_view text;
        if (leaf.schema->type == LeafType::string) {
            return value.get_string().get(text) == simdjson::SUCCESS &&
                   text_value(*leaf.schema, text, leaf.value);
        }
        json::raw_json_string raw;
        token.remove_suffix(token.size() - 1 - token.rfind('"'));
        return value.get_raw_json_string().get(raw) == simdjson::SUCCESS && token.size() >= 2 &&
               text_value(*leaf.schema, token.substr(1, token.size() - 2), leaf.value);
    }

    /// The value of an empty leaf is [null] (RFC 7951, section 6.9).
    static bool is_empty_value(json::value value) {
        json::array array;
        if (value.get_array().get(array) != simdjson::SUCCESS) {
            return false;
        }
        std::size_t count = 0;
        for (auto element : array) {
            bool null = false;
            if (++count > 1 || element.is_null().get(null) != simdjson::SUCCESS || !null) {
                return false;
            }
        }
        return count == 1;
    }

    const std::string module_;
    json::parser parser_;
    std::vector<char> padded_;
    std::size_t members_ = 0;
};

class BulkReader final : public EntryReader {
  public:
    BulkReader(Modules &modules, Schema schema)
        : modules_(modules), schema_(schema), tree_(schema) {}

    ccv_yang_node *read(std::string_view text, const EntryKey &where) override {
        sure_ = text.size() <= max_entry_bytes &&
                tree_.assign(text, modules_.context().entry(schema_)) && take_sequence(where);
        if (!sure_) {
            return validating().read(text, where);
        }
        acl_ = where.acl;
        return &tree_.root();
    }

    [[nodiscard]] std::optional<std::uint32_t> sequence() const override {
        return sure_ ? sequence_ : validating_->sequence();
    }

    [[nodiscard]] DataError explain(std::uint32_t status) const override {
        if (!sure_) {
            return validating_->explain(status);
        }
        std::string path = entry_path(schema_, {acl_, sequence_});
        if (tree_.looked_at != nullptr) {
            path += tree_.path(*tree_.looked_at);
        }
        return {path, explanation(tree_, status)};
    }

  private:
    EntryReader &validating() {
        if (!validating_) {
            validating_ = make_validating_reader(modules_, schema_, Format::json);
        }
        return *validating_;
    }

    bool take_sequence(const EntryKey &where) {
        sequence_ = where.sequence;
        if (const EntryTree::Node *key = tree_.sequence()) {
            sequence_ = static_cast<std::uint32_t>(key->value.number);
        }
        return !where.sequence || where.sequence == sequence_;
    }

    Modules &modules_;
    const Schema schema_;
    BulkTree tree_;
    bool sure_ = false; // the entry last read is in tree_
    std::optional<std::string> acl_;
    std::optional<std::uint32_t> sequence_;
    std::unique_ptr<EntryReader> validating_;
};

} // namespace

std::unique_ptr<EntryReader> make_bulk_reader(Modules &modules, Schema schema) {
    return std::make_unique<BulkReader>(modules, schema);
}

} // namespace aceconv
