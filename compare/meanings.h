// Encodings by number, so that many can be told apart by what they mean.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "aceconv/host/bag.h"
#include "stream/source.h"

namespace aceconv {

/// Each encoding is kept once, however often it is added.
class Meanings {
  public:
    explicit Meanings(const bag_descriptor &descriptor) : descriptor_(descriptor) {}

    struct Numbers {
        std::uint32_t encoding; // the same for equal ones of one schema
        // The same exactly where `differences` finds none between two; but a text that is no more
        // than the entry's sequence number in digits means nothing.
        std::uint32_t meaning;
    };
    /// Of an entry that was encoded in this schema. Throws DataError when it cannot be decoded.
    Numbers add(Schema schema, Encoding encoding, std::optional<std::uint32_t> sequence);

    [[nodiscard]] Schema schema(std::uint32_t encoding) const;
    [[nodiscard]] Encoding encoding(std::uint32_t encoding) const;

  private:
    static constexpr std::uint32_t unknown = UINT32_MAX;
    struct Known {
        const std::string *content;
        std::uint32_t meaning = unknown;
        std::uint32_t sequence = 0;              // that the record's text has; 0: no such text
        std::uint32_t meaning_without = unknown; // that text
    };

    std::uint32_t number_of(std::string content);
    void look_into(std::uint32_t number, Schema schema, Encoding encoding);

    const bag_descriptor &descriptor_;
    std::unordered_map<std::string, std::uint32_t> numbers_; // of a schema's sign and an encoding
    std::vector<Known> known_;                               // their contents are keys of numbers_
};

} // namespace aceconv
