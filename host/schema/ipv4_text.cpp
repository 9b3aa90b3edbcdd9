#include "host/schema/ipv4_text.h"

#include <charconv>
#include <cstring>

namespace aceconv {

bool read_ipv4(std::string_view text, std::uint32_t &address) {
    std::array<std::uint8_t, 4> octets{};
    const char *at = text.data();
    const char *const end = at + text.size();
    for (std::uint8_t &octet : octets) {
        if (&octet != octets.data() && (at == end || *at++ != '.')) {
            return false;
        }
        const char *const start = at;
        unsigned number = 0;
        for (; at != end && *at >= '0' && *at <= '9'; ++at) {
            number = number * 10 + static_cast<unsigned>(*at - '0');
        }
        const auto digits = at - start;
        if (digits == 0 || digits > 3 || number > 255 || (digits > 1 && *start == '0')) {
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
