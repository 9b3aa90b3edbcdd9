#include "stream/surroundings.h"

#include <algorithm>

#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::size_t most_names = 8;

std::string joined(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

} // namespace

bool is_error_text(std::string_view name) {
    return name == "error-tag" || name == "error-path" || name == "error-message";
}

void Surroundings::note(Names &names, std::string_view name) {
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.emplace_back(name);
    }
}

void Surroundings::stepped_over(std::string_view name) {
    ++others_;
    note(names_of_others_, printable(name));
    if (names_of_others_.size() > most_names) {
        names_of_others_.pop_back();
        more_names_ = true;
    }
}

void Surroundings::add(const Surroundings &other) {
    for (const std::string &name : other.wrappers_) {
        unwrapped(name);
    }
    const std::uint64_t others = others_ + other.others_;
    for (const std::string &name : other.names_of_others_) {
        stepped_over(name);
    }
    others_ = others;
    more_names_ = more_names_ || other.more_names_;
}

std::string Surroundings::text() const {
    std::string text;
    if (!wrappers_.empty()) {
        text = ", out of " + joined(wrappers_);
    }
    if (others_ != 0) {
        text += ", " + std::to_string(others_) +
                (others_ == 1 ? " node of another module" : " nodes of other modules") +
                " stepped over (" + joined(names_of_others_) + (more_names_ ? ", ..." : "") + ")";
    }
    return text;
}

} // namespace aceconv
