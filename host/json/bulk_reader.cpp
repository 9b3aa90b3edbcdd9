// The bulk backend's reader: one pass over an entry's text, checked against the module's
// compiled form.
//
// simdjson says where the text's tokens start (TokenIndex); the pass goes from token to
// token and makes a node of each member, so it looks at what stands between two tokens only
// where a value is read. The index is without gaps: a token is a bracket, a colon, a comma,
// a string, or a run of other characters, and nothing but blanks stands behind one. simdjson
// refuses bad UTF-8 and control characters inside strings, and each string is a name of the
// module or checked as a value. Names of members and of values are looked up in the tables
// of the schema (NameTable) as they are written; none holds an escape.
//
// It takes only what it is sure that the validating reader takes, with the same values.
// Whatever else a text holds (a fault, or a rare way of writing) is read again by the
// validating reader, whose verdict and message hold: so both backends accept and refuse
// the same texts.
#include <algorithm>
#include <deque>

#include "host/data_path.h"
#include "host/json/token_index.h"
#include "host/json_scan.h"
#include "host/platform/entry_tree.h"
#include "host/schema/entry_text.h"
#include "host/schema/leaf_value.h"
#include "host/schema/modules.h"

namespace aceconv {

namespace {

constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// The entry's nodes from JSON text; the values point into the copy that is indexed.
class BulkTree final : public EntryTree {
  public:
    explicit BulkTree(Schema schema) : module_(std::string(module_name(schema)) + ':') {}

    void look_ahead(std::span<const std::string_view> texts) {
        constexpr std::size_t most_bytes = std::size_t{1} << 17;
        ahead_.clear();
        next_ = 0;
        many_.clear();
        std::size_t bytes = 0;
        for (const std::string_view text : texts) {
            bytes += text.size();
            if (bytes > most_bytes) {
                break;
            }
            ahead_.push_back({text, many_.add(text)});
        }
        if (ahead_.empty() || !many_.find_tokens()) {
            ahead_.clear(); // one of them is bad, so that each has to be looked at by itself
        } else {
            behind_ = many_.begin();
        }
    }

    /// False for a text that has to be read the other way.
    bool assign(std::string_view text, const SchemaNode &entry) {
        // No node is shorter than a list entry "{},", and half of them are members at least.
        restart(2 + std::min(text.size() / 2, 2 * max_entry_nodes));
        unescaped_.clear();
        members_ = 0;
        if (next_ != ahead_.size() && ahead_[next_].text.data() == text.data() &&
            ahead_[next_].text.size() == text.size()) {
            const std::uint32_t begin = ahead_[next_++].begin;
            // Behind the text before it, unless that was not read to its end.
            const Token first =
                *behind_ == begin ? behind_ : std::lower_bound(many_.begin(), many_.end(), begin);
            const Token behind = take_entry(many_, first, begin + text.size(), entry);
            behind_ = behind != nullptr ? behind : first;
            return behind != nullptr;
        }
        one_.clear();
        one_.add(text);
        return one_.find_tokens() && take_entry(one_, one_.begin(), text.size(), entry) != nullptr;
    }

    /// The entry's key when the text has one.
    [[nodiscard]] const Node *sequence() {
        const Node *first = root().child;
        return first != nullptr && first->schema->place == 0 ? first : nullptr;
    }

  private:
    // What takes something is given its first token and returns the token behind it, or null
    // for a text that has to be read the other way. Behind the last token stands one that
    // nothing takes.
    using Token = TokenIndex::Token;

    /// All tokens before `end`, where the entry's text ends.
    Token take_entry(const TokenIndex &tokens, Token token, std::size_t end,
                     const SchemaNode &entry) {
        text_ = tokens.text();
        token = take_object(token, add(entry, nullptr, NodeForm::entry));
        return token != nullptr && token[-1] < end && *token >= end ? token : nullptr;
    }

    [[nodiscard]] char mark(Token token) const { return text_[*token]; }

    /// One token, of which all up to `end` has been read: nothing else may be there.
    Token take_rest(Token token, const char *end) const {
        const char *const next = text_ + token[1];
        while (end != next) {
            if (!is_blank(*end++)) {
                return nullptr;
            }
        }
        return token + 1;
    }

    /// A string; `content` is what stands between its quotes, as it is written.
    Token take_string(Token token, std::string_view &content) const {
        const char *const open = text_ + token[0];
        const char *close = text_ + token[1] - 1;
        while (*close != '"') {
            if (!is_blank(*close--)) {
                return nullptr;
            }
        }
        content = {open + 1, static_cast<std::size_t>(close - open - 1)};
        return *open == '"' && close != open ? token + 1 : nullptr;
    }

    /// The child that a member names, with or without the module's prefix.
    [[nodiscard]] const SchemaNode *child(const SchemaNode &parent, std::string_view name) const {
        const SchemaNode *found = parent.child(name);
        return found == nullptr && name.substr(0, module_.size()) == module_
                   ? parent.child(name.substr(module_.size()))
                   : found;
    }

    Token take_object(Token token, Node &node) {
        if (mark(token) != '{') {
            return nullptr;
        }
        if (mark(++token) == '}') {
            return token + 1;
        }
        const SchemaNode &schema = *node.schema;
        std::uint64_t given = 0;
        for (;;) {
            std::string_view name;
            token = take_string(token, name);
            if (token == nullptr || mark(token) != ':' || ++members_ > max_entry_nodes) {
                return nullptr;
            }
            const SchemaNode *member = child(schema, name);
            if (member == nullptr || (given >> member->place & 1U) != 0) {
                return nullptr;
            }
            given |= std::uint64_t{1} << member->place;
            token = take_member(token + 1, *member, node);
            if (token == nullptr || mark(token) != ',') {
                return token != nullptr && mark(token) == '}' ? token + 1 : nullptr;
            }
            ++token;
        }
    }

    Token take_member(Token token, const SchemaNode &schema, Node &parent) {
        if (schema.kind == NodeKind::leaf) {
            return take_leaf(token, add(schema, &parent, NodeForm::leaf));
        }
        return schema.kind == NodeKind::container
                   ? take_object(token, add(schema, &parent, NodeForm::container))
                   : take_list(token, add(schema, &parent, NodeForm::list));
    }

    /// An array of one object at least.
    Token take_list(Token token, Node &list) {
        if (mark(token) != '[') {
            return nullptr;
        }
        do {
            Node &entry = add(*list.schema, &list, NodeForm::list_entry);
            ++list.entries;
            token = take_object(token + 1, entry);
            if (token == nullptr || entry.child == nullptr || entry.child->schema->place != 0) {
                return nullptr;
            }
        } while (mark(token) == ',');
        return mark(token) == ']' && list.entries <= list.schema->most_entries &&
                       repeated_key(list) == nullptr
                   ? token + 1
                   : nullptr;
    }

    Token take_leaf(Token token, Node &leaf) {
        switch (leaf.schema->type) {
        case LeafType::number:
            return take_number(token, leaf);
        case LeafType::name_or_number:
            return mark(token) == '"' ? take_name(token, leaf) : take_number(token, leaf);
        case LeafType::enumeration:
            return take_name(token, leaf);
        case LeafType::boolean:
            leaf.value = {.kind = ValueKind::boolean, .number = mark(token) == 't' ? 1U : 0U};
            return take_word(token, leaf.value.number != 0 ? "true" : "false");
        case LeafType::empty: // as [null] (RFC 7951, section 6.9)
            leaf.value = {.kind = ValueKind::empty};
            token = mark(token) == '[' ? take_word(token + 1, "null") : nullptr;
            return token != nullptr && mark(token) == ']' ? token + 1 : nullptr;
        default:
            return take_text(token, leaf);
        }
    }

    Token take_word(Token token, std::string_view word) const {
        const char *const start = text_ + *token;
        return std::string_view(start, word.size()) == word ? take_rest(token, start + word.size())
                                                            : nullptr;
    }

    Token take_number(Token token, Node &leaf) const {
        constexpr std::ptrdiff_t most_digits = 18; // of which no number is too large
        const char *const start = text_ + *token;
        const char *end = start;
        std::uint64_t number = 0;
        for (unsigned digit = 0; (digit = static_cast<unsigned char>(*end) - '0') <= 9; ++end) {
            number = number * 10 + digit;
        }
        return end != start && end - start <= most_digits && (*start != '0' || end == start + 1) &&
                       number_value(*leaf.schema, number, leaf.value)
                   ? take_rest(token, end)
                   : nullptr;
    }

    Token take_name(Token token, Node &leaf) const {
        leaf.value.kind = ValueKind::name;
        token = take_string(token, leaf.value.text);
        if (token == nullptr) {
            return nullptr;
        }
        const std::size_t place = leaf.schema->name_place(leaf.value.text);
        leaf.name = static_cast<std::uint16_t>(place + 1);
        return place != NameTable::none ? token : nullptr;
    }

    Token take_text(Token token, Node &leaf) {
        const SchemaNode &schema = *leaf.schema;
        std::string_view text;
        token = take_string(token, text);
        return token != nullptr && (schema.type != LeafType::string || unescape(text)) &&
                       text_value(schema, text, leaf.value)
                   ? token
                   : nullptr;
    }

    /// Replaces what stands in a string by its value.
    bool unescape(std::string_view &text) {
        if (text.find('\\') == std::string_view::npos) {
            return true;
        }
        const auto value = json_string({text.data() - 1, text.size() + 2});
        if (value) {
            text = unescaped_.emplace_back(*value);
        }
        return value.has_value();
    }

    const std::string module_;
    struct Ahead {
        std::string_view text;
        std::uint32_t begin; // in the index
    };
    TokenIndex many_; // of the texts to come
    std::vector<Ahead> ahead_;
    std::size_t next_ = 0;              // of them
    Token behind_ = nullptr;            // what was last taken of them
    TokenIndex one_;                    // of any other text
    const char *text_ = nullptr;        // that is being read
    std::deque<std::string> unescaped_; // values of strings with escapes
    std::size_t members_ = 0;
};

class BulkReader final : public EntryReader {
  public:
    BulkReader(Modules &modules, Schema schema)
        : modules_(modules), schema_(schema), tree_(schema) {}

    void look_ahead(std::span<const std::string_view> texts) override { tree_.look_ahead(texts); }

    ccv_yang_node *read(std::string_view text, const EntryKey &where) override {
        sure_ = text.size() <= max_entry_bytes &&
                tree_.assign(text, modules_.context().entry(schema_)) && take_sequence(where);
        if (!sure_) {
            return validating().read(text, where);
        }
        if (acl_ != where.acl) {
            acl_ = where.acl;
        }
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
