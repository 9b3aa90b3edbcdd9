#include "compare/meanings.h"

#include <charconv>
#include <string_view>
#include <utility>

#include "compare/decoded_record.h"
#include "compare/record_marks.h"
#include "compare/translation.h"

namespace aceconv {
namespace {

std::string content_of(Schema schema, Encoding encoding) {
    std::string content(1, schema == Schema::base ? 'b' : 'u');
    append(content, encoding);
    return content;
}

/// The number that the record's text of its sequence number is in digits; 0 for any other.
std::uint32_t number_in_text(const ipv4_acl_config_ace &record) {
    const std::string_view text = record.SequenceStr == nullptr ? "" : record.SequenceStr;
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && std::to_string(number) == text ? number : 0;
}

/// The one form of all records that mean the same: in the base schema, or in the UM schema what
/// has no counterpart there; without bits that repeat others.
std::string plain(const bag_descriptor &descriptor, DecodedRecord &record, Schema schema) {
    const ipv4_acl_config_ace own = record.get();
    if (translate(record.get(), schema, Schema::base).untranslated.empty()) {
        schema = Schema::base;
    } else {
        record.get() = own;
    }
    clear_derived_bits(record.get());
    return content_of(schema, encode_record(descriptor, record.get()));
}

} // namespace

Meanings::Numbers Meanings::add(Schema schema, Encoding encoding,
                                std::optional<std::uint32_t> sequence) {
    const std::uint32_t number = number_of(content_of(schema, encoding));
    if (known_[number].meaning == unknown) {
        look_into(number, schema, encoding);
    }
    const Known &known = known_[number];
    const bool says_its_number = known.sequence != 0 && known.sequence == sequence;
    return {number, says_its_number ? known.meaning_without : known.meaning};
}

Schema Meanings::schema(std::uint32_t encoding) const {
    return known_[encoding].content->front() == 'b' ? Schema::base : Schema::um;
}

Encoding Meanings::encoding(std::uint32_t encoding) const {
    const std::string &content = *known_[encoding].content;
    return {reinterpret_cast<const std::uint8_t *>(content.data()) + 1, content.size() - 1};
}

std::uint32_t Meanings::number_of(std::string content) {
    const auto [place, added] =
        numbers_.try_emplace(std::move(content), static_cast<std::uint32_t>(known_.size()));
    if (added) {
        known_.push_back({&place->first});
    }
    return place->second;
}

void Meanings::look_into(std::uint32_t number, Schema schema, Encoding encoding) {
    DecodedRecord record(descriptor_, encoding);
    const std::uint32_t sequence = number_in_text(record.get());
    const std::uint32_t meaning = number_of(plain(descriptor_, record, schema));
    std::uint32_t without = unknown;
    if (sequence != 0) {
        DecodedRecord silent(descriptor_, encoding);
        silent.get().SequenceStr = nullptr;
        silent.get().ConfigurationMask &= ~marks_of(*find_field("SequenceStr")).first;
        without = number_of(plain(descriptor_, silent, schema));
    }
    known_[number].meaning = meaning;
    known_[number].sequence = sequence;
    known_[number].meaning_without = without;
}

} // namespace aceconv
