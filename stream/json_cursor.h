// Steps through JSON text token by token, in constant memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/json_scan.h"
#include "stream/window.h"

namespace aceconv {

/// Each step can be repeated when the input paused in it, and then goes on from there.
class JsonCursor {
  public:
    explicit JsonCursor(Window &window) : window_(window) {}

    /// The next character that is not white space, or -1 at the end; stays.
    int peek();
    /// Takes the next character if it is `wanted`.
    bool accept(char wanted);
    /// Takes it or throws StreamError: "expected <what>, found ...".
    void expect(char wanted, std::string_view what);
    /// Takes a string and returns its value.
    std::string string(std::string_view what);
    /// Takes an object into `text` as it stands. An object beyond `limit` bytes is taken
    /// all the same, but not kept; returns whether it was.
    bool object(std::string &text, std::size_t limit, std::string_view what);
    /// Takes a value of any kind and length, and looks into it only for its end.
    void skip(std::string_view what);
    /// The line of the object last begun.
    [[nodiscard]] std::uint64_t object_line() const { return object_line_; }

    /// The line of the next character, counted from 1.
    [[nodiscard]] std::uint64_t line() const { return line_; }
    /// Throws StreamError for what stands at the next character.
    [[noreturn]] void unexpected(std::string_view what);

  private:
    Window &window_;
    std::uint64_t line_ = 1;
    // The object or other value that is being taken, as far as it has been.
    bool inside_ = false;
    bool word_ = false; // a number, true, false or null
    JsonScan scan_;
    bool fits_ = true;
    std::string text_;
    std::uint64_t object_line_ = 0;
};

} // namespace aceconv
