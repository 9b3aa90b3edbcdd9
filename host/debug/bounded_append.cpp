#include "aceconv/host/bounded_append.h"

#include <algorithm>
#include <cstring>

// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void __strncat_to_buf(size_t size, char *text, const char *piece, size_t room) {
    const size_t used = strnlen(text, size);
    if (used == size) {
        return;
    }
    const size_t length = strnlen(piece, std::min(room, size - used - 1));
    std::memcpy(text + used, piece, length);
    text[used + length] = '\0';
}
