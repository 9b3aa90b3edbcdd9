// Switches of the debug controls that the reference host supplies.
#pragma once

#include <optional>
#include <string>

namespace aceconv {

/// Switches event type 2, the plug-in's diagnostic trace, on; with `filter`, an
/// extended regular expression (POSIX), only lines of functions whose names
/// match are written. Throws std::invalid_argument for a bad expression. Call
/// it before converters run. Lines go to standard error.
void enable_trace(const std::optional<std::string> &filter);
void disable_trace();

} // namespace aceconv
