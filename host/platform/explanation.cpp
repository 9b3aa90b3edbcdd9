#include "host/platform/backend.h"

namespace aceconv {

namespace {

std::string found_value(const ccv_yang_node &node) {
    switch (node.value.kind) {
    case ValueKind::none:
    case ValueKind::empty:
        return "";
    case ValueKind::number:
        return std::to_string(node.value.number);
    case ValueKind::boolean:
        return node.value.number != 0 ? "true" : "false";
    default:
        return '"' + std::string(node.value.text) + '"';
    }
}

std::string wanted_text(const Wanted &wanted) {
    if (wanted.table != nullptr) {
        std::string text = "one of: ";
        for (const ccv_yang_keyword *row = wanted.table; row->name != nullptr; ++row) {
            text += row == wanted.table ? "" : ", ";
            text += row->name;
        }
        return text;
    }
    return wanted.what != nullptr ? wanted.what : "a number 0 to " + std::to_string(wanted.largest);
}

} // namespace

std::string explanation(const WalkedEntry &entry, std::uint32_t status) {
    std::string text = status_text(status);
    if (entry.looked_at == nullptr || known_status(status) == nullptr) {
        return text;
    }
    const std::string found = found_value(*entry.looked_at);
    if (!found.empty()) {
        text += ": " + found;
    }
    if (status >= code(YangStatus::wrong_type) && status <= code(YangStatus::no_keyword)) {
        text += "; expected " + wanted_text(entry.wanted);
    }
    return text;
}

} // namespace aceconv
