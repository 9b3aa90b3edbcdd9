#include "host/yang/ipv4_text.h"

#include <charconv>
#include <cstring>

namespace aceconv {

namespace {

/// Takes a number 0 to 255 without leading zeros off the front of `text`.
bool take_octet(std::string_view &text, std::uint8_t &octet) {
    unsigned number = 0;
    std::size_t digits = 0;
    while (digits < text.size() && digits < 3 && text[digits] >= '0' && text[digits] <= '9') {
        number = number * 10 + static_cast<unsigned>(text[digits++] - '0');
    }
    if (digits == 0 || number > 255 || (digits > 1 && text[0] == '0')) {
        return false;
    }
    octet = static_cast<std::uint8_t>(number);
    text.remove_prefix(digits);
    return true;
}

} // namespace

bool read_ipv4(std::string_view text, std::uint32_t &address) {
    std::array<std::uint8_t, 4> octets{};
    for (std::size_t i = 0; i < octets.size(); ++i) {
        if (i > 0) {
            if (text.empty() || text[0] != '.') {
                return false;
            }
            text.remove_prefix(1);
        }
        if (!take_octet(text, octets[i])) {
            return false;
        }
    }
    std::memcpy(&address, octets.data(), sizeof address);
    return text.empty();
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
