#include "stream/label.h"

#include <algorithm>
#include <cbor.h>

#include "stream/text.h"

namespace aceconv {
namespace {
constexpr std::uint8_t array_of_two = 0x82;
constexpr std::size_t max_head_bytes = 9; // bytes of a CBOR item's head

template <typename Number>
void take_sequence(void *key, Number sequence) {
    if (sequence != 0) {
        static_cast<EntryKey *>(key)->sequence = sequence;
    }
}

void take_name(void *key, cbor_data name, std::size_t length) {
    static_cast<EntryKey *>(key)->acl.emplace(reinterpret_cast<const char *>(name), length);
}

/// What of a key stands in the bytes, in whatever order and company.
EntryKey collect_key(std::span<const std::uint8_t> bytes) {
    cbor_callbacks callbacks = cbor_empty_callbacks;
    callbacks.string = take_name;
    callbacks.uint8 = take_sequence<std::uint8_t>;
    callbacks.uint16 = take_sequence<std::uint16_t>;
    callbacks.uint32 = take_sequence<std::uint32_t>;
    EntryKey key;
    while (!bytes.empty()) {
        const auto item = cbor_stream_decode(bytes.data(), bytes.size(), &callbacks, &key);
        if (item.status != CBOR_DECODER_FINISHED) {
            break;
        }
        bytes = bytes.subspan(item.read);
    }
    return key;
}

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
    const EntryKey key = collect_key(item);
    // Whatever is not a label does not come back the same.
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
