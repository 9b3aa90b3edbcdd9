// SHA-256 of what is read and written, taken as the bytes pass.
#pragma once

#include <cstdint>
#include <sha2.h>
#include <string>
#include <string_view>

namespace aceconv::tool {

class Digest {
  public:
    Digest() { SHA256Init(&state_); }
    void add(std::string_view bytes);
    [[nodiscard]] std::uint64_t size() const { return size_; } // bytes so far
    /// Of all that was added, as 64 hexadecimal digits.
    [[nodiscard]] std::string text() const;
    /// The same in base64, as browsers are told it.
    [[nodiscard]] std::string base64() const;

  private:
    SHA2_CTX state_;
    std::uint64_t size_ = 0;
};

/// A file of a run, and what it held.
struct FileDigest {
    std::string name; // as it is shown
    Digest digest;
    bool whole = false; // everything of it went by
};

/// Of a file that nothing else reads. Throws IoError.
FileDigest digest_of(const std::string &path);

} // namespace aceconv::tool
