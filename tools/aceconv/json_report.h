// A JSON document of rows, written as they come.
#pragma once

#include <string>

#include "stream/output.h"
#include "tools/aceconv/progress.h"

namespace aceconv::tool {

class JsonReport {
  public:
    /// An object of the members `about`, the array `rows`, and those that `finish` is given.
    JsonReport(Output &output, const std::string &about, const char *rows);
    void add(const std::string &row);
    /// The end; nothing may follow.
    void finish(const std::string &members);

  private:
    Output &output_;
    bool first_ = true;
};

/// What every report ends with: how many entries there were, bad ones included, and how many bad
/// ones; whether a fault ended the run.
std::string count_members(const Tally &tally, bool stopped);
/// The same and how many entries lost something.
std::string loss_members(const Tally &tally, bool stopped);

} // namespace aceconv::tool
