// The encoding while it is written.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#include "host/bag/definition.h"
#include "host/bag/failure.h"
#include "host/cbor_head.h"

namespace aceconv {

/// Collects items on the stack while they are few, so that the block handed out
/// is the only allocation and has its exact size.
class ByteSink {
  public:
    ByteSink() = default;
    ByteSink(const ByteSink &) = delete;
    ByteSink &operator=(const ByteSink &) = delete;
    ~ByteSink() { std::free(heap_); }

    [[nodiscard]] bool array(std::size_t count) { return item(CborKind::array, count, {}); }
    [[nodiscard]] bool text(std::span<const std::uint8_t> content) {
        return item(CborKind::text, content.size(), content);
    }
    [[nodiscard]] bool bytes(std::span<const std::uint8_t> content) {
        return item(CborKind::bytes, content.size(), content);
    }
    /// Room for two heads, null when there is none; `take` then says where they end.
    [[nodiscard]] std::uint8_t *room() {
        return reserve(2 * max_cbor_head) ? begin_ + size_ : nullptr;
    }
    void take(const std::uint8_t *end) { size_ = static_cast<std::size_t>(end - begin_); }

    /// A map is counted while it is written: the start goes from one to the other.
    [[nodiscard]] bool begin_map(std::size_t &start) {
        const bool has_room = reserve(1);
        start = has_room ? size_++ : size_;
        return has_room;
    }
    [[nodiscard]] bool end_map(std::size_t start, std::size_t count) {
        if (!reserve(max_cbor_head)) {
            return false;
        }
        std::array<std::uint8_t, max_cbor_head> head;
        const auto size = static_cast<std::size_t>(
            put_cbor_head(head.data(), CborKind::map, count) - head.data());
        if (size > 1) {
            std::memmove(begin_ + start + size, begin_ + start + 1, size_ - start - 1);
        }
        std::memcpy(begin_ + start, head.data(), size);
        size_ += size - 1;
        return true;
    }
    /// Items that are ready as they stand.
    [[nodiscard]] bool append(std::span<const std::uint8_t> content) {
        if (!reserve(content.size())) {
            return false;
        }
        std::memcpy(begin_ + size_, content.data(), content.size());
        size_ += content.size();
        return true;
    }

    [[nodiscard]] std::span<const std::uint8_t> content() const { return {begin_, size_}; }

    /// Copies the content to a block of its own.
    [[nodiscard]] bool hand_out(std::uint8_t **encoded, std::uint32_t *length) const {
        if (size_ > max_encoding_bytes) {
            return fail(BagStatus::too_large, "an encoding of more than %zu bytes",
                        max_encoding_bytes);
        }
        // NOLINTNEXTLINE(clang-analyzer-optin.portability.UnixAPI): never empty
        auto *const block = static_cast<std::uint8_t *>(std::malloc(size_));
        if (block == nullptr) {
            return fail(BagStatus::no_memory, "no memory for an encoding of %zu bytes", size_);
        }
        std::memcpy(block, begin_, size_);
        *encoded = block;
        *length = static_cast<std::uint32_t>(size_);
        return true;
    }

  private:
    bool item(CborKind kind, std::uint64_t value, std::span<const std::uint8_t> content) {
        if (!reserve(max_cbor_head + content.size())) {
            return false;
        }
        take(put_cbor_head(begin_ + size_, kind, value));
        if (!content.empty()) {
            std::memcpy(begin_ + size_, content.data(), content.size());
        }
        size_ += content.size();
        return true;
    }

    bool reserve(std::size_t more) { return more <= capacity_ - size_ || grow(more); }

    bool grow(std::size_t more) {
        if (size_ > max_encoding_bytes) {
            return fail(BagStatus::too_large, "an encoding of more than %zu bytes",
                        max_encoding_bytes);
        }
        const std::size_t capacity = 2 * (size_ + more);
        auto *const block = static_cast<std::uint8_t *>(std::realloc(heap_, capacity));
        if (block == nullptr) {
            return fail(BagStatus::no_memory, "no memory for an encoding");
        }
        if (heap_ == nullptr) {
            std::memcpy(block, local_.data(), size_);
        }
        heap_ = block;
        begin_ = block;
        capacity_ = capacity;
        return true;
    }

    std::array<std::uint8_t, 2048> local_; // not initialised: written before it is read
    std::uint8_t *heap_ = nullptr;         // instead of local_ once it has been too small
    std::uint8_t *begin_ = local_.data();
    std::size_t size_ = 0;
    std::size_t capacity_ = local_.size();
};

} // namespace aceconv
