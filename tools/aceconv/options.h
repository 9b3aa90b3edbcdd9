// What verbs are told on the command line.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "stream/codec.h"
#include "stream/source.h"

namespace aceconv::tool {

inline const unsigned processors = std::max(std::thread::hardware_concurrency(), 1U);

/// Of every verb.
struct CommonOptions {
    std::string plugin;  // empty: found beside the program
    std::string modules; // empty: found beside the program
    Backend backend = Backend::bulk;
    std::string trace; // an expression for function names; empty: off
    unsigned jobs = processors;
    bool keep_going = false;
    bool quiet = false; // no progress, no summary
    bool progress = false;
    std::string errors; // a file to list the faults in; empty: none
    std::string junit;  // a file for a test report; empty: none
    std::string html;   // a file for a report that people read; empty: none
    // What was called, for reports: the verb, and the command line as a shell would take it.
    std::string verb, command;
};

struct InputOptions {
    std::vector<std::string> paths = {"-"}; // read one after the other
    std::optional<InputFormat> format = {};
    std::optional<Schema> schema = {};
    bool ignore_others = false;             // nodes of other modules beside the access lists
    const char *schema_option = "--schema"; // what sets it
};

/// Of the verbs that may write an output for each input.
struct OutputOptions {
    std::string path = "-";
    std::string folder = {}; // of the outputs; empty: there is one, at `path`
};

/// Of the verbs whose result can say less than their input.
struct LossOptions {
    std::string report;  // a file to list the losses in; empty: none
    bool strict = false; // any loss makes the exit code exit_verdict
    bool unsaid = false; // no lines on standard error for them
};

} // namespace aceconv::tool
