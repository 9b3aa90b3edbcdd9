// What stands in an entry's text and fits nothing: how it is told, and what it was
// probably meant to be.
#pragma once

#include <string>
#include <string_view>

#include "host/schema/schema.h"

namespace aceconv {

/// What the leaf takes instead of `found`: "\"http\"; expected a number 0 to 65535 or
/// one of: ...; did you mean www?".
std::string value_refusal(const SchemaNode &leaf, std::string_view found);

/// "unknown node", with the node that `name` below `parent` was probably meant to be.
std::string unknown_node(const SchemaNode &parent, std::string_view name);

} // namespace aceconv
