#include "compare/changes.h"

#include <nlohmann/json.hpp>

#include "compare/record_view.h"

namespace aceconv {

std::vector<Change> field_changes(const std::vector<Difference> &differences, Schema schema) {
    std::vector<Change> changes;
    for (const Difference &difference : differences) {
        const FieldValue &any = difference.any();
        Change change;
        change.field = any.name;
        const char *leaf = any.field == nullptr     ? nullptr
                           : schema == Schema::base ? any.field->base_leaf
                                                    : any.field->um_leaf;
        change.leaf = leaf == nullptr ? "" : leaf;
        if (difference.before) {
            change.before = value_text(*difference.before);
        }
        if (difference.after) {
            change.after = value_text(*difference.after);
        }
        if (change.before == change.after) {
            change.reason = "presence bits " + bits_text(difference.before->bits) + " -> " +
                            bits_text(difference.after->bits);
        }
        changes.push_back(std::move(change));
    }
    return changes;
}

std::string change_text(const Change &change) {
    std::string text = change.field.empty() ? change.leaf : change.field;
    if (!change.field.empty() && !change.leaf.empty()) {
        text += " (" + change.leaf + ")";
    }
    text += ": " + change.before.value_or("absent") + " -> " + change.after.value_or("absent");
    return change.reason.empty() ? text : text + "; " + change.reason;
}

std::string change_json(const Change &change, const Entry &entry) {
    using Json = nlohmann::ordered_json;
    const auto text = [](const auto &value) { return value ? Json(*value) : Json(); };
    Json row = {{"acl", text(entry.key.acl)}, {"sequence", text(entry.key.sequence)}};
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
    return row.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace aceconv
