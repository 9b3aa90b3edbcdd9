// A window over an input that is read in chunks: what lies between the last
// byte taken and the last byte read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace aceconv {

/// Fills up to `size` bytes at `buffer`; 0 means the end of the input.
using ReadChunk = std::function<std::size_t(char *buffer, std::size_t size)>;

/// How an input is being read.
struct InputMeter {
    std::uint64_t read = 0;            // bytes
    std::optional<std::uint64_t> size; // of a regular file
    bool may_wait = true;              // where nothing is there; else InputPauses is thrown
    std::function<void(std::string_view)> show; // given what was read, "" at the end
};

/// Reads the file, or standard input for "-", whatever is there of it. Throws IoError
/// and InputPauses.
ReadChunk open_input(const std::string &path, std::shared_ptr<InputMeter> meter);

class Window {
  public:
    explicit Window(ReadChunk read, std::size_t chunk = 1 << 16)
        : read_(std::move(read)), chunk_(chunk) {}
    /// A window that shows all of `text`.
    explicit Window(std::string_view text) : bytes_(text), end_(text.size()), ended_(true) {}

    /// The unread bytes; invalid after the next call of more().
    [[nodiscard]] std::string_view view() const {
        return std::string_view(bytes_).substr(begin_, end_ - begin_);
    }
    /// Reads one more chunk behind them; false at the end of the input. When reading
    /// throws, the window is as it was.
    bool more();
    void take(std::size_t count) { begin_ += count; }
    /// Makes view() at least `count` bytes long, unless the input ends before.
    void want(std::size_t count) {
        while (view().size() < count && more()) {
        }
    }

  private:
    ReadChunk read_;
    std::size_t chunk_ = 0;
    std::string bytes_; // room for chunks; what is unread lies between the two
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool ended_ = false;
};

} // namespace aceconv
