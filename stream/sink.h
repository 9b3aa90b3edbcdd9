// Where entries go: a document, entries one a line, or a sequence of encodings.
#pragma once

#include <memory>
#include <string_view>

#include "host/entry.h"
#include "stream/output.h"

namespace aceconv {

/// cbor: encodings, each behind its label; bare_cbor: encodings alone. text: an entry a line,
/// in words, below a line for its list; for people, since no source reads it.
enum class OutputFormat { json, xml, ndjson, cbor, bare_cbor, text };

/// The format of the entry texts that a sink of this format takes.
constexpr Format text_format(OutputFormat format) {
    return format == OutputFormat::xml ? Format::xml : Format::json;
}

class Sink {
  public:
    virtual ~Sink() = default;
    /// Writes one entry: its text or words on one line, or its encoding. Throws DataError
    /// when the format has no place for it, and what the output throws.
    virtual void write(const EntryKey &key, Schema schema, std::string_view entry) = 0;
    /// Completes the output; nothing may follow.
    virtual void close() = 0;
};

/// Documents need each entry's list name and sequence number, and the entries
/// of a list together. Entries without a list name are written bare: in JSON
/// one a line, in XML not more than one. Texts are all of one schema, the first
/// one's; `schema` is that of an output without entries.
std::unique_ptr<Sink> make_sink(OutputFormat format, Schema schema, Taker &output);

} // namespace aceconv
