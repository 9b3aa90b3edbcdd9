// The allocator and the bounded strings as the plug-in's objects see them: every
// call may be made to fail, and every block is accounted for. Linked with
// --wrap; calls from outside the plug-in go straight through.
#include <cstdlib>
#include <cstring>
#include <malloc.h>

#include "recording_host.h"

using aceconv::test::Host;

namespace {

// Tells the host of a call from the plug-in; returns its failure code.
uint32_t fails(const char *call, const char *detail = "") {
    return Host::current()->enter(std::string(call) + detail, false);
}

template <typename Allocate>
void *plugin_block(const char *call, Allocate allocate) {
    const Host::Inside outside(false);
    if (fails(call) != 0) {
        return nullptr;
    }
    void *block = allocate();
    Host::current()->adopt(block);
    return block;
}

[[maybe_unused]] const bool frees_seen = Host::sees_frees = true;

} // namespace

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void *__real_malloc(size_t size);
void *__real_calloc(size_t count, size_t size);
void *__real_realloc(void *block, size_t size);
char *__real_strdup(const char *text);
void __real_free(void *block);
int __real__memset_s_chk(void *to, size_t size, int value, size_t count, size_t known);
int __real__strncpy_s_chk(char *to, size_t size, const char *from, size_t count, size_t known_to,
                          size_t known_from);
int __real__strcmp_s_chk(const char *left, size_t bound, const char *right, int *difference,
                         size_t known_left, size_t known_right);

void *__wrap_malloc(size_t size) {
    if (!Host::inside_plugin()) {
        return __real_malloc(size);
    }
    return plugin_block("malloc", [size] { return __real_malloc(size); });
}

void *__wrap_calloc(size_t count, size_t size) {
    if (!Host::inside_plugin()) {
        return __real_calloc(count, size);
    }
    return plugin_block("calloc", [=] { return __real_calloc(count, size); });
}

void *__wrap_realloc(void *block, size_t size) {
    if (!Host::inside_plugin()) {
        return __real_realloc(block, size);
    }
    return plugin_block("realloc", [=] { // always moves, so that stale pointers show
        void *moved = __real_malloc(size);
        if (block != nullptr) {
            std::memcpy(moved, block, std::min(size, malloc_usable_size(block)));
            Host::current()->release(block);
        }
        return moved;
    });
}

char *__wrap_strdup(const char *text) {
    if (!Host::inside_plugin()) {
        return __real_strdup(text);
    }
    return static_cast<char *>(plugin_block("strdup", [text] { return __real_strdup(text); }));
}

void __wrap_free(void *block) {
    if (!Host::inside_plugin()) {
        return __real_free(block);
    }
    const Host::Inside outside(false);
    Host::current()->release(block);
}

int __wrap__memset_s_chk(void *to, size_t size, int value, size_t count, size_t known) {
    const Host::Inside outside(false);
    const uint32_t code = fails("memset_s");
    if (value != 0 || count != size) {
        Host::current()->faults.emplace_back("memset_s: not the whole buffer to zero");
    }
    return code != 0 ? static_cast<int>(code) : __real__memset_s_chk(to, size, value, count, known);
}

int __wrap__strncpy_s_chk(char *to, size_t size, const char *from, size_t count, size_t known_to,
                          size_t known_from) {
    const Host::Inside outside(false);
    const uint32_t code = fails("strncpy_s");
    return code != 0 ? static_cast<int>(code)
                     : __real__strncpy_s_chk(to, size, from, count, known_to, known_from);
}

int __wrap__strcmp_s_chk(const char *left, size_t bound, const char *right, int *difference,
                         size_t known_left, size_t known_right) {
    const Host::Inside outside(false);
    const uint32_t code = fails("strcmp_s:", left);
    Host &host = *Host::current();
    if (left[0] != '\0' && std::strcmp(left + 1, "?") == 0) {
        host.compared.emplace_back(right);
        if (host.compared.size() < host.names.size()) {
            *const_cast<char *>(left) = host.names[host.compared.size()][0];
        }
    }
    return code != 0
               ? static_cast<int>(code)
               : __real__strcmp_s_chk(left, bound, right, difference, known_left, known_right);
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

} // extern "C"
