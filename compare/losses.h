// What an entry loses on its way, found on the nodes and records that its
// conversion makes anyway: what the finished text, or record, no longer says of
// what the source meant. Every verb finds and words its losses here.
//
// All functions throw DataError where the entry cannot be converted.
#pragma once

#include <string>
#include <vector>

#include "compare/changes.h"
#include "compare/record_view.h"
#include "stream/codec.h"

namespace aceconv {

using Losses = std::vector<Change>;

/// Appends the text of `entry` in the schema `to` and adds what it does not say,
/// unless `losses` is null. The entry is text or an encoding of entry.schema; the
/// two schemas may be the same.
void convert(Codec &codec, const RecordView &view, Entry &entry, Schema to, Format format,
             std::string &text, Losses *losses);

/// What is lost when `entry` is encoded, and its encoding decoded in the entry's own
/// schema. `encoding` is what codec.encode(entry) has just returned.
Losses losses_there_and_back(Codec &codec, const RecordView &view, const Entry &entry,
                             Encoding encoding);

/// In words, what comes back when `encoding`, of `entry`, is written in the schema `to`.
std::string words_of_return(Codec &codec, const RecordView &view, const Entry &entry,
                            Encoding encoding, Schema to);

/// What is lost when `entry` is encoded: the nodes that its encoding does not keep.
/// `encoding` is what codec.encode(entry) has just returned.
Losses losses_of_encoding(Codec &codec, const RecordView &view, const Entry &entry,
                          Encoding encoding);

/// The user-defined fields of a stored encoding that no entry takes over; `why`
/// says why that is.
Losses losses_of_stored(const RecordView &view, const bag_descriptor &descriptor, Encoding stored,
                        const std::string &why);

/// What differs between two encodings by what they mean in the schemas that they
/// were written in.
std::vector<Change> differences(const RecordView &view, const bag_descriptor &descriptor,
                                Encoding before, Schema before_schema, Encoding after,
                                Schema after_schema);

} // namespace aceconv
