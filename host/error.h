// Errors of the reference host and of the command: where and why.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

namespace aceconv {

/// Data that cannot be converted. `path` is the data path of the node at fault
/// (RFC 7951 names, list keys in brackets) and may be empty; what() says what
/// was found and what was expected. `line` is that of the node in the text that
/// holds it, counted from 1, where the thrower knows it, and 0 otherwise; it can
/// then be found by the path.
class DataError : public std::runtime_error {
  public:
    DataError(std::string path, const std::string &why, std::uint64_t line = 0)
        : std::runtime_error(why), path_(std::move(path)), line_(line) {}
    [[nodiscard]] const std::string &path() const noexcept { return path_; }
    [[nodiscard]] std::uint64_t line() const noexcept { return line_; }

  private:
    std::string path_;
    std::uint64_t line_;
};

} // namespace aceconv
