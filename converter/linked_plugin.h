// The plug-in of a library: the one that is a part of it, or another build.
#pragma once

#include <string>

#include "host/plugin_loader.h"

namespace aceconv {

/// The plug-in that is linked in, or the file if one is named. Several threads may ask
/// at once. Throws IoError.
Plugin open_plugin(const std::string &file);

} // namespace aceconv
