#include "compare/kept_nodes.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <set>

#include "host/entry_nodes.h"
#include "stream/text.h"

namespace aceconv {
namespace {

using Node = ccv_yang_node;

/// A node that the decoded nodes lack or have with another value.
struct Missing {
    Node *node;
    const Node *other; // with the other value, or null
};

// ---- Two spellings of one value that the leaf's type does not tell ------------

std::optional<std::uint32_t> hexadecimal_number(std::string_view text) {
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") {
        text.remove_prefix(2);
    }
    std::uint32_t number = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number, 16).ptr;
    return end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

/// The words of signed flag text; "+syn" and "syn" say the same.
std::set<std::string_view> flag_words(std::string_view text) {
    std::set<std::string_view> words;
    while (!text.empty()) {
        std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (!word.empty()) {
            words.insert(word.substr(word.front() == '+' ? 1 : 0));
        }
    }
    return words;
}

bool says_same(const Node &a, const Node &b) {
    if (same_value(a, b)) {
        return true;
    }
    const std::string_view name = node_name(a);
    if (name == "udf-value" || name == "udf-mask") {
        const auto number = hexadecimal_number(leaf_text(a));
        return number && number == hexadecimal_number(leaf_text(b));
    }
    if (name == "tcp-bits") {
        const std::string left = leaf_text(a);
        const std::string right = leaf_text(b);
        return flag_words(left) == flag_words(right);
    }
    return false;
}

// ---- What other leaves than its own may say ----------------------------------

std::optional<std::uint64_t> number_of(const Node &parent, std::string_view name) {
    const Node *leaf = child_named(parent, name);
    return leaf == nullptr ? std::nullopt : leaf_number(*leaf);
}

/// The ICMP message of the container, however it is written.
std::optional<std::uint64_t> icmp_message(const Node &icmp) {
    if (const auto message = number_of(icmp, "message-type-name")) {
        return message;
    }
    const auto type = number_of(icmp, "message-type");
    return type ? std::optional(*type << 16 | number_of(icmp, "message-code").value_or(0))
                : std::nullopt;
}

/// Whether the address of `side` is compared as a whole.
bool is_host(const Node &side) {
    const auto length = number_of(side, "prefix-length");
    const auto wildcard = number_of(side, "wildcard-mask");
    return length.value_or(32) == 32 && wildcard.value_or(0) == 0;
}

/// Whether the decoded nodes of `parent` say what `leaf`, which they lack, said.
bool said_otherwise(const Node &leaf, const Node &parent) {
    const std::string_view name = node_name(leaf);
    const auto number = leaf_number(leaf);
    if (name == "address") {
        return number == number_of(parent, "host");
    }
    if (name == "host") {
        return number == number_of(parent, "address") && is_host(parent);
    }
    const bool type = name == "message-type";
    if (!type && name != "message-code" && name != "message-type-name") {
        return false;
    }
    const auto message = icmp_message(parent);
    if (!message) {
        return false;
    }
    return number == (type                     ? *message >> 16
                      : name == "message-code" ? *message & 0xFFFF
                                               : *message);
}

// ---- The walk over both trees --------------------------------------------------

/// Looks for `node` and what is below it in `parent`, the decoded twin of the node
/// around it, or null. Containers of the base schema say nothing by themselves:
/// its decoder writes no empty ones.
void look_for(Node &node, const Node *parent, Schema schema, std::vector<Missing> &missing) {
    const Node *found = parent == nullptr ? nullptr : twin(*parent, node);
    if (is_leaf(node)) {
        const bool kept = found != nullptr ? says_same(node, *found)
                                           : parent != nullptr && said_otherwise(node, *parent);
        if (!kept) {
            missing.push_back({&node, found});
        }
        return;
    }
    if (found == nullptr && first_child(node) == nullptr && schema == Schema::um) {
        missing.push_back({&node, nullptr});
    }
    for (Node *child = first_child(node); child != nullptr; child = next_sibling(*child)) {
        look_for(*child, found, schema, missing);
    }
}

const Node *action_of(const Node &entry) {
    const Node *permit = child_named(entry, "permit");
    return permit != nullptr ? permit : child_named(entry, "deny");
}

std::vector<Missing> missing_nodes(const Node &entry, const Node &decoded, Schema schema) {
    std::vector<Missing> missing;
    for (Node *node = first_child(entry); node != nullptr; node = next_sibling(*node)) {
        if (node_name(*node) == "sequence-number") {
            continue;
        }
        if (schema == Schema::base || is_leaf(*node) || twin(decoded, *node) != nullptr) {
            look_for(*node, &decoded, schema, missing);
            continue;
        }
        // Both actions fill one record: what is in them is found under the one that stays.
        missing.push_back({node, nullptr});
        for (Node *child = first_child(*node); child != nullptr; child = next_sibling(*child)) {
            look_for(*child, action_of(decoded), schema, missing);
        }
    }
    return missing;
}

// ---- What the record has of a missing node -----------------------------------

/// The value of the part of a group; null when it is not marked.
const FieldValue *part_of(const std::vector<FieldValue> &values, Group group, Part part) {
    const auto found = std::find_if(values.begin(), values.end(), [&](const FieldValue &value) {
        return value.field != nullptr && value.field->group == group && value.field->part == part &&
               !value.bits.empty();
    });
    return found == values.end() ? nullptr : &*found;
}

/// What a value is compared by when nothing is said: equal, or all flags.
constexpr std::uint64_t plain_operation = 1;

/// Whether `own`, a value of a node's own, means the same among `all` of the record.
/// `clash` is what stands against it.
bool holds(const std::vector<FieldValue> &all, const std::vector<FieldValue> &alone,
           const FieldValue &own, std::string &clash) {
    const FieldValue *held = find_value(all, own.name);
    if (held == nullptr || !same_value(*held, own)) {
        clash = held == nullptr ? "no " + own.name : own.name + " " + value_text(*held);
        return false;
    }
    if (own.field == nullptr || own.field->group == Group::none) {
        return true;
    }
    const Group group = own.field->group;
    const FieldValue *mine = part_of(alone, group, Part::operation);
    const FieldValue *operation = part_of(all, group, Part::operation);
    if (operation != nullptr &&
        operation->number != (mine != nullptr ? mine->number : plain_operation)) {
        clash = operation->name + " " + value_text(*operation);
        return false;
    }
    const FieldValue *mask = part_of(all, group, Part::address_mask);
    if (own.field->part == Part::address && mask != nullptr) { // this was one host
        clash = mask->name + " " + value_text(*mask);
        return false;
    }
    return true;
}

std::string shown(const Node &node) {
    const std::string text = is_leaf(node) ? leaf_text(node) : "";
    return text.empty() ? "present" : "\"" + printable(text) + "\"";
}

TypedValue typed(const Node &node) {
    using Type = TypedValue::Type;
    switch (leaf_kind(node)) {
    case LeafKind::number:
        return {Type::number, *leaf_number(node)};
    case LeafKind::boolean:
        return {Type::boolean, *leaf_number(node)};
    case LeafKind::name:
        return {Type::keyword, leaf_number(node).value_or(0), leaf_text(node)};
    case LeafKind::address:
        return {Type::address, ntohl(static_cast<std::uint32_t>(*leaf_number(node))),
                leaf_text(node)};
    case LeafKind::text:
        return {Type::text, 0, leaf_text(node)};
    case LeafKind::none:
        break;
    }
    return {Type::present};
}

class Judge {
  public:
    Judge(Codec &codec, const RecordView &view, Schema schema, Encoding encoding)
        : codec_(codec), view_(view), schema_(schema), record_(described(encoding)) {}

    /// The loss of a missing node, or nothing when the record holds what it says.
    std::optional<Change> loss(const Missing &missing) {
        Change change;
        const std::vector<FieldValue> alone = alone_in_record(*missing.node);
        std::string clash;
        bool sets_any = false;
        for (const FieldValue &own : alone) {
            const bool is_action = own.field != nullptr && own.field->group == Group::action;
            if (is_action != is_action_container(*missing.node)) {
                continue;
            }
            sets_any = true;
            change.widens = change.widens || (own.field != nullptr && own.field->matches);
            if (clash.empty()) {
                holds(record_, alone, own, clash);
            }
        }
        if (missing.other == nullptr && sets_any && clash.empty()) {
            return std::nullopt;
        }
        change.leaf = node_path(*missing.node);
        change.before = shown(*missing.node);
        change.before_value = typed(*missing.node);
        if (missing.other != nullptr) {
            change.after = shown(*missing.other);
            change.after_value = typed(*missing.other);
        }
        change.reason = "not kept by the record: " + reason(*missing.node, sets_any, clash);
        return change;
    }

  private:
    std::vector<FieldValue> described(Encoding encoding) const {
        return view_.describe(DecodedRecord(codec_.descriptor(), encoding).get(), schema_);
    }

    static bool is_action_container(const Node &node) {
        return node_name(node) == "permit" || node_name(node) == "deny";
    }

    std::vector<FieldValue> alone_in_record(Node &node) const {
        const OnlyNode only(node);
        return described(codec_.encode_nodes(*codec_.nodes(), schema_));
    }

    static std::string reason(const Node &node, bool sets_any, const std::string &clash) {
        if (!clash.empty()) {
            return "it holds " + clash;
        }
        if (sets_any) { // and yet reads otherwise
            return "an unsigned flag behind a negative one counts as negative";
        }
        return node_name(node) == "any" ? "an address or a group is given"
                                        : "it stands for nothing";
    }

    Codec &codec_;
    const RecordView &view_;
    const Schema schema_;
    const std::vector<FieldValue> record_;
};

} // namespace

std::vector<Change> nodes_not_kept(Codec &codec, const RecordView &view, Schema schema,
                                   Encoding encoding, const Node &decoded) {
    std::vector<Change> losses;
    if (codec.nodes() == nullptr) {
        return losses;
    }
    const std::vector<Missing> missing = missing_nodes(*codec.nodes(), decoded, schema);
    if (missing.empty()) {
        return losses;
    }
    Judge judge(codec, view, schema, encoding);
    for (const Missing &node : missing) {
        if (auto loss = judge.loss(node)) {
            losses.push_back(std::move(*loss));
        }
    }
    return losses;
}

} // namespace aceconv
