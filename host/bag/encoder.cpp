#include <algorithm>
#include <arpa/inet.h>
#include <array>
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

/// A number's value; for strings and arrays what tells whether they are there:
/// the pointer, the count.
std::uint64_t load_number(MemberKind kind, const std::uint8_t *field) {
    switch (kind) {
    case MemberKind::u8:
        return *field;
    case MemberKind::u16:
        return load<std::uint16_t>(field);
    case MemberKind::address:
        return ntohl(load<std::uint32_t>(field));
    case MemberKind::u32:
    case MemberKind::array:
        return load<std::uint32_t>(field);
    default:
        return load<std::uint64_t>(field);
    }
}

/// A fixed array's content ends at its last byte that is not zero.
std::size_t content_length(const std::uint8_t *field, std::size_t width) {
    while (width > 0 && field[width - 1] == 0) {
        --width;
    }
    return width;
}

bool is_empty_block(const Member &member, const std::uint8_t *field);

inline bool is_empty(const Member &member, const std::uint8_t *field) {
    return member.kind < MemberKind::bytes ? load_number(member.kind, field) == 0
                                           : is_empty_block(member, field);
}

bool is_empty_block(const Member &member, const std::uint8_t *field) {
    if (member.kind == MemberKind::bytes) {
        return content_length(field, member.width) == 0;
    }
    for (const Member &inner : member.type->members) {
        if (!is_empty(inner, field + inner.offset)) {
            return false;
        }
    }
    return true;
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

[[nodiscard]] bool write_value(ByteSink &output, const Member &member, const std::uint8_t *field,
                               const char *name) {
    switch (member.kind) {
    case MemberKind::string:
        return write_string(output, field, name);
    case MemberKind::bytes:
        return write_bytes(output, field, member.width, name);
    case MemberKind::array:
        return write_array(output, *member.type, field, name);
    case MemberKind::record:
        return write_record(output, *member.type, field);
    default:
        return output.number(load_number(member.kind, field));
    }
}

bool write_record(ByteSink &output, const RecordType &type, const std::uint8_t *record) {
    std::array<std::uint16_t, max_members> present; // the first `count` are set
    std::size_t count = 0;
    const std::size_t whole_words = type.size / word_bytes;
    const WordMembers *const words = type.words.data();
    std::size_t next = 0; // member; one that reaches into several words is looked at once
    for (std::size_t word = 0; word < type.words.size(); ++word) {
        if (word < whole_words && load<std::uint64_t>(record + word * word_bytes) == 0) {
            continue;
        }
        const std::size_t end = words[word].end;
        for (next = std::max<std::size_t>(next, words[word].begin); next < end; ++next) {
            if (!is_empty(type.members[next], record + type.members[next].offset)) {
                present[count++] = static_cast<std::uint16_t>(next);
            }
        }
    }
    if (!output.map(count)) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t index = present[i];
        const Member &member = type.members[index];
        if (!output.number(index) ||
            !write_value(output, member, record + member.offset, type.names[index].c_str())) {
            return false;
        }
    }
    return true;
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
