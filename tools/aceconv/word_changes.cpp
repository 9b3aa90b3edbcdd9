#include "tools/aceconv/word_changes.h"

#include <cstdint>
#include <unordered_map>

#include "compare/common_subsequence.h"

namespace aceconv::tool {
namespace {

using Words = std::vector<std::string_view>;

Words words_of(std::string_view line) {
    Words words;
    std::size_t begin = 0;
    bool quoted = false;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        if (i == line.size() || (line[i] == ' ' && !quoted)) {
            if (i > begin) {
                words.push_back(line.substr(begin, i - begin));
            }
            begin = i + 1;
        } else if (line[i] == '\\' && quoted) {
            ++i; // a quote behind it ends nothing
        } else if (line[i] == '"') {
            quoted = !quoted;
        }
    }
    return words;
}

std::vector<LinePart> parts_of(const Words &words, const std::vector<bool> &common) {
    std::vector<LinePart> parts;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!parts.empty() && parts.back().changed != common[i]) {
            const char *const begin = parts.back().text.data();
            parts.back().text = {begin, words[i].data() + words[i].size()};
        } else {
            parts.push_back({words[i], !common[i]});
        }
    }
    return parts;
}

} // namespace

std::pair<std::vector<LinePart>, std::vector<LinePart>> word_changes(std::string_view before,
                                                                     std::string_view after) {
    const Words words[2] = {words_of(before), words_of(after)};
    std::vector<std::uint32_t> numbers[2];
    std::unordered_map<std::string_view, std::uint32_t> known;
    for (const int side : {0, 1}) {
        for (const std::string_view word : words[side]) {
            numbers[side].push_back(
                known.try_emplace(word, static_cast<std::uint32_t>(known.size())).first->second);
        }
    }
    std::vector<bool> common[2] = {std::vector<bool>(words[0].size()),
                                   std::vector<bool>(words[1].size())};
    for (const Matched &word : common_subsequence(numbers[0], numbers[1])) {
        common[0][word.a] = common[1][word.b] = true;
    }
    return {parts_of(words[0], common[0]), parts_of(words[1], common[1])};
}

} // namespace aceconv::tool
