// Values taken one after the other from a fuzzer's bytes; zero and "" when none are left.
#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fuzz/target.h"

namespace aceconv::fuzz {

class Pieces {
  public:
    explicit Pieces(Input bytes) : left_(bytes) {}

    [[nodiscard]] bool empty() const { return left_.empty(); }

    template <class Number = std::uint8_t>
    Number number() {
        Number value{};
        const std::size_t count = std::min(sizeof value, left_.size());
        std::memcpy(&value, left_.data(), count);
        left_ = left_.subspan(count);
        return value;
    }
    /// Of `rows`.
    template <class Row, std::size_t Count>
    const Row &one_of(const Row (&rows)[Count]) {
        return rows[number() % Count];
    }
    /// The bytes up to the next mark, which is taken as well.
    std::string_view text() {
        const std::string_view all = rest();
        const std::size_t end = std::min(all.find(mark), all.size());
        left_ = left_.subspan(std::min(end + mark.size(), all.size()));
        return all.substr(0, end);
    }
    [[nodiscard]] std::string_view rest() const {
        return {reinterpret_cast<const char *>(left_.data()), left_.size()};
    }

    /// What no text has in it, and few encodings.
    static constexpr std::string_view mark = "\xFE\xFE";

  private:
    Input left_;
};

} // namespace aceconv::fuzz
