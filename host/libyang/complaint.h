// libyang's complaints about an entry, as ours.
#pragma once

#include "host/error.h"
#include "host/schema/modules.h"

namespace aceconv {

/// The path below the entry, what stands there and what was expected.
DataError complaint(const LibyangError &error, const SchemaNode &entry);

/// The line of its document that libyang had come to, counted from 1; 0 when it does
/// not tell.
std::uint64_t line_of(const LibyangError &error);

/// How many levels below the entry the node of a complaint's path stands.
std::size_t levels_of(std::string_view path);

} // namespace aceconv
