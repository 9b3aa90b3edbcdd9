// Where the tokens of a JSON text start, found by the first stage of simdjson.
#pragma once

#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace aceconv {

/// Indexes a copy of a text. Strings, numbers and words are there with their first
/// character, and every bracket, colon and comma outside strings; whatever else stands
/// between strings, but for blanks, is a token too. Between two tokens lie the rest of the
/// first, then blanks.
class TokenIndex {
  public:
    /// Points at the place of its first character.
    using Token = const std::uint32_t *;

    /// False for a text without tokens, with bad UTF-8, control characters inside a string
    /// or a string that does not end.
    bool assign(std::string_view text) {
        if (text.size() + simdjson::SIMDJSON_PADDING > padded_.size()) {
            padded_.resize(2 * (text.size() + simdjson::SIMDJSON_PADDING));
        }
        std::memcpy(padded_.data(), text.data(), text.size());
        std::memset(padded_.data() + text.size(), 0, simdjson::SIMDJSON_PADDING);
        return make_room(text.size()) &&
               stages_->stage1(reinterpret_cast<const std::uint8_t *>(padded_.data()), text.size(),
                               simdjson::stage1_mode::regular) == simdjson::SUCCESS;
    }

    /// The copy, with zeros behind it.
    [[nodiscard]] const char *text() const { return padded_.data(); }
    /// Behind the last token stand two with the text's size.
    [[nodiscard]] Token begin() const { return stages_->structural_indexes.get(); }
    [[nodiscard]] Token end() const { return begin() + stages_->n_structural_indexes; }

  private:
    bool make_room(std::size_t size) {
        constexpr std::size_t least = 4096;
        return (stages_ && stages_->capacity() >= size) ||
               simdjson::get_active_implementation()->create_dom_parser_implementation(
                   std::max(2 * size, least), 1, stages_) == simdjson::SUCCESS;
    }

    std::vector<char> padded_;
    std::unique_ptr<simdjson::internal::dom_parser_implementation> stages_;
};

} // namespace aceconv
