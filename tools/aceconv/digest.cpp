#include "tools/aceconv/digest.h"

#include <array>

#include "stream/window.h"

namespace aceconv::tool {

void Digest::add(std::string_view bytes) {
    SHA256Update(&state_, reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    size_ += bytes.size();
}

std::string Digest::text() const {
    SHA2_CTX state = state_;
    char text[SHA256_DIGEST_STRING_LENGTH];
    return SHA256End(&state, text);
}

std::string Digest::base64() const {
    SHA2_CTX state = state_;
    std::array<std::uint8_t, SHA256_DIGEST_LENGTH + 1> bytes{}; // a zero fills the last group
    SHA256Final(bytes.data(), &state);
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) { // RFC 4648, section 4
        const unsigned group = bytes[i] << 16U | bytes[i + 1] << 8U | bytes[i + 2];
        for (int shift = 18; shift >= 0; shift -= 6) {
            text += digits[group >> shift & 63U];
        }
    }
    text.pop_back();
    return text + '=';
}

FileDigest digest_of(const std::string &path) {
    FileDigest file{path, {}, true};
    const ReadChunk read = open_input(path, std::make_shared<InputMeter>());
    char buffer[1 << 14];
    for (std::size_t got = 0; (got = read(buffer, sizeof buffer)) != 0;) {
        file.digest.add({buffer, got});
    }
    return file;
}

} // namespace aceconv::tool
