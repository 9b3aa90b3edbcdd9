// Decoding. Accepts exactly what the encoder writes: every deviation is named
// with the byte where it stands.

#include <arpa/inet.h>
#include <cinttypes>
#include <cstdlib>
#include <cstring>

#include "host/bag/cbor_item.h"
#include "host/bag/definition.h"
#include "host/bag/failure.h"
#include "host/utf8.h"

namespace aceconv {
namespace {

class Decoder {
  public:
    explicit Decoder(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool run(const bag_definition &definition, std::uint8_t *record) {
        if (bytes_.size() > max_encoding_bytes) {
            return fail(BagStatus::too_large, "an encoding of more than %zu bytes",
                        max_encoding_bytes);
        }
        if (!head(definition) || !fields(definition.types.front(), record)) {
            return false;
        }
        if (at_ != bytes_.size()) {
            return fail(BagStatus::malformed, "byte %zu: %zu bytes after the encoding", at_,
                        bytes_.size() - at_);
        }
        return true;
    }

  private:
    [[nodiscard]] bool malformed(const char *why) const {
        return fail(BagStatus::malformed, "byte %zu%s%s: %s", item_at_,
                    member_ == nullptr ? "" : ", member ", member_ == nullptr ? "" : member_, why);
    }

    [[nodiscard]] bool truncated() const {
        return fail(BagStatus::truncated, "byte %zu: the encoding ends early", item_at_);
    }

    /// Reads an item's head, and a string's content, in deterministic form. What
    /// an array or map announces must fit into the bytes left.
    [[nodiscard]] bool next(Item &item) {
        item_at_ = at_;
        if (at_ < bytes_.size() && bytes_[at_] < 24) { // most keys, many numbers
            item = {ItemKind::number, bytes_[at_++], nullptr, 1};
            return true;
        }
        const ItemStatus status = read_item(bytes_.subspan(at_), item);
        if (status == ItemStatus::cut_off) {
            return truncated();
        }
        if (status == ItemStatus::malformed) {
            return malformed("not a CBOR item");
        }
        if (item.kind >= ItemKind::tag) {
            return malformed("a tag, negative number, simple value, float or indefinite length");
        }
        if (!is_shortest(item)) {
            return malformed("not in its shortest form");
        }
        at_ += item.size;
        if (item.kind != ItemKind::array && item.kind != ItemKind::map) {
            return true;
        }
        const std::size_t left = bytes_.size() - at_;
        return item.value <= (item.kind == ItemKind::map ? left / 2 : left) || truncated();
    }

    [[nodiscard]] bool next(Item &item, ItemKind kind, const char *expected) {
        if (!next(item)) {
            return false;
        }
        return item.kind == kind || malformed(expected);
    }

    /// Type name and fingerprint: the bytes that the definition has ready, or
    /// else a reason.
    [[nodiscard]] bool head(const bag_definition &definition) {
        const auto &expected = definition.head;
        if (bytes_.size() > expected.size() &&
            std::memcmp(bytes_.data(), expected.data(), expected.size()) == 0) {
            at_ = expected.size();
            return true;
        }
        Item item{};
        if (!next(item, ItemKind::array, "expected an array of three")) {
            return false;
        }
        if (item.value != 3) {
            return malformed("expected an array of three");
        }
        Item name{};
        if (!next(name, ItemKind::text, "expected the type's name")) {
            return false;
        }
        Item digest{};
        if (!next(digest, ItemKind::bytes, "expected a fingerprint")) {
            return false;
        }
        if (digest.value != 8) {
            return malformed("expected a fingerprint of 8 bytes");
        }
        if (at_ == bytes_.size()) {
            return truncated();
        }
        std::uint64_t found = 0;
        for (const std::uint8_t byte : bytes_.subspan(at_ - 8, 8)) {
            found = found << 8 | byte;
        }
        return fail(BagStatus::mismatch,
                    "the encoding is of type %.*s, fingerprint %016" PRIx64
                    "; expected %s, fingerprint %016" PRIx64,
                    static_cast<int>(name.value < 64 ? name.value : 64),
                    reinterpret_cast<const char *>(name.data), found, definition.type_name.c_str(),
                    definition.fingerprint);
    }

    [[nodiscard]] bool fields(const RecordType &type, std::uint8_t *record,
                              bool may_be_empty = true) {
        Item map{};
        if (!next(map, ItemKind::map, "expected a map")) {
            return false;
        }
        if (map.value == 0 && !may_be_empty) {
            return malformed("an empty sub-record");
        }
        std::uint64_t lowest = 0; // key that may follow
        for (std::uint64_t i = 0; i < map.value; ++i) {
            member_ = nullptr;
            Item key{};
            if (!next(key, ItemKind::number, "expected a member's index")) {
                return false;
            }
            if (key.value < lowest) {
                return malformed("a member repeated or out of order");
            }
            if (key.value >= type.members.size()) {
                return malformed("no member has this index");
            }
            lowest = key.value + 1;
            const Member &member = type.members[key.value];
            member_ = type.names[key.value].c_str();
            if (!value(member, record + member.offset)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] bool value(const Member &member, std::uint8_t *field) {
        switch (member.kind) {
        case MemberKind::u8:
            return number<std::uint8_t>(field);
        case MemberKind::u16:
            return number<std::uint16_t>(field);
        case MemberKind::u32:
            return number<std::uint32_t>(field);
        case MemberKind::u64:
            return number<std::uint64_t>(field);
        case MemberKind::address:
            return address(field);
        case MemberKind::string:
            return string(field);
        case MemberKind::bytes:
            return bytes(field, member.width);
        case MemberKind::record:
            return fields(*member.type, field, false);
        case MemberKind::array:
            return array(*member.type, field);
        }
        return false;
    }

    template <typename Number>
    [[nodiscard]] bool number(std::uint8_t *field) {
        Item item{};
        if (!next(item, ItemKind::number, "expected a number")) {
            return false;
        }
        if (item.value == 0) {
            return malformed("an explicit zero");
        }
        const auto number = static_cast<Number>(item.value);
        if (number != item.value) {
            return malformed("a number beyond the member's width");
        }
        std::memcpy(field, &number, sizeof number);
        return true;
    }

    [[nodiscard]] bool address(std::uint8_t *field) {
        std::uint32_t address = 0;
        if (!number<std::uint32_t>(reinterpret_cast<std::uint8_t *>(&address))) {
            return false;
        }
        address = htonl(address);
        std::memcpy(field, &address, sizeof address);
        return true;
    }

    [[nodiscard]] bool string(std::uint8_t *field) {
        Item item{};
        if (!next(item)) {
            return false;
        }
        if (item.kind != ItemKind::text && item.kind != ItemKind::bytes) {
            return malformed("expected a string");
        }
        if (item.value > max_string_bytes) {
            return fail(BagStatus::too_large,
                        "byte %zu, member %s: a string of more than %zu bytes", item_at_, member_,
                        max_string_bytes);
        }
        const auto length = static_cast<std::size_t>(item.value);
        if (std::memchr(item.data, 0, length) != nullptr) {
            return malformed("a NUL inside a string");
        }
        const auto *const content = reinterpret_cast<const char *>(item.data);
        if (is_utf8({content, length}) != (item.kind == ItemKind::text)) {
            return malformed("UTF-8 is to be a text string, other content a byte string");
        }
        auto *const text = static_cast<char *>(std::malloc(length + 1));
        if (text == nullptr) {
            return fail(BagStatus::no_memory, "no memory for a string of %zu bytes", length);
        }
        std::memcpy(text, item.data, length);
        text[length] = '\0';
        std::memcpy(field, &text, sizeof text);
        return true;
    }

    [[nodiscard]] bool bytes(std::uint8_t *field, std::size_t width) {
        Item item{};
        if (!next(item, ItemKind::bytes, "expected a byte string")) {
            return false;
        }
        if (item.value >= width) { // the last byte stays NUL
            return fail(BagStatus::too_large, "byte %zu, member %s: more than %zu bytes", item_at_,
                        member_, width - 1);
        }
        const auto length = static_cast<std::size_t>(item.value);
        if (length == 0 || item.data[length - 1] == 0) {
            return malformed("an empty byte string or one that ends in a zero");
        }
        std::memcpy(field, item.data, length);
        return true;
    }

    [[nodiscard]] bool array(const RecordType &element, std::uint8_t *field) {
        Item item{};
        if (!next(item, ItemKind::array, "expected an array")) {
            return false;
        }
        if (item.value == 0) {
            return malformed("an empty array");
        }
        if (item.value > max_elements) {
            return fail(BagStatus::too_large, "byte %zu, member %s: more than %zu elements",
                        item_at_, member_, max_elements);
        }
        const auto count = static_cast<std::uint32_t>(item.value);
        auto *const elements = static_cast<std::uint8_t *>(std::calloc(count, element.size));
        if (elements == nullptr) {
            return fail(BagStatus::no_memory, "no memory for %u elements", count);
        }
        // The record owns the block from here on, also if an element is refused.
        std::memcpy(field, &count, sizeof count);
        std::memcpy(field + elements_pointer, &elements, sizeof elements);
        for (std::size_t i = 0; i < count; ++i) {
            if (!fields(element, elements + i * element.size)) {
                return false;
            }
        }
        return true;
    }

    std::span<const std::uint8_t> bytes_;
    std::size_t at_ = 0;
    std::size_t item_at_ = 0;      // where the item last read starts
    const char *member_ = nullptr; // that is being read
};

[[nodiscard]] bool decode(const std::uint8_t *encoded, std::uint32_t length, void *record,
                          const bag_definition *definition) {
    if (definition == nullptr) {
        return fail(BagStatus::not_registered, "the type is not registered");
    }
    const RecordType &type = definition->types.front();
    auto *const target = static_cast<std::uint8_t *>(record);
    std::memset(target, 0, type.size);
    if (Decoder({encoded, length}).run(*definition, target)) {
        return true;
    }
    release_blocks(type, target);
    std::memset(target, 0, type.size);
    return false;
}

} // namespace
} // namespace aceconv

using namespace aceconv;

uint32_t bag_decode_v3(const uint8_t *encoded, uint32_t length, void *record,
                       bag_definition *definition, uint32_t /*mode*/) {
    return finished(decode(encoded, length, record, definition));
}

uint32_t bag_decode(const uint8_t *encoded, uint32_t length, void *record,
                    const bag_descriptor *descriptor) {
    return finished(decode(encoded, length, record, find_definition(descriptor)));
}
