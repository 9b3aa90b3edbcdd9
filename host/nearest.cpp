#include "host/nearest.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

namespace aceconv {
namespace {

constexpr std::size_t longest_word = 64; // the work is the product of both lengths

bool same_letter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
}

/// How many letters to change, add, leave out or swap with the next one.
std::size_t distance(std::string_view from, std::string_view to) {
    // The distances of all beginnings of `to` from the last three beginnings of `from`.
    std::vector<std::size_t> before_last, last(to.size() + 1), now(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j) {
        now[j] = j;
    }
    for (std::size_t i = 1; i <= from.size(); ++i) {
        before_last = std::exchange(last, now);
        now[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const bool same = same_letter(from[i - 1], to[j - 1]);
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && same_letter(from[i - 1], to[j - 2]) &&
                same_letter(from[i - 2], to[j - 1])) {
                now[j] = std::min(now[j], before_last[j - 2] + 1);
            }
        }
    }
    return now[to.size()];
}

} // namespace

std::string nearest(std::string_view word, const std::vector<std::string> &names) {
    std::string found;
    if (word.size() > longest_word) {
        return found;
    }
    std::size_t least = std::max<std::size_t>(word.size() / 3, 1) + 1;
    for (const std::string &name : names) {
        const std::size_t steps = distance(word, name);
        if (steps < least) {
            least = steps;
            found = name;
        }
    }
    return found;
}

std::string did_you_mean(std::string_view word, const std::vector<std::string> &names) {
    const std::string meant = nearest(word, names);
    return meant.empty() ? "" : "; did you mean " + meant + "?";
}

} // namespace aceconv
