#include "compare/shadowing.h"

#include <algorithm>
#include <utility>

namespace aceconv {
namespace {

using Outline = Shadowing::Outline;

/// A comparison of two entries takes as long as so many of outlines.
constexpr std::uint64_t entry_steps = 10;

constexpr std::uint32_t bit(Dimension dimension) {
    return std::uint32_t{1} << static_cast<unsigned>(dimension);
}

/// The one number or text that the limit lets through.
std::optional<std::uint32_t> single(const Limit &limit) {
    if (const auto *text = std::get_if<std::uint32_t>(&limit.what)) {
        return *text;
    }
    const auto *numbers = std::get_if<Numbers>(&limit.what);
    if (numbers != nullptr && (*numbers)[1].empty() && (*numbers)[0].first == (*numbers)[0].last) {
        return (*numbers)[0].first;
    }
    return std::nullopt;
}

std::uint32_t &address_bits(Outline &outline, Dimension side) {
    return outline.bits[side == Dimension::source ? 0 : 1];
}

Outline outline_of(const PacketMatch &match) {
    Outline outline{};
    for (const Limit &limit : match.limits) {
        outline.limited |= bit(limit.dimension);
        if (const auto *address = std::get_if<AddressBits>(&limit.what)) {
            address_bits(outline, limit.dimension) = address->mask;
        } else if (single(limit)) {
            outline.single |= bit(limit.dimension);
        }
    }
    return outline;
}

/// Whether one of the outline `outer` can contain one of the other.
bool fits(const Outline &outer, const Outline &inner) {
    return (outer.limited & ~inner.limited) == 0 && (outer.single & ~inner.single) == 0 &&
           (outer.bits[0] & ~inner.bits[0]) == 0 && (outer.bits[1] & ~inner.bits[1]) == 0;
}

/// Of what entries of `outline` have in common with those that they contain.
std::uint64_t key(Outline outline, const PacketMatch &match) {
    std::uint64_t hash = 0;
    const auto mix = [&hash](std::uint32_t part) {
        hash = (hash ^ part) * 0x9E3779B97F4A7C15;
        hash ^= hash >> 32;
    };
    for (const Limit &limit : match.limits) {
        if ((outline.limited & bit(limit.dimension)) == 0) {
            continue;
        }
        if (const auto *address = std::get_if<AddressBits>(&limit.what)) {
            mix(address->value & address_bits(outline, limit.dimension));
        } else if ((outline.single & bit(limit.dimension)) != 0) {
            mix(*single(limit));
        }
    }
    return hash;
}

bool before(std::optional<std::uint32_t> a, std::optional<std::uint32_t> b) {
    return a.has_value() == b.has_value() && (!a || *a < *b);
}

} // namespace

/// Null as well where the steps do not suffice.
const Shadowing::Kept *Shadowing::first_around(const Outline &outline, const PacketMatch &match,
                                               std::optional<std::uint32_t> sequence) {
    const Kept *first = nullptr;
    const auto take = [this](std::uint64_t steps) {
        steps_left_ -= std::min(steps, steps_left_);
        return steps_left_ != 0;
    };
    for (const auto &[outer, table] : tables_) {
        if (!take(1)) {
            return nullptr;
        }
        if (!fits(outer, outline)) {
            continue;
        }
        const auto found = table.find(key(outer, match));
        if (found == table.end()) {
            continue;
        }
        for (const Kept &kept : found->second) {
            if (first != nullptr && first->number < kept.number) {
                break;
            }
            if (!take(entry_steps)) {
                return nullptr;
            }
            if (before(kept.sequence, sequence) && surely_contains(kept.match, match)) {
                first = &kept;
                break;
            }
        }
    }
    return first;
}

std::optional<std::uint32_t>
Shadowing::add(PacketMatch match, std::optional<std::uint32_t> sequence, std::uint32_t number) {
    if (match.nothing) {
        return std::nullopt; // no packet is left for others, nor taken from them
    }
    const Outline outline = outline_of(match);
    if (const Kept *around = first_around(outline, match, sequence)) {
        return around->number;
    }
    if (steps_left_ == 0) {
        ++unseen_;
        return std::nullopt;
    }
    if (match.certain) {
        const auto [place, is_new] = places_.try_emplace(outline, tables_.size());
        if (is_new) {
            tables_.emplace_back(outline, Table());
        }
        tables_[place->second].second[key(outline, match)].push_back(
            {std::move(match), sequence, number});
    }
    return std::nullopt;
}

} // namespace aceconv
