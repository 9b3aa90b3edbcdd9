// What holds for the process from its first line to its last.
#pragma once

namespace aceconv::tool {

/// To be called first of all. Standard descriptors that are closed are taken, so that no file that
/// is opened later gets their number, and fail for whoever uses them. Whatever ends the process
/// removes its unfinished files.
void set_up_process();

/// Says so and ends the process with exit_io and nothing left; allocates nothing.
[[noreturn]] void end_out_of_memory();

} // namespace aceconv::tool
