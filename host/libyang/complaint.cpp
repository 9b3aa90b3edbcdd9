#include "host/libyang/complaint.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/schema/suggestion.h"

namespace aceconv {

namespace {

/// The next step of a data path with its predicates, taken off `path`.
std::string_view take_step(std::string_view &path) {
    std::size_t at = 1; // behind the slash
    while (at < path.size() && path[at] != '/') {
        if (path[at] == '\'' || path[at] == '"') {
            at = std::min(path.find(path[at], at + 1), path.size() - 1);
        }
        ++at;
    }
    const std::string_view step = path.substr(0, at);
    path.remove_prefix(at);
    return step;
}

/// Without slash, module prefix and predicates.
std::string_view step_name(std::string_view step) {
    step = step.substr(1, std::min(step.find('['), step.size()) - 1);
    return step.substr(step.find(':') + 1); // npos + 1 is 0
}

std::string_view between(std::string_view text, std::string_view start, std::string_view end) {
    const std::size_t from = text.find(start);
    if (from == std::string_view::npos) {
        return {};
    }
    text.remove_prefix(from + start.size());
    return text.substr(0, text.find(end));
}

/// At most about 200 bytes of `text`, not ending within a character.
std::string clipped(std::string_view text) {
    std::size_t length = 200;
    if (text.size() <= length) {
        return std::string(text);
    }
    while ((static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;
    }
    return std::string(text.substr(0, length)) + "...";
}

/// The value that the complaint is about, which may hold quotes; nothing when it is
/// about something else.
std::optional<std::string_view> value(std::string_view message) {
    constexpr std::string_view starts[] = {"Invalid ", "Value ", "Unsatisfied ", "Duplicate bit"};
    const std::size_t start = message.find('"') + 1; // npos + 1 is 0
    const bool about_value =
        std::any_of(std::begin(starts), std::end(starts), [&](std::string_view begin) {
            return message.substr(0, begin.size()) == begin;
        });
    if (start == 0 || !about_value) {
        return std::nullopt;
    }
    message = message.substr(0, message.find(" does not conform to"));
    message = message.substr(0, message.find(" - no matching subtype found"));
    return message.substr(start, message.rfind('"') - start);
}

std::string sentence(std::string_view message) {
    if (!message.empty() && message.back() == '.') {
        message.remove_suffix(1);
    }
    return clipped(message);
}

} // namespace

std::size_t levels_of(std::string_view path) {
    std::size_t levels = 0;
    for (; !path.empty(); ++levels) {
        (void)take_step(path);
    }
    return levels;
}

DataError complaint(const LibyangError &error, const SchemaNode &entry) {
    // Where libyang parses into a list, the path starts with the entry.
    std::string_view path = error.path;
    while (!path.empty() && step_name(take_step(path)) != "entry") {
    }
    std::string below(path);
    const SchemaNode *node = &entry;
    while (node != nullptr && !path.empty()) {
        node = node->find(step_name(take_step(path)));
    }
    const std::string_view message = error.message;
    if (node == nullptr) {
        return {below, sentence(message)};
    }
    if (node->kind == NodeKind::leaf) {
        const auto found = value(message);
        return {below, found ? value_refusal(*node, clipped(*found))
                             : sentence(message) + "; expected " + expected(*node)};
    }
    const std::string_view unknown = between(message, "Node \"", "\" not found");
    if (!unknown.empty()) {
        return {below.append("/").append(unknown), unknown_node(*node, unknown)};
    }
    // An array instead of an object, or the like; the node is the first word in quotes.
    const SchemaNode *child = node->find(between(message, " \"", "\""));
    if (child != nullptr && message.find("JSON name/") != std::string_view::npos) {
        return {below.append("/").append(child->name), child->kind == NodeKind::list
                                                           ? "expected an array of objects"
                                                           : "expected an object"};
    }
    return {below, sentence(message), error.line};
}

} // namespace aceconv
