// Where the parts that were installed together lie. They are found from where the program
// or library lies that this is part of, so a prefix may be moved, copied or linked.
#pragma once

#include <string>

namespace aceconv {

/// The plug-in, in the folder `aceconv` of the libraries' folder, below the nearest folder
/// above that has it. Throws std::runtime_error.
std::string installed_plugin();

/// The folder of the YANG modules, share/aceconv/yang below the nearest folder above that
/// has it. Throws std::runtime_error.
std::string installed_modules();

} // namespace aceconv
