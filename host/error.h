// Errors of the reference host and of the command: where and why.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace aceconv {

/// Data that cannot be converted. `path` is the data path of the node at fault
/// (RFC 7951 names, list keys in brackets) and may be empty; what() says what
/// was found and what was expected.
class DataError : public std::runtime_error {
  public:
    DataError(std::string path, const std::string &why)
        : std::runtime_error(why), path_(std::move(path)) {}
    [[nodiscard]] const std::string &path() const noexcept { return path_; }

  private:
    std::string path_;
};

} // namespace aceconv
