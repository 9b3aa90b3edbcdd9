// The sequence numbers that lists have used.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace aceconv {

/// In blocks of 65,536 numbers that follow each other. A block of which a number is
/// used takes some hundred bytes and two to four for each number more, and never
/// more than 8 KiB; a list of a million random numbers takes 7 MB, all numbers that
/// there are take 512 MB. A list's name takes some hundred bytes.
class SequenceNumbers {
  public:
    /// False when `list` has had `number` already.
    bool insert(const std::string &list, std::uint32_t number);
    [[nodiscard]] std::size_t lists() const { return lists_.size(); }

  private:
    /// The lower halves of the numbers in ascending order, or 4,096 words with a bit
    /// for each number.
    using Block = std::vector<std::uint16_t>;

    static bool insert(Block &block, std::uint16_t number);
    Block &block(const std::string &list, std::uint16_t upper);

    std::unordered_map<std::string, std::uint64_t> lists_; // where its blocks are
    std::unordered_map<std::uint64_t, Block> blocks_;      // by list and upper half
    // The list and the block last asked for.
    const std::pair<const std::string, std::uint64_t> *last_ = nullptr;
    Block *block_ = nullptr;
    std::uint16_t upper_ = 0; // of the block's numbers
};

} // namespace aceconv
