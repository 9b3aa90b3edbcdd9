#include "tools/aceconv/label.h"

#include <algorithm>
#include <cbor.h>
#include <limits>
#include <memory>

#include "tools/aceconv/text.h"

namespace aceconv::tool {
namespace {
constexpr std::uint8_t kArrayOfTwo = 0x82;
constexpr std::size_t kMaxHead = 9; // bytes of a CBOR item's head
} // namespace

void append_label(std::string &out, const EntryKey &key) {
    if (!key.acl && !key.sequence)
        return;
    unsigned char head[kMaxHead];
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
    return !item.empty() && item.front() == kArrayOfTwo;
}

EntryKey parse_label(std::span<const std::uint8_t> item) {
    cbor_load_result result{};
    const auto release = [](cbor_item_t *loaded) { cbor_decref(&loaded); };
    const std::unique_ptr<cbor_item_t, decltype(release)> label(
        cbor_load(item.data(), item.size(), &result), release);
    EntryKey key;
    if (label && cbor_isa_array(label.get()) && cbor_array_size(label.get()) == 2) {
        const cbor_item_t *name = cbor_array_handle(label.get())[0];
        const cbor_item_t *sequence = cbor_array_handle(label.get())[1];
        if (cbor_isa_string(name) && cbor_string_is_definite(name))
            key.acl.emplace(reinterpret_cast<const char *>(cbor_string_handle(name)),
                            cbor_string_length(name));
        if (cbor_isa_uint(sequence) && cbor_get_int(sequence) != 0 &&
            cbor_get_int(sequence) <= std::numeric_limits<std::uint32_t>::max())
            key.sequence = static_cast<std::uint32_t>(cbor_get_int(sequence));
    }
    // Whatever was not understood does not come back the same.
    std::string again;
    append_label(again, key);
    if (!std::equal(again.begin(), again.end(), item.begin(), item.end(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }))
        throw DataError("", "not a label: expected an array of a list's name or null and a "
                            "sequence number or null");
    if (const std::string fault = key.acl ? list_name_fault(*key.acl) : ""; !fault.empty())
        throw DataError("", fault);
    return key;
}

} // namespace aceconv::tool
