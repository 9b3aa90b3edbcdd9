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
        for (unsigned shift = 1; shift < size; shift *= 2) {
            marks ^= marks << shift;
        }
        return marks;
    }

  private:
    /// Where a byte is `wanted` once the bits of `set` are.
    [[nodiscard]] std::uint64_t find(char wanted, char set) const {
        std::uint64_t places = 0;
#ifdef __SSE2__
        constexpr std::size_t step = sizeof(__m128i);
        for (std::size_t at = 0; at < size; at += step) {
            const __m128i bytes =
                _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes_ + at)),
                             _mm_set1_epi8(set));
            const int found = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)));
            places |= std::uint64_t{static_cast<std::uint32_t>(found)} << at;
        }
#else
        for (std::size_t at = 0; at < size; ++at) {
            places |= std::uint64_t{static_cast<char>(bytes_[at] | set) == wanted} << at;
        }
#endif
        return places;
    }

    const char *bytes_;
};

} // namespace aceconv
