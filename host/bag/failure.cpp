#include "host/bag/failure.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <new>

#include "host/error.h"

namespace aceconv {
namespace {

struct Failure {
    BagStatus status;
    std::array<char, 400> text;
};

constinit thread_local Failure last{};

} // namespace

// NOLINTNEXTLINE(cert-dcl50-cpp): the compiler checks the arguments against the format
bool fail(BagStatus status, const char *format, ...) noexcept {
    last.status = status;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(last.text.data(), last.text.size(), format, arguments);
    va_end(arguments);
    for (char *c = last.text.data(); *c != '\0'; ++c) {
        if (*c < ' ' || *c > '~') {
            *c = '?';
        }
    }
    return false;
}

std::uint32_t finished(bool succeeded) noexcept {
    if (!succeeded) {
        return static_cast<std::uint32_t>(last.status);
    }
    last.text[0] = '\0';
    return 0;
}

std::string bag_last_error() {
    return last.text.data();
}

void throw_bag_failure(std::uint32_t status) {
    if (status == static_cast<std::uint32_t>(BagStatus::no_memory)) {
        throw std::bad_alloc();
    }
    throw DataError("", bag_last_error());
}

} // namespace aceconv
