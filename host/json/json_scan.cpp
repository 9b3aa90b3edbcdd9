#include "host/json_scan.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace aceconv {
namespace {

/// ASCII that stands for itself.
bool is_plain(char c) {
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
}

} // namespace

std::optional<std::string> json_string(std::string_view quoted) {
    const std::string_view content = quoted.substr(1, quoted.size() - 2);
    if (std::all_of(content.begin(), content.end(), is_plain)) {
        return std::string(content);
    }
    const auto value = nlohmann::json::parse(quoted.begin(), quoted.end(), nullptr, false);
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

std::optional<std::size_t> json_fault(std::string_view text) {
    using nlohmann::json;
    const auto keep_nothing = [](int, json::parse_event_t, json &) { return false; };
    try {
        (void)json::parse(text.begin(), text.end(), keep_nothing).is_discarded();
    } catch (const json::parse_error &error) {
        return error.byte > 0 ? error.byte - 1 : 0;
    }
    return std::nullopt;
}

std::string json_quoted(std::string_view text) {
    return nlohmann::json(text).dump();
}

} // namespace aceconv
