// How a bag call of this thread ends. Functions of the library return whether
// they succeeded; the first that fails says why, its callers pass `false` on.
#pragma once

#include <cstdint>

#include "host/bag_library.h"

namespace aceconv {

/// Keeps status and text (bytes that are not printable ASCII become "?") for
/// finished and bag_last_error. Returns false.
[[nodiscard]] bool fail(BagStatus status, const char *format, ...) noexcept
    __attribute__((format(printf, 2, 3)));

/// The code that a call returns: 0, and the text is cleared, or that of `fail`.
[[nodiscard]] std::uint32_t finished(bool succeeded) noexcept;

} // namespace aceconv
