// The command line: which verb, told what. Nothing else knows the option parser.
#pragma once

#include <string>

namespace aceconv::tool {

/// Runs the verb that is asked for, and returns the exit code. Faults of the call
/// are said, and where help is; throws what the verbs throw beside.
int run_command_line(int argc, char **argv);

/// What the command takes, or a verb of it, on standard output.
int show_help(const std::string &verb);

} // namespace aceconv::tool
