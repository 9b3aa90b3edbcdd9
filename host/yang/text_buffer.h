// Text that grows at its end.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace aceconv {

class TextBuffer {
  public:
    [[nodiscard]] std::string_view text() const { return {bytes_.data(), size_}; }
    void clear() { size_ = 0; }

    /// Room for `most` more bytes, of which `grow` then says how many were used.
    [[nodiscard]] char *room(std::size_t most) {
        if (bytes_.size() - size_ < most) {
            bytes_.resize(2 * (size_ + most));
        }
        return bytes_.data() + size_;
    }
    void grow(std::size_t used) { size_ += used; }

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
    std::vector<char> bytes_;
    std::size_t size_ = 0;
};

} // namespace aceconv
