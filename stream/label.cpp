#include "stream/label.h"

#include <algorithm>
#include <cbor.h>
#include <limits>

#include "host/bag/cbor_item.h"
#include "stream/text.h"

namespace aceconv {
namespace {
constexpr std::uint8_t array_of_two = 0x82;
constexpr std::size_t max_head_bytes = 9; // bytes of a CBOR item's head
} // namespace

void append_label(std::string &out, const EntryKey &key) {
    if (!key.acl && !key.sequence) {
        return;
    }
    unsigned char head[max_head_bytes];
    const auto append = [&](std::size_t size) {
        out.append(reinterpret_cast<const char *>(head), size);
    };
    append(cbor_encode_array_start(2, head, sizeof head));
    if (key.acl) {
        append(cbor_encode_string_start(key.acl->size(), head, sizeof head));
        out += *key.acl;
    } else {
        append(cbor_encode_null(head, sizeof head));
    }
    append(key.sequence ? cbor_encode_uint(*key.sequence, head, sizeof head)
                        : cbor_encode_null(head, sizeof head));
}

bool is_label(std::span<const std::uint8_t> item) {
    return !item.empty() && item.front() == array_of_two;
}

EntryKey parse_label(const std::span<const std::uint8_t> item) {
    EntryKey key;
    Item head{}, name{}, sequence{};
    if (read_item(item, head) == ItemStatus::ok &&
        read_item(item.subspan(head.size), name) == ItemStatus::ok &&
        read_item(item.subspan(head.size + name.size), sequence) == ItemStatus::ok) {
        if (name.kind == ItemKind::text && is_utf8({name.data, name.value})) {
            key.acl.emplace(reinterpret_cast<const char *>(name.data), name.value);
        }
        if (sequence.kind == ItemKind::number && sequence.value != 0 &&
            sequence.value <= std::numeric_limits<std::uint32_t>::max()) {
            key.sequence = static_cast<std::uint32_t>(sequence.value);
        }
    }
    // Whatever was not understood does not come back the same.
    std::string again;
    append_label(again, key);
    if (!std::equal(again.begin(), again.end(), item.begin(), item.end(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; })) {
        throw DataError("", "not a label: expected an array of a list's name or null and a "
                            "sequence number or null");
    }
    if (const std::string fault = key.acl ? list_name_fault(*key.acl) : ""; !fault.empty()) {
        throw DataError("", fault);
    }
    return key;
}

} // namespace aceconv
