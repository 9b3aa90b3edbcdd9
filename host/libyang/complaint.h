// libyang's complaints about an entry, as ours.
#pragma once

#include "host/error.h"
#include "host/schema/modules.h"

namespace aceconv {

/// The path below the entry, what stands there and what was expected.
DataError complaint(const LibyangError &error, const SchemaNode &entry);

/// How many levels below the entry the node of a complaint's path stands.
std::size_t levels_of(std::string_view path);

} // namespace aceconv
