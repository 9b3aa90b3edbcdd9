// Each allocation of a bag call fails in turn: nothing is left behind.

#include "bag_testing.h"

extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void __libc_free(void *block);
}

namespace {

thread_local bool armed = false;
thread_local int until_failure = 0; // allocations that succeed
thread_local int owned = 0;         // blocks taken while armed and not given back

bool granted() {
    if (!armed) {
        return true;
    }
    if (until_failure-- == 0) {
        return false;
    }
    ++owned;
    return true;
}

void give_back(const void *block) {
    owned -= armed && block != nullptr ? 1 : 0;
}

} // namespace

extern "C" {
void *malloc(size_t size) {
    return granted() ? __libc_malloc(size) : nullptr;
}
void *calloc(size_t count, size_t size) {
    return granted() ? __libc_calloc(count, size) : nullptr;
}
void *realloc(void *block, size_t size) {
    if (!granted()) {
        return nullptr;
    }
    give_back(block);
    return __libc_realloc(block, size);
}
void free(void *block) {
    give_back(block);
    __libc_free(block);
}
}

namespace bag_testing {
namespace {

/// Runs `call` with its first, second, ... allocation failing until none does;
/// returns how many it made.
template <typename Call>
int sweep(Call call) {
    for (int n = 0;; ++n) {
        owned = 0;
        until_failure = n;
        armed = true;
        const std::uint32_t status = call();
        armed = false;
        if (status == 0) {
            return n;
        }
        EXPECT_EQ(status, code(aceconv::BagStatus::no_memory));
        EXPECT_EQ(aceconv::bag_last_error().find("no memory for "), 0U);
        EXPECT_EQ(owned, 0) << "at allocation " << n;
    }
}

TEST(BagMemory, EveryAllocationFailsOnce) {
    // Two strings, elements, and a string beyond the encoder's first buffer.
    const Bytes bytes = with_head(small, [] {
        Bytes map = from_hex("A3 05 61 74 07 82 A0 A1 01 791388");
        map.resize(map.size() + 5000, 'x');
        for (const std::uint8_t byte : from_hex("08 A1 01 61 79")) {
            map.push_back(byte);
        }
        return map;
    }());
    bag_definition *const definition = definition_of(small);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    Small record;
    EXPECT_EQ(sweep([&] { return bag_decode_v3(bytes.data(), length, &record, definition, 0); }),
              4);
    std::uint8_t *encoded = nullptr;
    std::uint32_t size = 0;
    EXPECT_EQ(sweep([&] { return bag_encode_v3(&encoded, &size, &record, definition, 1); }), 2);
    bag_free_indirections(&record, &small);
    std::free(encoded);

    static const bag_descriptor fresh = small;
    EXPECT_EQ(bag_register_start(), 0U);
    EXPECT_GT(sweep([] { return bag_register(&fresh); }), 10);
    EXPECT_EQ(bag_register_end(), 0U);
}

} // namespace
} // namespace bag_testing
