// Values of leaves, checked against the module's compiled form without libyang.
//
// Each function answers true only for what libyang takes as well, in its
// canonical form; false means "not sure".
#pragma once

#include <string>
#include <string_view>

#include "host/platform/backend.h"

namespace aceconv {

/// A JSON string as the leaf's value.
bool text_value(const SchemaNode &leaf, std::string_view text, Value &value);

/// A dotted quad without leading zeros.
bool ipv4_value(std::string_view text, Value &value);

/// A JSON number as the leaf's value.
bool number_value(const SchemaNode &leaf, std::uint64_t number, Value &value);

/// Whether the leaf takes the text, name or bits that an emitter was given for it; why
/// not otherwise.
bool takes_emitted_text(const SchemaNode &leaf, const Value &value, std::string &why);

/// The same for any value; those without text are checked by type and range already.
inline bool takes_value(const SchemaNode &leaf, const Value &value, std::string &why) {
    const bool has_text = value.kind == ValueKind::text || value.kind == ValueKind::name ||
                          value.kind == ValueKind::bits;
    return !has_text || takes_emitted_text(leaf, value, why);
}

/// That the leaf takes something else than `text`.
std::string not_taken(const SchemaNode &leaf, std::string_view text);

/// Whether a string leaf takes text of allowed characters: its length and pattern.
bool takes_text(const SchemaNode &leaf, std::string_view text);

} // namespace aceconv
