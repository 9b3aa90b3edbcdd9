// Which entries of a list never meet a packet, since an earlier one takes every packet
// that they match.
//
// Earlier entries are kept by outline: which dimensions they limit, which bits of the
// addresses they compare, and where they let one number through. Those of one outline that
// can contain an entry are found by one look into a hash table. So an entry takes a step
// for each outline in its list, and entry_steps for each earlier entry that agrees with it in
// all that is looked up, from which it differs in runs of numbers at most. Lists as
// people write them have few outlines. Where each entry has a wildcard mask of its own, or a
// range of its own beside the same addresses, the steps are as many as pairs of entries, up
// to max_steps.
//
// One earlier entry has to contain all of the later one; that several do so together is not
// looked for. An entry that is shadowed shadows nothing that is not shadowed already, and is
// not kept.
#pragma once

#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "compare/packet_match.h"

namespace aceconv {

class Shadowing {
  public:
    static constexpr std::uint64_t max_steps = 10'000'000'000; // some fifteen seconds

    explicit Shadowing(std::uint64_t steps = max_steps) : steps_left_(steps) {}

    /// Takes the next entry of the list. Returns the `number` of the first one that surely
    /// contains it, stands before it, and has the lower sequence number as well, since readers
    /// differ in which of the two is the order. Entries without a sequence number are
    /// compared among themselves.
    std::optional<std::uint32_t> add(PacketMatch match, std::optional<std::uint32_t> sequence,
                                     std::uint32_t number);

    /// How many entries came behind the last step, and were not looked at.
    [[nodiscard]] std::uint64_t unseen() const { return unseen_; }

    struct Outline {
        std::uint32_t limited = 0;         // a bit for each dimension
        std::uint32_t single = 0;          // of them, those with one number or text
        std::array<std::uint32_t, 2> bits; // of the addresses
        auto operator<=>(const Outline &) const = default;
    };

  private:
    struct Kept {
        PacketMatch match;
        std::optional<std::uint32_t> sequence;
        std::uint32_t number;
    };
    using Table = std::unordered_map<std::uint64_t, std::vector<Kept>>;

    const Kept *first_around(const Outline &outline, const PacketMatch &match,
                             std::optional<std::uint32_t> sequence);

    std::vector<std::pair<Outline, Table>> tables_;
    std::map<Outline, std::size_t> places_; // in tables_
    std::uint64_t steps_left_;
    std::uint64_t unseen_ = 0;
};

} // namespace aceconv
