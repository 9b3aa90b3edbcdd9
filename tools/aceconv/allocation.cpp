// Want of memory ends the command wherever it is met: libraries written in C go on
// from it in ways of their own, to a document that lacks a piece or to no memory at
// all. Only the command has these; its libraries return failures to their other hosts.
#include <cstdlib>
#include <dlfcn.h>

#include "tools/aceconv/process.h"

namespace {

/// The allocator's, which this stands in front of.
template <class Function>
Function next(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void *checked(void *block, bool wanted) {
    if (block == nullptr && wanted) {
        aceconv::tool::end_out_of_memory();
    }
    return block;
}

} // namespace

extern "C" {

void *malloc(std::size_t size) noexcept {
    static const auto allocate = next<void *(*)(std::size_t)>("malloc");
    return checked(allocate(size), size != 0);
}

void *calloc(std::size_t count, std::size_t size) noexcept {
    static const auto allocate = next<void *(*)(std::size_t, std::size_t)>("calloc");
    return checked(allocate(count, size), count != 0 && size != 0);
}

void *realloc(void *block, std::size_t size) noexcept {
    static const auto allocate = next<void *(*)(void *, std::size_t)>("realloc");
    return checked(allocate(block, size), size != 0);
}

void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    static const auto allocate = next<void *(*)(std::size_t, std::size_t)>("aligned_alloc");
    return checked(allocate(alignment, size), size != 0);
}

} // extern "C"
