#include "host/schema/ipv4_text.h"

#include <charconv>
#include <cstring>

namespace aceconv {

bool read_ipv4(std::string_view text, std::uint32_t &address) {
    std::array<std::uint8_t, 4> octets{};
    const char *at = text.data();
    const char *const end = at + text.size();
    // The value of the next character as a digit, beyond 9 for any other and at the end.
    const auto digit = [&] {
        return at == end ? 10U : static_cast<unsigned>(static_cast<unsigned char>(*at)) - '0';
    };
    for (std::uint8_t &octet : octets) {
        if (&octet != octets.data() && (at == end || *at++ != '.')) {
            return false;
        }
        unsigned number = digit();
        if (number > 9) {
            return false;
        }
        ++at;
        const unsigned most_digits = number == 0 ? 1 : 3;
        for (unsigned digits = 1, next = 0; digits < most_digits && (next = digit()) <= 9;
             ++digits) {
            number = number * 10 + next;
            ++at;
        }
        if (number > 255) {
            return false;
        }
        octet = static_cast<std::uint8_t>(number);
    }
    std::memcpy(&address, octets.data(), sizeof address);
    return at == end;
}

Ipv4Text::Ipv4Text(std::uint32_t address) {
    std::array<std::uint8_t, 4> octets{};
    std::memcpy(octets.data(), &address, sizeof address);
    char *end = text_.data();
    for (const std::uint8_t octet : octets) {
        if (end != text_.data()) {
            *end++ = '.';
        }
        end = std::to_chars(end, text_.data() + text_.size(), octet).ptr;
    }
    size_ = static_cast<std::size_t>(end - text_.data());
}

} // namespace aceconv
