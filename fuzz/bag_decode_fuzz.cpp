// Any bytes: what is decoded encodes to the same bytes, what is refused leaves
// an empty record and a reason. Bytes without the right head get it.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "aceconv/plugin.h"
#include "host/bag_library.h"

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bag_definition *definition() {
    bag_definition *handle = nullptr;
    require(bag_register_all_ipv4_acl_bags() == 0 &&
            bag_definition_init(&ipv4_acl_config_ace_bag, &handle) == 0);
    return handle;
}

std::vector<std::uint8_t> encode(const ipv4_acl_config_ace &record, bag_definition *type) {
    std::uint8_t *bytes = nullptr;
    std::uint32_t length = 0;
    require(bag_encode_v3(&bytes, &length, &record, type, 1) == 0);
    std::vector<std::uint8_t> encoding(bytes, bytes + length);
    std::free(bytes);
    return encoding;
}

void check(std::span<const std::uint8_t> bytes, bag_definition *type) {
    ipv4_acl_config_ace record;
    std::memset(&record, 0xA5, sizeof record);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (bag_decode_v3(bytes.data(), length, &record, type, 0) == 0) {
        const std::vector<std::uint8_t> again = encode(record, type);
        require(again.size() == bytes.size() &&
                std::memcmp(again.data(), bytes.data(), bytes.size()) == 0);
        require(aceconv::cbor_item_length(bytes) == bytes.size());
        bag_free_indirections(&record, &ipv4_acl_config_ace_bag);
    } else {
        const ipv4_acl_config_ace empty{};
        require(std::memcmp(&record, &empty, sizeof record) == 0);
        require(!aceconv::bag_last_error().empty());
    }
    if (const auto item = aceconv::cbor_item_length(bytes)) {
        require(*item > 0 && *item <= bytes.size());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static bag_definition *const type = definition();
    // An empty record's encoding is the head and an empty map.
    static const std::vector<std::uint8_t> empty = encode({}, type);
    check({data, size}, type);
    std::vector<std::uint8_t> headed(empty.begin(), empty.end() - 1);
    headed.insert(headed.end(), data, data + size);
    check(headed, type);
    return 0;
}
