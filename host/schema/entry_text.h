// A look over an entry's JSON before libyang parses it, and the document that
// libyang is given instead; for XML see host/libyang/xml_text.h.
//
// It holds what libyang would let pass or take too long over: sizes, repeated
// JSON members (libyang merges repeated lists), annotations, more than one entry.
// Everything else is left to libyang.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/entry.h"

namespace aceconv {

/// The sequence number that a text gives its entry.
struct SequenceText {
    bool given = false;
    bool first = true; // no other node stands before it in the document
    std::string text;  // as it is written
};

/// Writes what libyang is given to `document`, an object with the list "entry".
/// `sequence` becomes the entry's key when the text has none. Throws DataError
/// with the path below the entry; `found` is set as far as the look has come.
void wrap_json(std::string_view text, Schema schema, const std::string &sequence,
               std::string &document, SequenceText &found);

} // namespace aceconv
