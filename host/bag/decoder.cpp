// Decoding. Accepts exactly what the encoder writes: every deviation is named
// with the byte where it stands.

#include <arpa/inet.h>
#include <bit>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <new>

#include "host/bag/cbor_item.h"
#include "host/bag/definition.h"
#include "host/bag/failure.h"
#include "host/utf8.h"

namespace aceconv {
namespace {

class Decoder {
  public:
    /// What the record points to comes from malloc where there is no room.
    Decoder(std::span<const std::uint8_t> bytes, std::pmr::memory_resource *room)
        : bytes_(bytes), room_(room), at_(bytes.data()), end_(at_ + bytes.size()) {}

    [[nodiscard]] bool run(const bag_definition &definition, std::uint8_t *record) {
        if (bytes_.size() > max_encoding_bytes) {
            return fail(BagStatus::too_large, "an encoding of more than %zu bytes",
                        max_encoding_bytes);
        }
        if (!head(definition) || !fields(definition.types.front(), record)) {
            return false;
        }
        if (at_ != end_) {
            return fail(BagStatus::malformed, "byte %zu: %zu bytes after the encoding", offset(at_),
                        left());
        }
        return true;
    }

  private:
    [[nodiscard]] std::size_t offset(const std::uint8_t *at) const {
        return static_cast<std::size_t>(at - bytes_.data());
    }
    [[nodiscard]] std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }

    [[nodiscard]] bool malformed(const char *why) const {
        return fail(BagStatus::malformed, "byte %zu%s%s: %s", offset(item_at_),
                    member_ == nullptr ? "" : ", member ", member_ == nullptr ? "" : member_, why);
    }

    [[nodiscard]] bool truncated() const {
        return fail(BagStatus::truncated, "byte %zu: the encoding ends early", offset(item_at_));
    }

    /// Goes behind the head of an item that is to be of this kind, in deterministic
    /// form. What it announces must fit into the bytes left.
    [[nodiscard]] bool next(CborKind kind, std::uint64_t &value, const char *expected) {
        item_at_ = at_;
        CborHead head;
        if (!read_cbor_head(at_, end_, head) || head.kind != kind) {
            return next_item(kind, value, expected);
        }
        at_ += head.size;
        value = head.value;
        return kind == CborKind::number || value <= (kind == CborKind::map ? left() / 2 : left()) ||
               truncated();
    }

    [[nodiscard]] bool next_number(std::uint64_t &value, const char *expected) {
        if (at_ == end_ || *at_ >= 24) {
            return next(CborKind::number, value, expected);
        }
        item_at_ = at_; // most keys, many numbers
        value = *at_++;
        return true;
    }

    /// The same for any head.
    [[nodiscard, gnu::noinline]] bool next_item(CborKind kind, std::uint64_t &value,
                                                const char *expected) {
        Item item{};
        const ItemStatus status = read_item({at_, end_}, item);
        if (status == ItemStatus::cut_off) {
            return truncated();
        }
        if (status == ItemStatus::malformed) {
            return malformed("not a CBOR item");
        }
        if (item.kind >= CborKind::tag) {
            return malformed("a tag, negative number, simple value, float or indefinite length");
        }
        if (!is_shortest(item)) {
            return malformed("not in its shortest form");
        }
        value = item.value;
        const bool is_string = item.kind == CborKind::bytes || item.kind == CborKind::text;
        at_ += item.size - (is_string ? value : 0);
        if ((item.kind == CborKind::array && value > left()) ||
            (item.kind == CborKind::map && value > left() / 2)) {
            return truncated();
        }
        return item.kind == kind || malformed(expected);
    }

    /// A string's content, which it goes behind.
    [[nodiscard]] bool next_string(CborKind kind, std::string_view &content, const char *expected) {
        std::uint64_t length = 0;
        if (!next(kind, length, expected)) {
            return false;
        }
        content = {reinterpret_cast<const char *>(at_), static_cast<std::size_t>(length)};
        at_ += length;
        return true;
    }

    /// Type name and fingerprint: the bytes that the definition has ready, or
    /// else a reason.
    [[nodiscard]] bool head(const bag_definition &definition) {
        const auto &expected = definition.head;
        if (bytes_.size() > expected.size() &&
            std::memcmp(bytes_.data(), expected.data(), expected.size()) == 0) {
            at_ += expected.size();
            return true;
        }
        std::uint64_t parts = 0;
        if (!next(CborKind::array, parts, "expected an array of three")) {
            return false;
        }
        if (parts != 3) {
            return malformed("expected an array of three");
        }
        std::string_view name;
        std::string_view digest;
        if (!next_string(CborKind::text, name, "expected the type's name") ||
            !next_string(CborKind::bytes, digest, "expected a fingerprint")) {
            return false;
        }
        if (digest.size() != 8) {
            return malformed("expected a fingerprint of 8 bytes");
        }
        if (at_ == end_) {
            return truncated();
        }
        std::uint64_t found = 0;
        for (const char byte : digest) {
            found = found << 8 | static_cast<std::uint8_t>(byte);
        }
        return fail(BagStatus::mismatch,
                    "the encoding is of type %.*s, fingerprint %016" PRIx64
                    "; expected %s, fingerprint %016" PRIx64,
                    static_cast<int>(name.size() < 64 ? name.size() : 64), name.data(), found,
                    definition.type_name.c_str(), definition.fingerprint);
    }

    [[nodiscard]] bool fields(const RecordType &type, std::uint8_t *record,
                              bool may_be_empty = true) {
        std::uint64_t count = 0;
        if (!next(CborKind::map, count, "expected a map")) {
            return false;
        }
        if (count == 0 && !may_be_empty) {
            return malformed("an empty sub-record");
        }
        std::uint64_t lowest = 0; // key that may follow
        while (quick_numbers(type, record, lowest, count), count > 0) {
            --count;
            member_ = nullptr;
            std::uint64_t key = 0;
            if (!next_number(key, "expected a member's index")) {
                return false;
            }
            if (key < lowest) {
                return malformed("a member repeated or out of order");
            }
            if (key >= type.members.size()) {
                return malformed("no member has this index");
            }
            lowest = key + 1;
            const Member &member = type.members[key];
            member_ = type.names[key].c_str();
            if (!value(member, record + member.offset)) {
                return false;
            }
        }
        return true;
    }

    /// Keys and their numbers, which most pairs are, up to the first pair that is another or
    /// that something is the matter with.
    void quick_numbers(const RecordType &type, std::uint8_t *record, std::uint64_t &lowest,
                       std::uint64_t &count) {
        const Member *const members = type.members.data();
        const std::size_t known = type.members.size();
        const std::uint8_t *at = at_;
        std::uint64_t key = 0;
        std::uint64_t number = 0;
        for (; count > 0; --count) {
            const std::uint8_t *next = read_cbor_number(at, end_, key);
            if (next == nullptr || key < lowest || key >= known ||
                members[key].kind >= MemberKind::string) {
                break;
            }
            const Member &member = members[key];
            next = read_cbor_number(next, end_, number);
            if (next == nullptr || number == 0 || number > member.largest) {
                break;
            }
            store(member, number, record + member.offset);
            at = next;
            lowest = key + 1;
        }
        at_ = at;
    }

    [[nodiscard]] bool value(const Member &member, std::uint8_t *field) {
        switch (member.kind) {
        case MemberKind::string:
            return string(field);
        case MemberKind::bytes:
            return bytes(field, member.width);
        case MemberKind::record:
            return fields(*member.type, field, false);
        case MemberKind::array:
            return array(*member.type, field);
        default:
            return number(member, field);
        }
    }

    [[nodiscard]] bool number(const Member &member, std::uint8_t *field) {
        std::uint64_t number = 0;
        if (!next_number(number, "expected a number")) {
            return false;
        }
        if (number == 0) {
            return malformed("an explicit zero");
        }
        if (number > member.largest) {
            return malformed("a number beyond the member's width");
        }
        store(member, number, field);
        return true;
    }

    static void store(const Member &member, std::uint64_t number, std::uint8_t *field) {
        static_assert(std::endian::native == std::endian::little); // low bytes come first
        if (member.kind == MemberKind::address) {
            number = htonl(static_cast<std::uint32_t>(number));
        }
        switch (member.width) {
        case 1:
            *field = static_cast<std::uint8_t>(number);
            break;
        case 2:
            std::memcpy(field, &number, 2);
            break;
        case 4:
            std::memcpy(field, &number, 4);
            break;
        default:
            std::memcpy(field, &number, sizeof number);
        }
    }

    [[nodiscard]] bool string(std::uint8_t *field) {
        const bool text_comes = at_ == end_ || *at_ >> 5U != static_cast<unsigned>(CborKind::bytes);
        std::string_view content;
        if (!next_string(text_comes ? CborKind::text : CborKind::bytes, content,
                         "expected a string")) {
            return false;
        }
        if (content.size() > max_string_bytes) {
            return fail(BagStatus::too_large,
                        "byte %zu, member %s: a string of more than %zu bytes", offset(item_at_),
                        member_, max_string_bytes);
        }
        if (content.find('\0') != std::string_view::npos) {
            return malformed("a NUL inside a string");
        }
        if (is_utf8(content) != text_comes) {
            return malformed("UTF-8 is to be a text string, other content a byte string");
        }
        auto *const text = static_cast<char *>(block(content.size() + 1));
        if (text == nullptr) {
            return fail(BagStatus::no_memory, "no memory for a string of %zu bytes",
                        content.size());
        }
        content.copy(text, content.size());
        text[content.size()] = '\0';
        std::memcpy(field, &text, sizeof text);
        return true;
    }

    [[nodiscard]] bool bytes(std::uint8_t *field, std::size_t width) {
        std::string_view content;
        if (!next_string(CborKind::bytes, content, "expected a byte string")) {
            return false;
        }
        if (content.size() >= width) { // the last byte stays NUL
            return fail(BagStatus::too_large, "byte %zu, member %s: more than %zu bytes",
                        offset(item_at_), member_, width - 1);
        }
        if (content.empty() || content.back() == 0) {
            return malformed("an empty byte string or one that ends in a zero");
        }
        std::memcpy(field, content.data(), content.size());
        return true;
    }

    [[nodiscard]] bool array(const RecordType &element, std::uint8_t *field) {
        std::uint64_t announced = 0;
        if (!next(CborKind::array, announced, "expected an array")) {
            return false;
        }
        if (announced == 0) {
            return malformed("an empty array");
        }
        if (announced > max_elements) {
            return fail(BagStatus::too_large, "byte %zu, member %s: more than %zu elements",
                        offset(item_at_), member_, max_elements);
        }
        const auto count = static_cast<std::uint32_t>(announced);
        auto *const elements = static_cast<std::uint8_t *>(block(count * element.size));
        if (elements == nullptr) {
            return fail(BagStatus::no_memory, "no memory for %u elements", count);
        }
        std::memset(elements, 0, count * element.size);
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

    /// Null when there is no memory.
    [[nodiscard]] void *block(std::size_t size) {
        if (room_ == nullptr) {
            return std::malloc(size);
        }
        try {
            return room_->allocate(size);
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
    }

    const std::span<const std::uint8_t> bytes_;
    std::pmr::memory_resource *const room_;
    const std::uint8_t *at_;
    const std::uint8_t *const end_;
    const std::uint8_t *item_at_ = nullptr; // where the item last read starts
    const char *member_ = nullptr;          // that is being read
};

[[nodiscard]] bool decode(const std::uint8_t *encoded, std::uint32_t length, void *record,
                          const bag_definition *definition,
                          std::pmr::memory_resource *room = nullptr) {
    if (definition == nullptr) {
        return fail(BagStatus::not_registered, "the type is not registered");
    }
    const RecordType &type = definition->types.front();
    auto *const target = static_cast<std::uint8_t *>(record);
    std::memset(target, 0, type.size);
    if (Decoder({encoded, length}, room).run(*definition, target)) {
        return true;
    }
    if (room == nullptr) {
        release_blocks(type, target);
    }
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

std::uint32_t aceconv::bag_decode_lent(std::span<const std::uint8_t> encoded, void *record,
                                       const bag_descriptor *descriptor,
                                       std::pmr::memory_resource &room) {
    return finished(decode(encoded.data(), static_cast<std::uint32_t>(encoded.size()), record,
                           find_definition(descriptor), &room));
}
