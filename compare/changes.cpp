#include "compare/changes.h"

#include <nlohmann/json.hpp>

namespace aceconv {

std::string change_text(const Change &change) {
    std::string text = change.field.empty() ? change.leaf : change.field;
    if (!change.field.empty() && !change.leaf.empty()) {
        text += " (" + change.leaf + ")";
    }
    text += ": " + change.before.value_or("absent") + " -> " + change.after.value_or("absent");
    text += change.reason.empty() ? "" : "; " + change.reason;
    return text + (change.widens ? "; matches more than before" : "");
}

std::string change_json(const Change &change, const Entry &entry, const std::string &file) {
    using Json = nlohmann::ordered_json;
    const auto text = [](const auto &value) { return value ? Json(*value) : Json(); };
    Json row;
    if (!file.empty()) {
        row["file"] = file;
    }
    row["acl"] = text(entry.key.acl);
    row["sequence"] = text(entry.key.sequence);
    if (entry.position.line != 0) {
        row["line"] = entry.position.line;
    }
    if (!change.field.empty()) {
        row["field"] = change.field;
    }
    if (!change.leaf.empty()) {
        row["leaf"] = change.leaf;
    }
    row["before"] = text(change.before);
    row["after"] = text(change.after);
    if (!change.reason.empty()) {
        row["reason"] = change.reason;
    }
    row["widens"] = change.widens;
    return row.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace aceconv
