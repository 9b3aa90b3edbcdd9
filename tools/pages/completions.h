// Completions of the command line for shells.
#pragma once

#include <string>

#include "tools/pages/command.h"

namespace aceconv::pages {

std::string bash_completion(const CommandEntry &command);
std::string zsh_completion(const CommandEntry &command);
std::string fish_completion(const CommandEntry &command);

} // namespace aceconv::pages
