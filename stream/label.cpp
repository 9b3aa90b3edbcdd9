#include "stream/label.h"

#include <algorithm>
#include <cbor.h>

#include "host/bag_library.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::uint8_t array_of_two = 0x82;
constexpr std::uint8_t array_of_three = 0x83;
constexpr unsigned text_major = 3;        // of a CBOR item's first byte, the upper three bits
constexpr std::size_t max_head_bytes = 9; // bytes of a CBOR item's head

void take_name(void *label, cbor_data name, std::size_t length) {
    static_cast<Label *>(label)->key.acl.emplace(reinterpret_cast<const char *>(name), length);
}

void take_schema(void *label, cbor_data name, std::size_t length) {
    static_cast<Label *>(label)->schema =
        schema_of_name({reinterpret_cast<const char *>(name), length});
}

template <typename Number>
void take_sequence(void *label, Number sequence) {
    if (sequence != 0) {
        static_cast<Label *>(label)->key.sequence = sequence;
    }
}

/// What of a label stands in the bytes, whatever else does.
Label collect(std::span<const std::uint8_t> bytes) {
    cbor_callbacks callbacks = cbor_empty_callbacks;
    callbacks.uint8 = take_sequence<std::uint8_t>;
    callbacks.uint16 = take_sequence<std::uint16_t>;
    callbacks.uint32 = take_sequence<std::uint32_t>;
    Label label;
    for (int place = 0; !bytes.empty(); ++place) { // the array's head first
        callbacks.string = place < 3 ? take_name : take_schema;
        const auto item = cbor_stream_decode(bytes.data(), bytes.size(), &callbacks, &label);
        if (item.status != CBOR_DECODER_FINISHED) {
            break;
        }
        bytes = bytes.subspan(item.read);
    }
    return label;
}

void append_text(std::string &out, std::string_view text) {
    unsigned char head[max_head_bytes];
    const std::size_t size = cbor_encode_string_start(text.size(), head, sizeof head);
    out.append(reinterpret_cast<const char *>(head), size).append(text);
}

} // namespace

void append_label(std::string &out, const EntryKey &key, std::optional<Schema> schema) {
    unsigned char head[max_head_bytes];
    const auto append = [&](std::size_t size) {
        out.append(reinterpret_cast<const char *>(head), size);
    };
    append(cbor_encode_array_start(schema ? 3 : 2, head, sizeof head));
    if (key.acl) {
        append_text(out, *key.acl);
    } else {
        append(cbor_encode_null(head, sizeof head));
    }
    append(key.sequence ? cbor_encode_uint(*key.sequence, head, sizeof head)
                        : cbor_encode_null(head, sizeof head));
    if (schema) {
        append_text(out, schema_name(*schema));
    }
}

bool is_label(std::span<const std::uint8_t> item) {
    if (item.empty() || item.front() != array_of_three) {
        return !item.empty() && item.front() == array_of_two;
    }
    item = item.subspan(1);
    for (int element = 1; element < 3; ++element) {
        item = item.subspan(cbor_item_length(item).value());
    }
    return item.front() >> 5U == text_major;
}

Label parse_label(const std::span<const std::uint8_t> item) {
    Label label = collect(item);
    std::string again; // what is no label does not come back the same
    append_label(again, label.key, label.schema);
    if (!std::equal(again.begin(), again.end(), item.begin(), item.end(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; })) {
        throw DataError("", "not a label: expected an array of a list's name or null, a sequence "
                            "number or null, and a schema, \"base\" or \"um\"");
    }
    if (const std::string fault = label.key.acl ? list_name_fault(*label.key.acl) : "";
        !fault.empty()) {
        throw DataError("", fault);
    }
    return label;
}

} // namespace aceconv
