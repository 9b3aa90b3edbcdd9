#include "tools/aceconv/list_names.h"

#include "stream/errors.h"

namespace aceconv::tool {
namespace {

/// The names on either side of the first '=' without a backslash.
std::pair<std::string, std::string> names_of(const std::string &text) {
    std::string names[2];
    std::size_t side = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '=' && side == 0) {
            side = 1;
            continue;
        }
        const bool escapes =
            text[i] == '\\' && i + 1 < text.size() && (text[i + 1] == '=' || text[i + 1] == '\\');
        i += escapes ? 1 : 0;
        names[side] += text[i];
    }
    if (names[0].empty() || names[1].empty()) {
        throw UsageError("--acl " + text + ": expected OLD=NEW, the names of a list in A and in B");
    }
    return {names[0], names[1]};
}

} // namespace

ListNames::ListNames(const std::vector<std::string> &renamed) {
    for (const std::string &text : renamed) {
        const auto [before, after] = names_of(text);
        if (!new_names_.emplace(before, after).second ||
            !old_names_.emplace(after, before).second) {
            throw UsageError("--acl " + text +
                             ": a list can be renamed once, and to a name of its own");
        }
        missing_[0].insert(before);
        missing_[1].insert(after);
    }
}

ListNames::Name ListNames::compared(Which which, const Name &name) const {
    if (!name || which == Which::b) {
        return name;
    }
    if (const auto renamed = new_names_.find(*name); renamed != new_names_.end()) {
        return renamed->second;
    }
    return old_names_.contains(*name) ? *name + '\0' : name; // no name has such a character
}

ListNames::Name ListNames::in_a(Which which, const Name &name) const {
    if (!name || which == Which::a) {
        return name;
    }
    const auto renamed = old_names_.find(*name);
    return renamed == old_names_.end() ? name : renamed->second;
}

void ListNames::see(Which which, const Name &name) {
    if (auto &missing = missing_[static_cast<int>(which)]; name && !missing.empty()) {
        missing.erase(*name);
    }
}

std::vector<std::string> ListNames::missing(Which which) const {
    const auto &missing = missing_[static_cast<int>(which)];
    return {missing.begin(), missing.end()};
}

} // namespace aceconv::tool
