// The encoding while it is written.
#pragma once

#include <array>
#include <cbor.h>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#include "host/bag/definition.h"
#include "host/bag/failure.h"

namespace aceconv {

/// Collects items on the stack while they are few, so that the block handed out
/// is the only allocation and has its exact size.
class ByteSink {
  public:
    ByteSink() = default;
    ByteSink(const ByteSink &) = delete;
    ByteSink &operator=(const ByteSink &) = delete;
    ~ByteSink() { std::free(heap_); }

    [[nodiscard]] bool number(std::uint64_t value) {
        if (value >= 24 || !reserve(1)) {
            return item(cbor_encode_uint, value, {});
        }
        begin_[size_++] = static_cast<std::uint8_t>(value); // most keys, many numbers
        return true;
    }
    [[nodiscard]] bool array(std::size_t count) { return item(cbor_encode_array_start, count, {}); }
    [[nodiscard]] bool map(std::size_t count) { return item(cbor_encode_map_start, count, {}); }
    [[nodiscard]] bool text(std::span<const std::uint8_t> content) {
        return item(cbor_encode_string_start, content.size(), content);
    }
    [[nodiscard]] bool bytes(std::span<const std::uint8_t> content) {
        return item(cbor_encode_bytestring_start, content.size(), content);
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
    static constexpr std::size_t head_bytes = 9; // the longest head

    template <typename Value>
    bool item(std::size_t (*head)(Value, unsigned char *, std::size_t), Value value,
              std::span<const std::uint8_t> content) {
        if (!reserve(head_bytes + content.size())) {
            return false;
        }
        size_ += head(value, begin_ + size_, head_bytes);
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
