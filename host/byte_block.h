// 64 bytes of text looked at together, as sets of places in them: bit n stands for byte n.
#pragma once

#include <cstddef>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace aceconv {

class ByteBlock {
  public:
    static constexpr std::size_t size = 64;

    /// Of `size` readable bytes, which must outlive it.
    explicit ByteBlock(const char *bytes) : bytes_(bytes) {}

    /// Where `byte` is.
    [[nodiscard]] std::uint64_t where(char byte) const { return find(byte, 0); }
    /// Where `lower` is or `upper`, which is the same without one bit.
    [[nodiscard]] std::uint64_t where_either(char upper, char lower) const {
        return find(lower, static_cast<char>(upper ^ lower));
    }

    /// From the first mark up to the second, from the third up to the fourth, and so on,
    /// without the even ones: what quotes enclose.
    static std::uint64_t between(std::uint64_t marks) {
        marks ^= marks << 1U;
        marks ^= marks << 2U;
        marks ^= marks << 4U;
        marks ^= marks << 8U;
        marks ^= marks << 16U;
        return marks ^ marks << 32U;
    }

  private:
    /// Where a byte is `wanted` once the bits of `set` are.
    [[nodiscard]] std::uint64_t find(char wanted, char set) const {
        return find_in_quarter(0, wanted, set) | find_in_quarter(1, wanted, set) << 16U |
               find_in_quarter(2, wanted, set) << 32U | find_in_quarter(3, wanted, set) << 48U;
    }

    [[nodiscard]] std::uint64_t find_in_quarter(std::size_t quarter, char wanted, char set) const {
        const char *const bytes = bytes_ + 16 * quarter;
#ifdef __SSE2__
        __m128i there = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes));
        if (set != 0) {
            there = _mm_or_si128(there, _mm_set1_epi8(set));
        }
        const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(there, _mm_set1_epi8(wanted)));
        return static_cast<std::uint32_t>(found);
#else
        std::uint64_t places = 0;
        for (std::size_t at = 0; at < 16; ++at) {
            places |= std::uint64_t{static_cast<char>(bytes[at] | set) == wanted} << at;
        }
        return places;
#endif
    }

    const char *bytes_;
};

} // namespace aceconv
