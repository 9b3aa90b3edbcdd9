#include "host/schema/suggestion.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "host/nearest.h"
#include "host/schema/leaf_value.h"

namespace aceconv {

namespace {

/// What people say where the modules have another word; either may be spelled in
/// more than one way.
constexpr std::string_view everyday_words[][2] = {
    {"http", "www"},     {"domain", "dns"},    {"dhcp", "bootps"}, {"ike", "isakmp"},
    {"ping", "echo"},    {"ipip", "ip-in-ip"}, {"any", "ip"},      {"ip", "ipv4"},
    {"allow", "permit"}, {"accept", "permit"}, {"drop", "deny"},   {"block", "deny"},
    {"reject", "deny"},  {"reset", "rst"},     {"push", "psh"},    {"urgent", "urg"},
};

std::string meant_name(const SchemaNode &leaf, std::string_view word) {
    std::vector<std::string> names;
    for (const SchemaNode::Name &name : leaf.names) {
        if (name.text == word) {
            return "";
        }
        names.emplace_back(name.text);
    }
    for (const auto &[said, name] : everyday_words) {
        std::string meant = word == said ? did_you_mean(name, names) : "";
        if (!meant.empty()) {
            return meant;
        }
    }
    return did_you_mean(word, names);
}

/// Whether `text` can be a JSON value without quotes.
bool is_bare(std::string_view text) {
    double number = 0;
    const char *end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data(), end, number);
    return text == "true" || text == "false" ||
           (behind == end && error != std::errc::invalid_argument);
}

/// Whether the leaf takes `found` as a JSON number or truth value.
bool takes_bare(const SchemaNode &leaf, std::string_view found) {
    if (leaf.type == LeafType::boolean) {
        return found == "true" || found == "false";
    }
    std::uint64_t number = 0;
    const char *end = found.data() + found.size();
    const auto [behind, error] = std::from_chars(found.data(), end, number);
    Value value;
    return behind == end && error == std::errc{} && number_value(leaf, number, value);
}

/// `found` as it stands in the text. JSON's kinds of values are told from what the
/// leaf would have taken.
std::string shown(const SchemaNode &leaf, std::string_view found) {
    Value value;
    const std::string text(found);
    if (found.empty()) {
        return "an empty value";
    }
    if (takes_bare(leaf, found)) {
        return text + " in quotes";
    }
    if (leaf.type == LeafType::bits && text_value(leaf, found, value)) {
        return '"' + text + "\" twice";
    }
    if (text_value(leaf, found, value)) {
        return text + " without quotes";
    }
    return is_bare(found) ? text : '"' + text + '"';
}

/// The first node of this name below `parent`, as a path from there; "" for none.
std::string path_to(const SchemaNode &parent, std::string_view name) {
    for (const SchemaNode &child : parent.children) {
        if (child.key == name) {
            return child.name;
        }
        if (const std::string path = path_to(child, name); !path.empty()) {
            return std::string(child.name) + '/' + path;
        }
    }
    return "";
}

} // namespace

std::string value_refusal(const SchemaNode &leaf, std::string_view found) {
    return shown(leaf, found) + "; expected " + expected(leaf) + meant_name(leaf, found);
}

std::string unknown_node(const SchemaNode &parent, std::string_view name) {
    std::vector<std::string> names;
    for (const SchemaNode &child : parent.children) {
        names.emplace_back(child.name);
    }
    std::string meant = did_you_mean(name, names);
    if (const std::string path = path_to(parent, name); meant.empty() && !path.empty()) {
        meant = "; did you mean " + path + '?';
    }
    return "unknown node" + meant;
}

} // namespace aceconv
