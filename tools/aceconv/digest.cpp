#include "tools/aceconv/digest.h"

#include <nettle/base16.h>
#include <nettle/base64.h>

#include "stream/errors.h"
#include "stream/window.h"

namespace aceconv::tool {
namespace {

struct Bytes256 {
    std::uint8_t bytes[SHA256_DIGEST_SIZE];
};

Bytes256 result_of(sha256_ctx state) {
    Bytes256 result;
    sha256_digest(&state, sizeof result.bytes, result.bytes);
    return result;
}

} // namespace

void Digest::add(std::string_view bytes) {
    sha256_update(&state_, bytes.size(), reinterpret_cast<const std::uint8_t *>(bytes.data()));
    size_ += bytes.size();
}

std::string Digest::text() const {
    std::string text(BASE16_ENCODE_LENGTH(SHA256_DIGEST_SIZE), ' ');
    base16_encode_update(text.data(), SHA256_DIGEST_SIZE, result_of(state_).bytes);
    return text;
}

std::string Digest::base64() const {
    std::string text(BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE), ' ');
    base64_encode_raw(text.data(), SHA256_DIGEST_SIZE, result_of(state_).bytes);
    return text;
}

FileDigest digest_of(const std::string &path) {
    FileDigest file{path, {}, false};
    try {
        const ReadChunk read = open_input(path, std::make_shared<InputMeter>());
        char buffer[1 << 14];
        for (std::size_t got = 0; (got = read(buffer, sizeof buffer)) != 0;) {
            file.digest.add({buffer, got});
        }
        file.whole = true;
    } catch (const IoError &) {
    }
    return file;
}

} // namespace aceconv::tool
