// Where the parts that were installed together lie. They are found from where this
// library lies, so a prefix may be moved, copied or linked, and its libraries may be
// in any folder of it.
#pragma once

#include <string>

namespace aceconv {

/// The plug-in: beside this library, or in the folder `aceconv` there. Throws
/// std::runtime_error that names both.
std::string installed_plugin();

/// The folder of the YANG modules, share/aceconv/yang in the nearest folder above
/// this library that has one. Throws std::runtime_error.
std::string installed_modules();

} // namespace aceconv
