#include "host/schema/ipv4_text.h"

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

namespace {

struct Octet {
    std::array<char, 4> text; // a dot behind the digits
    std::uint8_t size;
};

constexpr auto octets = [] {
    std::array<Octet, 256> all{};
    for (unsigned value = 0; value < all.size(); ++value) {
        Octet &octet = all[value];
        for (unsigned unit = 100; unit > 0; unit /= 10) {
            if (value >= unit || unit == 1) {
                octet.text[octet.size++] = static_cast<char>('0' + value / unit % 10);
            }
        }
        octet.text[octet.size++] = '.';
    }
    return all;
}();

} // namespace

char *write_ipv4(char *at, std::uint32_t address) {
    std::array<std::uint8_t, 4> bytes{};
    std::memcpy(bytes.data(), &address, sizeof address);
    for (const std::uint8_t byte : bytes) {
        const Octet &octet = octets[byte];
        std::memcpy(at, octet.text.data(), octet.text.size());
        at += octet.size;
    }
    return at - 1;
}

Ipv4Text::Ipv4Text(std::uint32_t address)
    : size_(static_cast<std::size_t>(write_ipv4(text_.data(), address) - text_.data())) {}

} // namespace aceconv
