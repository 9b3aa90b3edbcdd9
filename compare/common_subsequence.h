// What two sequences have in common, in its order: the longest common subsequence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aceconv {

/// An element of one sequence and the same one of the other.
struct Matched {
    std::size_t a, b; // their places

    bool operator==(const Matched &) const = default;
};

/// How many pairs of equal elements are looked at, or as many as `a` has elements if those are
/// more.
constexpr std::size_t most_equal_pairs = std::size_t{1} << 22;

/// The longest common subsequence of both, in ascending order. With p pairs of equal elements it
/// takes p log n steps and 12 bytes of each pair: sequences without repetitions have at most n
/// pairs, whatever their order. Where repetitions make more than `most_pairs`, each occurrence
/// is tried with as many of those nearest to it by their count as there may be, so that what
/// comes out is still common to both and in order, if not always the longest.
std::vector<Matched> common_subsequence(std::span<const std::uint32_t> a,
                                        std::span<const std::uint32_t> b,
                                        std::size_t most_pairs = most_equal_pairs);

} // namespace aceconv
