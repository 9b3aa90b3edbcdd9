// What a run needs before it can start: the plug-in, the YANG modules, the trace.
#pragma once

#include <string>

#include "stream/codec.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

/// What --plugin and --modules name, or else what was installed with this program.
/// Throw IoError.
Plugin find_plugin(const CommonOptions &options);
std::string find_modules(const CommonOptions &options);

/// Loads the plug-in, finds the YANG modules and switches the trace on. Throws
/// IoError, or UsageError for a bad expression.
CodecSetup start(const CommonOptions &options);

} // namespace aceconv::tool
