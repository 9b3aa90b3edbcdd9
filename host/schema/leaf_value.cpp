#include "host/schema/leaf_value.h"

#include <libyang/libyang.h>
#include <libyang/plugins_types.h>

#include <algorithm>
#include <limits>

#include "host/schema/ipv4_text.h"
#include "host/schema/modules.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

bool is_name(const SchemaNode &leaf, std::string_view text) {
    return std::any_of(leaf.names.begin(), leaf.names.end(), [&](const SchemaNode::Name &name) {
        // Most names differ in their first character.
        return !text.empty() && text.front() == name.text.front() && text == name.text;
    });
}

/// Names of bits by ascending position, separated by single blanks.
bool is_canonical_set(const SchemaNode &leaf, std::string_view text) {
    auto next = leaf.names.begin();
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        next = std::find_if(next, leaf.names.end(),
                            [&](const SchemaNode::Name &name) { return word == name.text; });
        if (next == leaf.names.end()) {
            return false;
        }
        ++next;
        if (word.size() == text.size()) {
            return true;
        }
        text.remove_prefix(word.size() + 1);
        if (text.empty()) { // a trailing blank
            return false;
        }
    }
    return true;
}

bool matches_pattern(const SchemaNode &leaf, std::string_view text) {
    if (leaf.plain_pattern) {
        if (!leaf.form) {
            leaf.form = TextForm::of(leaf.pattern);
        }
        return leaf.form->fits(text);
    }
    const lysc_type *type = reinterpret_cast<const lysc_node_leaf &>(compiled_node(leaf)).type;
    ly_err_item *error = nullptr;
    const LY_ERR result = lyplg_type_validate_patterns(
        reinterpret_cast<const lysc_type_str *>(type)->patterns, text.data(), text.size(), &error);
    ly_err_free(error);
    return result == LY_SUCCESS;
}

/// Characters, not bytes, of valid UTF-8.
std::size_t length(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

} // namespace

bool takes_text(const SchemaNode &leaf, std::string_view text) {
    const bool any_length =
        leaf.smallest == 0 && leaf.largest == std::numeric_limits<std::uint64_t>::max();
    if (!any_length) {
        const std::size_t characters = length(text);
        if (characters < leaf.smallest || characters > leaf.largest) {
            return false;
        }
    }
    return leaf.pattern.empty() || matches_pattern(leaf, text);
}

bool text_value(const SchemaNode &leaf, std::string_view text, Value &value) {
    value.text = text;
    switch (leaf.type) {
    case LeafType::string:
        value.kind = ValueKind::text;
        return text_fault(text) == nullptr && takes_text(leaf, text);
    case LeafType::enumeration:
    case LeafType::name_or_number:
        value.kind = ValueKind::name;
        return is_name(leaf, text);
    case LeafType::bits:
        value.kind = ValueKind::bits;
        return is_canonical_set(leaf, text);
    case LeafType::ipv4:
        return ipv4_value(text, value);
    default:
        return false;
    }
}

bool takes_emitted_text(const SchemaNode &leaf, const Value &value, std::string &why) {
    Value taken;
    // An emitter has looked at the characters.
    const bool takes = leaf.type == LeafType::string ? takes_text(leaf, value.text)
                                                     : text_value(leaf, value.text, taken);
    if (!takes) {
        why = not_taken(leaf, value.text);
    }
    return takes;
}

std::string not_taken(const SchemaNode &leaf, std::string_view text) {
    return '"' + std::string(text) + "\"; expected " + expected(leaf);
}

bool ipv4_value(std::string_view text, Value &value) {
    std::uint32_t address = 0;
    const bool taken = read_ipv4(text, address);
    value = {.kind = ValueKind::ipv4, .text = text, .number = address};
    return taken;
}

bool number_value(const SchemaNode &leaf, std::uint64_t number, Value &value) {
    value = {.kind = ValueKind::number, .number = number};
    return (leaf.type == LeafType::number || leaf.type == LeafType::name_or_number) &&
           number >= leaf.smallest && number <= leaf.largest;
}

} // namespace aceconv
