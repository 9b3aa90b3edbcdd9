#include "host/schema/text_form.h"

#include <charconv>
#include <limits>

namespace aceconv {

namespace {

constexpr std::size_t any_number = std::numeric_limits<std::size_t>::max();
constexpr std::size_t most_groups = 3;

/// A character that stands for itself, in a set and outside.
bool is_plain(char c) {
    return c >= ' ' && c <= '~' &&
           std::string_view("\\.^$|?*+(){}[]").find(c) == std::string_view::npos;
}

bool take(std::string_view &text, char c) {
    const bool comes = !text.empty() && text.front() == c;
    text.remove_prefix(comes ? 1 : 0);
    return comes;
}

bool take_number(std::string_view &text, std::size_t &number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

} // namespace

std::optional<TextForm> TextForm::of(std::string_view pattern) {
    TextForm form;
    form.ways_.emplace_back();
    std::size_t groups = 0;
    while (!pattern.empty()) {
        const bool is_group = take(pattern, '(');
        Steps steps;
        do {
            if (!take_step(pattern, steps.emplace_back())) {
                return std::nullopt;
            }
        } while (is_group && !take(pattern, ')'));
        if (is_group && (++groups > most_groups || !take(pattern, '?'))) {
            return std::nullopt;
        }
        const std::size_t without = is_group ? form.ways_.size() : 0;
        for (std::size_t way = 0; way < without; ++way) {
            form.ways_.push_back(form.ways_[way]);
        }
        for (std::size_t way = without; way < form.ways_.size(); ++way) {
            form.ways_[way].insert(form.ways_[way].end(), steps.begin(), steps.end());
        }
    }
    return form;
}

bool TextForm::take_step(std::string_view &pattern, Step &step) {
    return take_set(pattern, step) && take_quantifier(pattern, step);
}

/// One character or several in brackets.
bool TextForm::take_set(std::string_view &pattern, Step &step) {
    step.set = {};
    const bool several = take(pattern, '[');
    do {
        if (pattern.empty() || !is_plain(pattern.front()) || (several && pattern.front() == '-')) {
            return false;
        }
        const char first = pattern.front();
        pattern.remove_prefix(1);
        char last = first;
        if (several && take(pattern, '-')) {
            if (pattern.empty() || !is_plain(pattern.front()) || pattern.front() < first) {
                return false;
            }
            last = pattern.front();
            pattern.remove_prefix(1);
        }
        for (auto code = static_cast<unsigned char>(first); code <= last; ++code) {
            step.set[code / 64U] |= std::uint64_t{1} << code % 64;
        }
    } while (several && !take(pattern, ']'));
    return true;
}

bool TextForm::take_quantifier(std::string_view &pattern, Step &step) {
    step.least = step.most = 1;
    if (take(pattern, '?')) {
        step.least = 0;
    } else if (take(pattern, '*')) {
        step.least = 0;
        step.most = any_number;
    } else if (take(pattern, '+')) {
        step.most = any_number;
    } else if (take(pattern, '{')) {
        if (!take_number(pattern, step.least)) {
            return false;
        }
        step.most = step.least;
        if (take(pattern, ',') && !take_number(pattern, step.most)) {
            step.most = any_number;
        }
        return take(pattern, '}') && step.least <= step.most;
    }
    return true;
}

bool TextForm::fits(std::string_view text) const {
    for (const Steps &steps : ways_) {
        if (fits(steps, text)) {
            return true;
        }
    }
    return false;
}

bool TextForm::fits(std::span<const Step> steps, std::string_view text) {
    if (steps.empty()) {
        return text.empty();
    }
    const Step &step = steps.front();
    const auto holds = [&step](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code < 128 && (step.set[code / 64] >> code % 64 & 1U) != 0;
    };
    std::size_t run = 0;
    while (run < text.size() && run < step.most && holds(text[run])) {
        ++run;
    }
    for (std::size_t taken = run + 1; taken-- > step.least;) {
        if (fits(steps.subspan(1), text.substr(taken))) {
            return true;
        }
    }
    return false;
}

} // namespace aceconv
