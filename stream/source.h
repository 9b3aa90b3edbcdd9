// Where entries come from: one at a time, from a document, from entries one a
// line, or from a sequence of encodings.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/entry.h"
#include "stream/digits.h"
#include "stream/surroundings.h"
#include "stream/window.h"

namespace aceconv {

using Bytes = std::vector<std::uint8_t>;
/// An encoding that someone else holds.
using Encoding = std::span<const std::uint8_t>;

inline void append(std::string &bytes, Encoding encoding) {
    bytes.append(reinterpret_cast<const char *>(encoding.data()), encoding.size());
}

/// json: a document, or entries as objects one after the other; ndjson: an
/// entry a line; xml: a document or one entry; cbor: encodings; hex and base64: encodings
/// as text, see bytes_of_digits.
enum class InputFormat { json, ndjson, xml, cbor, hex, base64 };

struct Position {
    // Of the entry's first character, or of the node in it that was refused; of encodings as
    // digits, of the first digit. 0 where there are no lines.
    std::uint64_t line = 0;
    std::uint64_t ordinal = 0; // counted from 1
    std::size_t input = 0;     // which of several inputs, counted from 0
    // How many entries the input had before the list, which may have a namesake in another
    // document; 0 of encodings.
    std::uint64_t before_list = 0;
};

/// One entry: its text, or its encoding.
struct Entry {
    EntryKey key = {};
    Position position = {};
    Schema schema = Schema::base;
    bool schema_known = true;          // false: an encoding of which nothing says the schema
    bool in_document = false;          // stands in a named list, so it needs a sequence number
    std::optional<Format> format = {}; // of the text; none for an encoding
    std::string text = {};
    Bytes encoding = {};
};

/// A list in a document that has no entries, not even bad ones.
struct EmptyList {
    std::string acl;
    Position position; // of its name
};

class Source {
  public:
    virtual ~Source() = default;

    /// Moves on to the next entry; false at the end. `entry` may be one that was
    /// used before. Throws DataError for a fault of this one entry, after which
    /// the next call goes on behind it, and StreamError where the rest cannot be
    /// read, and `entry.position` tells where in either case; SchemaUnknown when
    /// nothing tells the schema of text. Throws InputPauses where it would have to wait
    /// for input and may not; the next call then goes on where this one stopped.
    virtual bool next(Entry &entry) = 0;

    /// The schema of the data, once it is known.
    [[nodiscard]] virtual std::optional<Schema> schema() const = 0;

    /// What stood around the entries so far.
    [[nodiscard]] virtual Surroundings surroundings() const { return {}; }

    /// Those that were met since the last call.
    std::vector<EmptyList> take_empty_lists() { return std::exchange(empty_lists_, {}); }

  protected:
    std::vector<EmptyList> empty_lists_;
};

/// Opens `path` ("-" is standard input). Format and schema are recognised from
/// the data when they are not given; of encodings, labels say the schema. `meter`
/// follows the reading. Throws IoError and StreamError.
std::unique_ptr<Source>
open_source(const std::string &path, std::optional<InputFormat> format,
            std::optional<Schema> schema,
            std::shared_ptr<InputMeter> meter = std::make_shared<InputMeter>(),
            OtherModules others = OtherModules::refused);

/// The same over any input. An empty one is no entries where the format is given as
/// ndjson or cbor, and refused otherwise.
std::unique_ptr<Source> make_source(Window window, std::optional<InputFormat> format,
                                    std::optional<Schema> schema,
                                    OtherModules others = OtherModules::refused);

/// The formats' sources.
std::unique_ptr<Source> make_json_source(Window window, std::optional<Schema> schema,
                                         OtherModules others);
std::unique_ptr<Source> make_object_source(Window window, bool lines, std::optional<Schema> schema);
std::unique_ptr<Source> make_xml_source(Window window, std::optional<Schema> schema,
                                        OtherModules others);
/// `lines` are those of the text that the encodings were, if they were one.
std::unique_ptr<Source> make_encoding_source(Window window, std::optional<Schema> schema,
                                             std::shared_ptr<DigitLines> lines = nullptr);

} // namespace aceconv
