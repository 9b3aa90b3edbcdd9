// Where the tokens of a JSON text start, found by the first stage of simdjson.
#pragma once

#define SIMDJSON_EXCEPTIONS 0
#include <simdjson.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace aceconv {

/// Indexes copies of texts, which stand one behind the other, a line each. Strings, numbers
/// and words are there with their first character, and every bracket, colon and comma outside
/// strings; whatever else stands between strings, but for blanks, is a token too. Between two
/// tokens lie the rest of the first, then blanks.
class TokenIndex {
  public:
    /// Points at the place of its first character.
    using Token = const std::uint32_t *;

    void clear() { size_ = 0; }
    /// Adds a text, which begins at the place that is returned.
    std::uint32_t add(std::string_view text) {
        const std::size_t begin = size_;
        if (begin + text.size() + simdjson::SIMDJSON_PADDING >= bytes_.size()) {
            bytes_.resize(bytes_.size() + text.size() + least_room);
        }
        std::memcpy(bytes_.data() + begin, text.data(), text.size());
        size_ = begin + text.size() + 1;
        bytes_[size_ - 1] = '\n';
        return static_cast<std::uint32_t>(begin);
    }
    /// Finds the tokens. False where a text holds bad UTF-8, control characters inside a
    /// string or a string that does not end, which the end of its line shows; or no token is
    /// there at all.
    bool find_tokens() {
        std::memset(bytes_.data() + size_, 0, simdjson::SIMDJSON_PADDING);
        make_room();
        return stages_->stage1(reinterpret_cast<const std::uint8_t *>(bytes_.data()), size_,
                               simdjson::stage1_mode::regular) == simdjson::SUCCESS;
    }

    /// The texts, with zeros behind them.
    [[nodiscard]] const char *text() const { return bytes_.data(); }
    /// Behind the last token stand two with the size of the texts.
    [[nodiscard]] Token begin() const { return stages_->structural_indexes.get(); }
    [[nodiscard]] Token end() const { return begin() + stages_->n_structural_indexes; }

  private:
    static constexpr std::size_t least_room = 4096;

    void make_room() {
        if ((!stages_ || stages_->capacity() < size_) &&
            simdjson::get_active_implementation()->create_dom_parser_implementation(
                size_ + least_room, 1, stages_) != simdjson::SUCCESS) {
            throw std::bad_alloc();
        }
    }

    std::vector<char> bytes_;
    std::size_t size_ = 0;
    std::unique_ptr<simdjson::internal::dom_parser_implementation> stages_;
};

} // namespace aceconv
