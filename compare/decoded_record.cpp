#include "compare/decoded_record.h"

#include <cstdlib>
#include <memory>

#include "stream/errors.h"

namespace aceconv {

Bytes encode_record(const bag_descriptor &descriptor, const ipv4_acl_config_ace &record) {
    bag_definition *definition = nullptr;
    std::uint8_t *encoded = nullptr;
    std::uint32_t length = 0;
    std::uint32_t status = bag_definition_init(&descriptor, &definition);
    if (status == 0) {
        status = bag_encode_v3(&encoded, &length, &record, definition, 1);
    }
    bag_definition_free(definition);
    if (status != 0) {
        throw_bag_failure(status);
    }
    const std::unique_ptr<std::uint8_t, void (*)(void *)> owner(encoded, std::free);
    return {encoded, encoded + length};
}

DecodedRecord::DecodedRecord(const bag_descriptor &descriptor, Encoding encoding)
    : descriptor_(descriptor) {
    if (const auto status = bag_decode_lent(encoding, &record_, &descriptor_, room_); status != 0) {
        throw_bag_failure(status);
    }
}

} // namespace aceconv
