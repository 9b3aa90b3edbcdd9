// Finds a name among some dozens, without comparing it with more than one of them.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace aceconv {

/// A name is looked up by its first and its last eight bytes, which also make up most of
/// the comparison. The table is at most a quarter full, so the first slot is nearly always
/// the right one or empty.
class NameTable {
  public:
    static constexpr std::size_t none = ~std::size_t{0};

    /// Whether there is a table; without one nothing may be looked up.
    [[nodiscard]] bool made() const { return !slots_.empty(); }

    /// A table of names, which must stay where they are, none of them empty or longer than
    /// 255 bytes; the place of each is its number in this order. Made for `count` of them.
    template <class NameAt>
    void make(std::size_t count, NameAt name_at) {
        const auto bits = static_cast<unsigned>(std::bit_width(4 * count | 1U));
        shift_ = 64 - bits;
        slots_.assign(std::size_t{1} << bits, {});
        for (std::size_t place = 0; place < count; ++place) {
            const std::string_view name = name_at(place);
            char padded[8] = {};
            const Ends ends =
                ends_of(name.size() < 8 ? (name.copy(padded, name.size()), padded) : name.data(),
                        name.size());
            Slot *slot = &slots_[hash(ends)];
            while (slot->length != 0) {
                slot = after(slot);
            }
            *slot = {ends, name.data(), static_cast<std::uint16_t>(name.size()),
                     static_cast<std::uint16_t>(place)};
        }
    }

    /// The place of the name. Eight bytes from its start must be readable in any case.
    [[nodiscard]] std::size_t find(std::string_view name) const {
        if (name.empty()) {
            return none;
        }
        const Ends ends = ends_of(name.data(), name.size());
        for (const Slot *slot = &slots_[hash(ends)]; slot->length != 0; slot = after(slot)) {
            if (slot->ends.first == ends.first && slot->ends.last == ends.last &&
                slot->length == name.size() && same_middle(slot->text, name)) {
                return slot->place;
            }
        }
        return none;
    }

  private:
    struct Ends {
        std::uint64_t first; // eight bytes, or all of a shorter name
        std::uint64_t last;  // eight bytes, or 0
    };
    struct Slot {
        Ends ends;
        const char *text;
        std::uint16_t length; // 0 in an empty slot
        std::uint16_t place;
    };

    static std::uint64_t word(const char *text) {
        std::uint64_t value = 0;
        std::memcpy(&value, text, sizeof value);
        return value;
    }
    static Ends ends_of(const char *text, std::size_t length) {
        const std::uint64_t first = word(text);
        if (length >= 8) {
            return {first, word(text + length - 8)};
        }
        const std::size_t others = 64 - 8 * length; // bits
        return {std::endian::native == std::endian::little ? first << others : first >> others, 0};
    }
    static bool same_middle(const char *text, std::string_view name) {
        for (std::size_t at = 8; at + 8 < name.size(); at += 8) {
            if (word(text + at) != word(name.data() + at)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::size_t hash(const Ends &ends) const {
        return (ends.first ^ std::rotl(ends.last, 23)) * 0x9E3779B97F4A7C15 >> shift_;
    }
    [[nodiscard]] const Slot *after(const Slot *slot) const {
        return slot == &slots_.back() ? slots_.data() : slot + 1;
    }
    [[nodiscard]] Slot *after(Slot *slot) {
        return slot == &slots_.back() ? slots_.data() : slot + 1;
    }

    std::vector<Slot> slots_;
    unsigned shift_ = 64;
};

} // namespace aceconv
