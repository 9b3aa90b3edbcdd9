#include <algorithm>
#include <arpa/inet.h>
#include <bit>
#include <cstring>

#include "host/bag/byte_sink.h"
#include "host/bag/definition.h"
#include "host/bag/failure.h"
#include "host/utf8.h"

namespace aceconv {
namespace {

template <typename Value>
Value load(const std::uint8_t *field) {
    Value value;
    std::memcpy(&value, field, sizeof value);
    return value;
}

/// Up to eight bytes, zeros behind them.
std::uint64_t word_at(const std::uint8_t *bytes, std::size_t size) {
    if (size >= word_bytes) {
        return load<std::uint64_t>(bytes);
    }
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, size);
    return word;
}

/// A fixed array's content ends at its last byte that is not zero.
std::size_t content_length(const std::uint8_t *field, std::size_t width) {
    while (width > 0 && field[width - 1] == 0) {
        --width;
    }
    return width;
}

[[nodiscard]] bool write_record(ByteSink &output, const RecordType &type,
                                const std::uint8_t *record);

[[nodiscard]] bool write_string(ByteSink &output, const std::uint8_t *field, const char *name) {
    const auto *const text = load<const char *>(field);
    const std::size_t length = strnlen(text, max_string_bytes + 1);
    if (length > max_string_bytes) {
        return fail(BagStatus::too_large, "member %s: a string of more than %zu bytes", name,
                    max_string_bytes);
    }
    const std::span content(reinterpret_cast<const std::uint8_t *>(text), length);
    return is_utf8({text, length}) ? output.text(content) : output.bytes(content);
}

[[nodiscard]] bool write_bytes(ByteSink &output, const std::uint8_t *field, std::size_t width,
                               const char *name) {
    const std::size_t length = content_length(field, width);
    if (length == width) {
        return fail(BagStatus::too_large, "member %s: no NUL at the end of %zu bytes", name, width);
    }
    return output.bytes({field, length});
}

[[nodiscard]] bool write_array(ByteSink &output, const RecordType &element,
                               const std::uint8_t *field, const char *name) {
    const auto count = load<std::uint32_t>(field);
    const auto *const elements = load<const std::uint8_t *>(field + elements_pointer);
    if (count > max_elements) {
        return fail(BagStatus::too_large, "member %s: %u elements, at most %zu", name, count,
                    max_elements);
    }
    if (elements == nullptr) {
        return fail(BagStatus::malformed, "member %s: %u elements, but no block holds them", name,
                    count);
    }
    if (!output.array(count)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!write_record(output, element, elements + i * element.size)) {
            return false;
        }
    }
    return true;
}

[[nodiscard, gnu::noinline]] bool write_value(ByteSink &output, const Member &member,
                                              const std::uint8_t *field, const char *name) {
    switch (member.kind) {
    case MemberKind::string:
        return write_string(output, field, name);
    case MemberKind::bytes:
        return write_bytes(output, field, member.width, name);
    case MemberKind::array:
        return write_array(output, *member.type, field, name);
    case MemberKind::record:
        return write_record(output, *member.type, field);
    default: // a number
        return false;
    }
}

/// The high bit of each byte that is not zero.
constexpr std::uint64_t set_bytes(std::uint64_t word) {
    constexpr std::uint64_t low = 0x7F7F7F7F7F7F7F7F;
    return (((word & low) + low) | word) & ~low;
}

/// The members' values as they stand, one after the other: goes once over the bytes
/// that are not zero, each of which says whose it is.
bool write_record(ByteSink &output, const RecordType &type, const std::uint8_t *record) {
    static_assert(std::endian::native == std::endian::little); // a word's low byte is its first
    std::size_t map = 0;
    if (!output.begin_map(map)) {
        return false;
    }
    const Member *const members = type.members.data();
    const std::uint16_t *const deciding = type.deciding.data();
    const std::size_t whole = type.size / word_bytes * word_bytes;
    std::size_t count = 0;
    std::size_t next = 0; // member that may follow
    for (std::size_t start = 0;; start += word_bytes) {
        while (start < whole && load<std::uint64_t>(record + start) == 0) {
            start += word_bytes;
        }
        if (start >= type.size) {
            return output.end_map(map, count);
        }
        const std::uint64_t word = word_at(record + start, type.size - start);
        std::uint64_t left = set_bytes(word);
        while (left != 0) {
            const auto byte = static_cast<unsigned>(std::countr_zero(left)) / 8;
            const std::size_t index = deciding[start + byte];
            left &= left - 1;
            if (index < next || index == no_member) { // one more byte of a member, or padding
                continue;
            }
            const Member &member = members[index];
            next = index + 1;
            ++count;
            std::uint8_t *at = output.room();
            if (at == nullptr) {
                return false;
            }
            at = put_cbor_head(at, CborKind::number, index);
            if (member.kind < MemberKind::string) {
                const std::size_t shift = 8 * (member.offset - start);
                const std::uint64_t value = word >> shift & member.largest;
                left &= ~(member.largest << shift);
                at = put_cbor_head(at, CborKind::number,
                                   member.kind == MemberKind::address
                                       ? ntohl(static_cast<std::uint32_t>(value))
                                       : value);
                output.take(at);
                continue;
            }
            output.take(at);
            if (!write_value(output, member, record + member.offset, type.names[index].c_str())) {
                return false;
            }
        }
    }
}

[[nodiscard]] bool encode(std::uint8_t **encoded, std::uint32_t *length, const std::uint8_t *record,
                          const bag_definition *definition) {
    if (definition == nullptr) {
        return fail(BagStatus::not_registered, "the type is not registered");
    }
    ByteSink output;
    return output.append(definition->head) &&
           write_record(output, definition->types.front(), record) &&
           output.hand_out(encoded, length);
}

} // namespace
} // namespace aceconv

using namespace aceconv;

uint32_t bag_encode_v3(void *out_a, void *out_b, const void *record, bag_definition *definition,
                       uint32_t /*mode*/) {
    return finished(encode(static_cast<std::uint8_t **>(out_a), static_cast<std::uint32_t *>(out_b),
                           static_cast<const std::uint8_t *>(record), definition));
}
