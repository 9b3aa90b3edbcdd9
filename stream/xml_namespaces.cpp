#include "stream/xml_namespaces.h"

#include <set>

#include "host/xml_parser.h"

namespace aceconv {
namespace {

/// The next word in front of a colon at or behind `at`, which moves behind it: a prefix, or a
/// text that looks like one. "" when there is none.
std::string_view next_prefix(std::string_view text, std::size_t &at) {
    constexpr std::string_view no_name = " \t\r\n<>/=\"':";
    const std::size_t colon = text.find(':', at);
    if (colon == text.npos) {
        at = text.size();
        return {};
    }
    std::size_t begin = colon;
    while (begin > at && no_name.find(text[begin - 1]) == no_name.npos) {
        --begin;
    }
    at = colon + 1;
    return text.substr(begin, colon - begin);
}

} // namespace

void XmlNamespaces::open(std::string_view prefix, std::string_view space) {
    spaces_[std::string(prefix)].emplace_back(space);
    bytes_ += prefix.size() + space.size();
    opened_.emplace_back(prefix);
}

void XmlNamespaces::close(std::string_view prefix) {
    const auto found = spaces_.find(prefix);
    bytes_ -= prefix.size() + found->second.back().size();
    found->second.pop_back();
    if (found->second.empty()) {
        spaces_.erase(found);
    }
}

// All of what is in force would make a long text of every short entry.
std::string XmlNamespaces::used_in(std::string_view text, const Prefixes &own) const {
    std::string attributes;
    std::set<std::string_view> declared(own.begin(), own.end());
    const auto declare = [&](std::string_view prefix) {
        const auto found = spaces_.find(prefix);
        if ((found == spaces_.end() && !prefix.empty()) || !declared.insert(prefix).second) {
            return;
        }
        attributes.append(prefix.empty() ? " xmlns" : " xmlns:").append(prefix).append("=\"");
        // Not that of whoever reads the element.
        attributes += found == spaces_.end() ? "" : xml_escaped(found->second.back());
        attributes += '"';
    };
    for (std::size_t at = 0; at < text.size();) {
        if (const std::string_view prefix = next_prefix(text, at); !prefix.empty()) {
            declare(prefix);
        }
    }
    declare("");
    return attributes;
}

} // namespace aceconv
