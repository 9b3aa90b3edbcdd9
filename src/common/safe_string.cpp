#include "common/safe_string.h"

#include <algorithm>

extern "C" {
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
}

namespace ace {

namespace {

// Names are to be compared without a bound. The library refuses any bound above
// the one it was built with, and a refused comparison leaves the difference 0.
constexpr rsize_t unbounded = 0x7FFFFFFFFFFFFFFF;
constexpr rsize_t name_bound = std::min<rsize_t>(unbounded, RSIZE_MAX_STR);

} // namespace

std::uint32_t compare(const char *text, const char *literal, int &difference) {
    return static_cast<std::uint32_t>(strcmp_s(text, name_bound, literal, &difference));
}

std::uint32_t clear(char *destination, std::size_t size) {
    return static_cast<std::uint32_t>(memset_s(destination, size, 0, size));
}

std::uint32_t copy_cut(char *destination, std::size_t size, const char *text) {
    return static_cast<std::uint32_t>(strncpy_s(destination, size, text, size - 1));
}

} // namespace ace
