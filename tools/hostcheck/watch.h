// Running a trial where it can do no harm.
#pragma once

#include <chrono>
#include <string>

#include "tools/hostcheck/check.h"

namespace aceconv::hostcheck {

struct Verdict {
    bool kept;
    std::string words; // what was broken, in one sentence without its full stop
};

/// Loads host and plug-in in a process of its own and runs the trial there. A crash, an
/// exit and a call that takes longer than `limit` are broken promises like others.
/// Throws std::system_error when there can be no such process.
Verdict watch(const Trial &trial, const std::string &host, const std::string &plugin,
              std::chrono::milliseconds limit);

} // namespace aceconv::hostcheck
