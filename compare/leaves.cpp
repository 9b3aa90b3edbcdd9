#include "compare/leaves.h"

#include <algorithm>
#include <cstdlib>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <sstream>

#include "compare/record_fields.h"
#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::string_view list_names[] = {"udf"}; // all that are in entries

bool is_list(std::string_view name) {
    return std::find(std::begin(list_names), std::end(list_names), name) != std::end(list_names);
}

std::string below(const std::string &path, std::string_view name) {
    const std::size_t colon = name.find(':');
    const std::string_view local = colon == name.npos ? name : name.substr(colon + 1);
    return path.empty() ? std::string(local) : path + "/" + std::string(local);
}

void collect(const nlohmann::json &object, const std::string &path, Leaves &leaves) {
    for (const auto &[name, value] : object.items()) {
        const std::string here = below(path, name);
        if (value.is_object()) {
            leaves[here];
            collect(value, here, leaves);
        } else if (value.is_array() && !value.empty() && value.front().is_object()) {
            std::size_t index = 0;
            for (const auto &element : value) {
                collect(element, here + "[" + std::to_string(++index) + "]", leaves);
            }
        } else if (value.is_array()) { // [null], an empty leaf
            leaves[here];
        } else {
            leaves[here] = value.is_string() ? value.get<std::string>() : value.dump();
        }
    }
}

void collect(const xmlNode *parent, const std::string &path, Leaves &leaves) {
    std::size_t index = 0;
    for (const xmlNode *node = parent->children; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_NODE) {
            continue;
        }
        const std::string_view name = reinterpret_cast<const char *>(node->name);
        std::string here = below(path, name);
        if (is_list(name)) {
            here += "[" + std::to_string(++index) + "]";
        } else if (xmlChildElementCount(const_cast<xmlNode *>(node)) != 0) {
            leaves[here];
        }
        if (xmlChildElementCount(const_cast<xmlNode *>(node)) != 0) {
            collect(node, here, leaves);
            continue;
        }
        const std::unique_ptr<xmlChar, void (*)(xmlChar *)> text(xmlNodeGetContent(node),
                                                                 [](xmlChar *p) { xmlFree(p); });
        std::string value = text ? reinterpret_cast<const char *>(text.get()) : "";
        const bool blank = value.find_first_not_of(" \t\r\n") == value.npos;
        leaves[here] = blank ? "" : value; // an empty container may hold white space
    }
}

std::optional<std::uint64_t> number(const std::string &text, int radix = 0) {
    char *end = nullptr;
    const std::uint64_t value = std::strtoull(text.c_str(), &end, radix);
    return text.empty() || *end != '\0' ? std::nullopt : std::optional(value);
}

/// The words of a set of flags; "+syn" and "syn" say the same.
std::multiset<std::string> flag_words(const std::string &text) {
    std::multiset<std::string> words;
    std::istringstream stream(text);
    for (std::string word; stream >> word;) {
        words.insert(word.front() == '+' ? word.substr(1) : word);
    }
    return words;
}

/// Whether `name` stands for `value` in any table of the schema.
bool names(const std::string &name, std::uint64_t value, Schema schema) {
    for (const RecordField &field : record_fields()) {
        const auto *row = schema == Schema::base ? field.base_keywords : field.um_keywords;
        for (; row != nullptr && row->name != nullptr; ++row) {
            if (value == row->value && name == row->name) {
                return true;
            }
        }
    }
    return false;
}

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool same_value(const std::string &path, const std::string &a, const std::string &b,
                Schema schema) {
    if (a == b) {
        return true;
    }
    if (ends_with(path, "tcp-bits") || ends_with(path, "tcp-bits-mask")) {
        return flag_words(a) == flag_words(b);
    }
    const int radix = ends_with(path, "/udf-value") || ends_with(path, "/udf-mask") ? 16 : 0;
    const auto left = number(a, radix);
    const auto right = number(b, radix);
    if (left && right) {
        return *left == *right;
    }
    return (left && names(b, *left, schema)) || (right && names(a, *right, schema));
}

/// Whether the ICMP message's name in `after` says the number at `path`.
bool named_message(const std::string &path, const std::string &value, const Leaves &after) {
    const std::string icmp = path.substr(0, path.rfind('/'));
    const auto name = after.find(icmp + "/message-type-name");
    const bool code = ends_with(path, "icmp/message-code");
    if (name == after.end() || (!code && !ends_with(path, "icmp/message-type"))) {
        return false;
    }
    for (const auto *row = acl_yang_acl_icmp_type_code_um; row->name != nullptr; ++row) {
        if (name->second == row->name) {
            return number(value) == (code ? row->value & 0xFFFF : row->value >> 16);
        }
    }
    return false;
}

/// In the base schema containers say nothing by themselves: decoders write all of them.
bool is_bare_container(const std::string &path, const std::string &value, Schema schema) {
    const auto fields = record_fields();
    return schema == Schema::base && value.empty() &&
           std::none_of(fields.begin(), fields.end(), [&](const RecordField &field) {
               return field.base_leaf != nullptr && path == field.base_leaf;
           });
}

/// The path under which a decoder may write the same leaf.
std::string other_path(const std::string &path) {
    constexpr std::string_view host = "/host";
    return ends_with(path, host) ? path.substr(0, path.size() - host.size()) + "/address" : path;
}

} // namespace

Leaves leaves_of(std::string_view text, Format format) {
    Leaves leaves;
    if (format == Format::json) {
        collect(nlohmann::json::parse(text.begin(), text.end(), nullptr, false), "", leaves);
        return leaves;
    }
    const std::unique_ptr<xmlDoc, void (*)(xmlDoc *)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "", nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    if (document) {
        collect(xmlDocGetRootElement(document.get()), "", leaves);
    }
    return leaves;
}

std::vector<Change> lost_leaves(const Leaves &before, const Leaves &after, Schema schema) {
    std::vector<Change> changes;
    for (const auto &[path, value] : before) {
        if (path == "sequence-number" || is_bare_container(path, value, schema)) {
            continue;
        }
        auto found = after.find(path);
        if (found == after.end()) {
            found = after.find(other_path(path));
        }
        if (found != after.end() ? same_value(path, value, found->second, schema)
                                 : named_message(path, value, after)) {
            continue;
        }
        const auto shown = [](const std::string &text) {
            return text.empty() ? "present" : "\"" + printable(text) + "\"";
        };
        Change change;
        change.leaf = path;
        change.before = shown(value);
        if (found != after.end()) {
            change.after = shown(found->second);
        }
        change.reason = "not kept by the record";
        changes.push_back(std::move(change));
    }
    return changes;
}

std::vector<Change> lost_leaves(Codec &codec, const Entry &entry, Encoding encoding) {
    if (codec.gives_back(encoding, entry.schema, entry.key)) {
        return {};
    }
    std::string kept;
    codec.decode(encoding, entry.schema, Format::json, entry.key, kept);
    return lost_leaves(leaves_of(entry.text, *entry.format), leaves_of(kept, Format::json),
                       entry.schema);
}

} // namespace aceconv
