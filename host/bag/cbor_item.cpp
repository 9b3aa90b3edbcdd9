#include "host/bag/cbor_item.h"

#include <array>
#include <cbor.h>
#include <utility>

#include "host/bag_library.h"

namespace aceconv {
namespace {

void put(void *item, CborKind kind, std::uint64_t value) {
    auto *const target = static_cast<Item *>(item);
    target->kind = kind;
    target->value = value;
}

template <CborKind kind, typename Value>
void counted(void *item, Value value) {
    put(item, kind, value);
}

template <CborKind kind>
void string(void *item, cbor_data /*data*/, std::size_t length) {
    put(item, kind, length);
}

void indefinite(void *item) {
    put(item, CborKind::indefinite, 0);
}

cbor_callbacks make_callbacks() noexcept {
    cbor_callbacks callbacks = cbor_empty_callbacks; // leaves the others CborKind::other
    callbacks.uint8 = counted<CborKind::number, std::uint8_t>;
    callbacks.uint16 = counted<CborKind::number, std::uint16_t>;
    callbacks.uint32 = counted<CborKind::number, std::uint32_t>;
    callbacks.uint64 = counted<CborKind::number, std::uint64_t>;
    callbacks.byte_string = string<CborKind::bytes>;
    callbacks.string = string<CborKind::text>;
    callbacks.array_start = counted<CborKind::array, std::size_t>;
    callbacks.map_start = counted<CborKind::map, std::size_t>;
    callbacks.tag = counted<CborKind::tag, std::uint64_t>;
    callbacks.byte_string_start = indefinite;
    callbacks.string_start = indefinite;
    callbacks.indef_array_start = indefinite;
    callbacks.indef_map_start = indefinite;
    callbacks.indef_break = indefinite;
    return callbacks;
}

const cbor_callbacks item_callbacks = make_callbacks();

/// Tags and simple values that have no meaning yet, which libcbor takes for malformed.
bool read_unassigned(std::span<const std::uint8_t> bytes, Item &item) noexcept {
    constexpr unsigned tags = 6;
    constexpr unsigned simple_values = 7;
    const unsigned major = bytes[0] >> 5U;
    const unsigned info = bytes[0] & 0x1FU;
    if (major < tags || info > (major == tags ? 27 : 24)) {
        return false;
    }
    item.kind = major == tags ? CborKind::tag : CborKind::other;
    item.size = 1 + (info < 24 ? 0 : std::size_t{1} << (info - 24U));
    return item.size <= bytes.size() &&
           // false, for one, has a shorter form only
           (major != simple_values || info != 24 || bytes[1] >= 32);
}

} // namespace

ItemStatus read_item(std::span<const std::uint8_t> bytes, Item &item) noexcept {
    item = {CborKind::other, 0, 0};
    const cbor_decoder_result result =
        cbor_stream_decode(bytes.data(), bytes.size(), &item_callbacks, &item);
    item.size = result.read;
    if (result.status == CBOR_DECODER_FINISHED) {
        return ItemStatus::ok;
    }
    if (result.status == CBOR_DECODER_NEDATA) { // its `required` can have overflowed
        return ItemStatus::cut_off;
    }
    return read_unassigned(bytes, item) ? ItemStatus::ok : ItemStatus::malformed;
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
    const bool is_string = item.kind == CborKind::bytes || item.kind == CborKind::text;
    return item.size == head + (is_string ? item.value : 0);
}

namespace {

constexpr std::uint8_t indefinite_info = 0x1F; // the lower five bits of an item's first byte
constexpr std::uint8_t break_byte = 0xFF;
constexpr std::uint8_t null_item = 0xF6;

} // namespace

/// Whether an element may start with this byte.
bool CborItemEnd::OpenItem::takes(std::uint8_t first) const {
    const bool string = head >> 5U == 2 || head >> 5U == 3;
    return !string || (first >> 5U == head >> 5U && (first & 0x1FU) != indefinite_info);
}

bool CborItemEnd::OpenItem::may_end() const {
    return head >> 5U != 5 || !odd;
}

std::optional<std::size_t> CborItemEnd::length(std::span<const std::uint8_t> bytes) {
    while (owed_ > 0 || !open_.empty()) {
        // Every item takes a byte at least, so no count can overflow.
        if (at_ == bytes.size() || owed_ > bytes.size() - at_) {
            return std::nullopt;
        }
        const std::uint8_t first = bytes[at_];
        if (owed_ == 0 && first == break_byte) {
            if (!open_.back().may_end()) {
                return std::nullopt;
            }
            owed_ = open_.back().owed;
            open_.pop_back();
            ++at_;
            continue;
        }
        Item item{};
        if ((owed_ == 0 && !open_.back().takes(first)) || first == break_byte ||
            read_item(bytes.subspan(at_), item) != ItemStatus::ok) {
            return std::nullopt;
        }
        if ((item.kind == CborKind::array || item.kind == CborKind::map) &&
            item.value > bytes.size() - at_ - item.size) {
            return std::nullopt;
        }
        at_ += item.size;
        if (owed_ > 0) {
            --owed_;
        } else {
            open_.back().odd = !open_.back().odd;
        }
        if (item.kind == CborKind::indefinite) {
            open_.push_back({std::exchange(owed_, 0), first});
        } else if (item.kind == CborKind::array) {
            owed_ += item.value;
        } else if (item.kind == CborKind::map) {
            owed_ += 2 * item.value;
        } else if (item.kind == CborKind::tag) {
            owed_ += 1;
        }
    }
    return at_;
}

namespace {

/// The bytes that a number takes, by its first.
constexpr auto number_bytes = [] {
    std::array<std::uint8_t, 28> sizes{};
    sizes.fill(1);
    for (unsigned power = 0; power < 4; ++power) {
        sizes[24 + power] = static_cast<std::uint8_t>(1 + (1U << power));
    }
    return sizes;
}();

} // namespace

// What encodings and labels consist of is looked at here, any other item by libcbor.
std::optional<std::size_t> cbor_item_length(std::span<const std::uint8_t> bytes) {
    std::size_t at = 0;
    for (std::uint64_t owed = 1; owed > 0; --owed) { // items still to come
        if (at >= bytes.size()) {
            return CborItemEnd().length(bytes);
        }
        if (bytes[at] < number_bytes.size()) {
            at += number_bytes[bytes[at]];
            continue;
        }
        if (bytes[at] == null_item) {
            ++at;
            continue;
        }
        CborHead head{};
        if (!read_cbor_head(bytes.data() + at, bytes.data() + bytes.size(), head)) {
            return CborItemEnd().length(bytes);
        }
        at += head.size;
        if (head.value > bytes.size() - at) {
            return CborItemEnd().length(bytes);
        }
        switch (head.kind) {
        case CborKind::bytes:
        case CborKind::text:
            at += head.value;
            break;
        case CborKind::array:
            owed += head.value;
            break;
        case CborKind::map:
            owed += 2 * head.value;
            break;
        default:
            return CborItemEnd().length(bytes);
        }
    }
    return at <= bytes.size() ? std::optional(at) : CborItemEnd().length(bytes);
}

} // namespace aceconv
