#include "host/json_scan.h"

#include <nlohmann/json.hpp>

namespace aceconv {

std::optional<std::string> json_string(std::string_view quoted) {
    const auto value = nlohmann::json::parse(quoted.begin(), quoted.end(), nullptr, false);
    return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

} // namespace aceconv
