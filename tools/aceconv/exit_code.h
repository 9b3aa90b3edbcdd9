// How the command ends. Of several causes the largest number counts.
#pragma once

namespace aceconv::tool {

enum ExitCode {
    exit_ok = 0,      // done
    exit_verdict = 1, // diff or check found a difference, or something was lost or
                      // warned of under --strict
    exit_trouble = 2, // bad data, or a call that cannot be meant
    exit_io = 3,      // a file, a device, the plug-in or the modules cannot be used
};

} // namespace aceconv::tool
