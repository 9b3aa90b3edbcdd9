// What a run needs before it can start: the plug-in, the YANG modules, the trace.
#pragma once

#include <filesystem>

#include "stream/codec.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

/// Loads the plug-in, finds the YANG modules and switches the trace on. Throws
/// IoError, or UsageError for a bad expression.
CodecSetup start(const CommonOptions &options);
Plugin find_plugin(const CommonOptions &options);
std::filesystem::path find_modules(const CommonOptions &options);

} // namespace aceconv::tool
