// Any bytes as an encoding: what is decoded encodes to the same bytes, what is refused leaves
// an empty record and a reason. Bytes without the right head get it.
#include <cstdlib>
#include <cstring>

#include "aceconv/plugin.h"
#include "fuzz/promises.h"
#include "host/bag_library.h"

namespace aceconv::fuzz {
namespace {

void check(Input bytes) {
    const bag_descriptor &descriptor = codec(Backend::bulk).descriptor();
    static bag_definition *const type = [&] {
        bag_definition *handle = nullptr;
        require(bag_definition_init(&descriptor, &handle) == 0, "the record has its definition");
        return handle;
    }();
    ipv4_acl_config_ace record;
    std::memset(&record, 0xA5, sizeof record);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    if (bag_decode_v3(bytes.data(), length, &record, type, 0) == 0) {
        require_same(text_of(encode_record(descriptor, record)), text_of(bytes),
                     "a record has one encoding");
        require(cbor_item_length(bytes) == bytes.size(), "an encoding is one item");
        bag_free_indirections(&record, &descriptor);
        for (const Schema schema : {Schema::base, Schema::um}) {
            check_encoding({.schema = schema, .encoding = {bytes.begin(), bytes.end()}});
        }
    } else {
        const ipv4_acl_config_ace empty{};
        require(std::memcmp(&record, &empty, sizeof record) == 0, "a refused record is empty");
        require(!bag_last_error().empty(), "a refusal has its reason");
    }
    if (const auto item = cbor_item_length(bytes)) {
        require(*item > 0 && *item <= bytes.size(), "an item lies within its bytes");
    }
}

} // namespace

void check_bag(Input bytes) {
    // An empty record's encoding is the head and an empty map.
    static const Bytes empty = encode_record(codec(Backend::bulk).descriptor(), {});
    check(bytes);
    Bytes headed(empty.begin(), empty.end() - 1);
    headed.insert(headed.end(), bytes.begin(), bytes.end());
    check(headed);
}

} // namespace aceconv::fuzz
