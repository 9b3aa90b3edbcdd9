// IPv4 addresses as text; numbers are in network byte order, as in struct in_addr.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace aceconv {

/// Reads a dotted quad without leading zeros; false for any other text.
[[nodiscard]] bool read_ipv4(std::string_view text, std::uint32_t &address);

/// Writes the dotted quad of `address`; up to 16 bytes are overwritten. Returns its end.
char *write_ipv4(char *at, std::uint32_t address);

/// The dotted quad of an address.
class Ipv4Text {
  public:
    explicit Ipv4Text(std::uint32_t address);
    [[nodiscard]] std::string_view text() const { return {text_.data(), size_}; }

  private:
    std::array<char, 16> text_;
    std::size_t size_;
};

} // namespace aceconv
