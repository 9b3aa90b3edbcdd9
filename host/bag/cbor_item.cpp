#include "host/bag/cbor_item.h"

#include <cbor.h>

#include "host/bag_library.h"

namespace aceconv {
namespace {

void put(void *item, ItemKind kind, std::uint64_t value) {
    auto *const target = static_cast<Item *>(item);
    target->kind = kind;
    target->value = value;
}

template <ItemKind kind, typename Value>
void counted(void *item, Value value) {
    put(item, kind, value);
}

template <ItemKind kind>
void string(void *item, cbor_data data, std::size_t length) {
    put(item, kind, length);
    static_cast<Item *>(item)->data = data;
}

void indefinite(void *item) {
    put(item, ItemKind::indefinite, 0);
}

cbor_callbacks make_callbacks() noexcept {
    cbor_callbacks callbacks = cbor_empty_callbacks; // leaves the others ItemKind::other
    callbacks.uint8 = counted<ItemKind::number, std::uint8_t>;
    callbacks.uint16 = counted<ItemKind::number, std::uint16_t>;
    callbacks.uint32 = counted<ItemKind::number, std::uint32_t>;
    callbacks.uint64 = counted<ItemKind::number, std::uint64_t>;
    callbacks.byte_string = string<ItemKind::bytes>;
    callbacks.string = string<ItemKind::text>;
    callbacks.array_start = counted<ItemKind::array, std::size_t>;
    callbacks.map_start = counted<ItemKind::map, std::size_t>;
    callbacks.tag = counted<ItemKind::tag, std::uint64_t>;
    callbacks.byte_string_start = indefinite;
    callbacks.string_start = indefinite;
    callbacks.indef_array_start = indefinite;
    callbacks.indef_map_start = indefinite;
    callbacks.indef_break = indefinite;
    return callbacks;
}

const cbor_callbacks item_callbacks = make_callbacks();

/// Reads a number, string, array or map whose head and content are complete,
/// which is most of any encoding; false leaves the item to libcbor.
bool read_plain(std::span<const std::uint8_t> bytes, Item &item) noexcept {
    static constexpr ItemKind kinds[] = {ItemKind::number, ItemKind::other, ItemKind::bytes,
                                         ItemKind::text,   ItemKind::array, ItemKind::map};
    if (bytes.empty()) {
        return false;
    }
    const std::size_t major = bytes[0] >> 5U;
    const unsigned info = bytes[0] & 0x1FU;
    if (major >= std::size(kinds) || major == 1 || info > 27) {
        return false;
    }
    std::size_t head = 1;
    std::uint64_t value = info;
    if (info >= 24) {
        head += std::size_t{1} << (info - 24U);
        if (head > bytes.size()) {
            return false;
        }
        value = 0;
        for (std::size_t i = 1; i < head; ++i) {
            value = value << 8U | bytes[i];
        }
    }
    item = {kinds[major], value, nullptr, head};
    if (item.kind == ItemKind::bytes || item.kind == ItemKind::text) {
        if (value > bytes.size() - head) {
            return false;
        }
        item.data = bytes.data() + head;
        item.size += static_cast<std::size_t>(value);
    }
    return true;
}

} // namespace

ItemStatus read_item(std::span<const std::uint8_t> bytes, Item &item) noexcept {
    if (read_plain(bytes, item)) {
        return ItemStatus::ok;
    }
    item = {ItemKind::other, 0, nullptr, 0};
    const cbor_decoder_result result =
        cbor_stream_decode(bytes.data(), bytes.size(), &item_callbacks, &item);
    item.size = result.read;
    switch (result.status) {
    case CBOR_DECODER_FINISHED:
        return ItemStatus::ok;
    case CBOR_DECODER_NEDATA: // its `required` can have overflowed
        return ItemStatus::cut_off;
    default:
        return ItemStatus::malformed;
    }
}

bool is_shortest(const Item &item) noexcept {
    std::size_t head = 9;
    if (item.value < 24) {
        head = 1;
    } else if (item.value <= UINT8_MAX) {
        head = 2;
    } else if (item.value <= UINT16_MAX) {
        head = 3;
    } else if (item.value <= UINT32_MAX) {
        head = 5;
    }
    const bool is_string = item.kind == ItemKind::bytes || item.kind == ItemKind::text;
    return item.size == head + (is_string ? item.value : 0);
}

std::optional<std::size_t> cbor_item_length(std::span<const std::uint8_t> bytes) {
    std::size_t at = 0;
    std::uint64_t open = 1; // items still to come
    while (open > 0) {
        if (at < bytes.size() && bytes[at] < 24) { // most keys, many numbers
            ++at;
            --open;
            continue;
        }
        Item item{};
        if (read_item(bytes.subspan(at), item) != ItemStatus::ok ||
            item.kind == ItemKind::indefinite) {
            return std::nullopt;
        }
        at += item.size;
        --open;
        const std::size_t left = bytes.size() - at;
        // Every item takes a byte at least, so neither count can overflow.
        if ((item.kind == ItemKind::array || item.kind == ItemKind::map) && item.value > left) {
            return std::nullopt;
        }
        if (item.kind == ItemKind::array) {
            open += item.value;
        } else if (item.kind == ItemKind::map) {
            open += 2 * item.value;
        } else if (item.kind == ItemKind::tag) {
            open += 1;
        }
        if (open > left) {
            return std::nullopt;
        }
    }
    return at;
}

} // namespace aceconv
