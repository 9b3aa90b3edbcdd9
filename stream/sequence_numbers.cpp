#include "stream/sequence_numbers.h"

#include <algorithm>

namespace aceconv {
namespace {

constexpr unsigned bits = 16; // of a word, and of half a number
constexpr std::size_t words = (std::size_t{1} << bits) / bits;

} // namespace

bool SequenceNumbers::insert(Block &block, std::uint16_t number) {
    if (block.size() < words) {
        const auto place = block.empty() || number > block.back()
                               ? block.end()
                               : std::lower_bound(block.begin(), block.end(), number);
        if (place != block.end() && *place == number) {
            return false;
        }
        block.insert(place, number);
        if (block.size() == words) {
            Block flags(words);
            for (const std::uint16_t each : block) {
                flags[each / bits] |= static_cast<std::uint16_t>(1U << (each % bits));
            }
            block = std::move(flags);
        }
        return true;
    }
    std::uint16_t &word = block[number / bits];
    const std::uint16_t before = word;
    word |= static_cast<std::uint16_t>(1U << (number % bits));
    return word != before;
}

SequenceNumbers::Block &SequenceNumbers::block(const std::string &list, std::uint16_t upper) {
    if (last_ == nullptr || last_->first != list) {
        last_ = &*lists_.try_emplace(list, std::uint64_t{lists_.size()} << bits).first;
        block_ = nullptr;
    }
    if (block_ == nullptr || upper != upper_) {
        block_ = &blocks_[last_->second | upper];
        upper_ = upper;
    }
    return *block_;
}

bool SequenceNumbers::insert(const std::string &list, std::uint32_t number) {
    return insert(block(list, static_cast<std::uint16_t>(number >> bits)),
                  static_cast<std::uint16_t>(number));
}

} // namespace aceconv
