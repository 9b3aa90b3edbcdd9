// Text that grows at its end.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace aceconv {

class TextBuffer {
  public:
    [[nodiscard]] std::string_view text() const { return {bytes_.get(), size_}; }
    void clear() { size_ = 0; }

    /// Room for `most` more bytes; `finish` then says where those that count end.
    [[nodiscard]] char *room(std::size_t most) {
        if (capacity_ - size_ < most) {
            enlarge(2 * (size_ + most));
        }
        return bytes_.get() + size_;
    }
    void finish(const char *end) { size_ = static_cast<std::size_t>(end - bytes_.get()); }

    TextBuffer &operator+=(char byte) {
        *room(1) = byte;
        ++size_;
        return *this;
    }
    TextBuffer &operator+=(std::string_view text) {
        std::memcpy(room(text.size()), text.data(), text.size());
        size_ += text.size();
        return *this;
    }

  private:
    [[gnu::noinline]] void enlarge(std::size_t capacity) {
        std::unique_ptr<char[]> larger(new char[capacity]);
        if (size_ != 0) {
            std::memcpy(larger.get(), bytes_.get(), size_);
        }
        bytes_ = std::move(larger);
        capacity_ = capacity;
    }

    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

} // namespace aceconv
