// What a run says of losses: a line for each on standard error, counts in the
// summary, the report, and the exit code under --strict. The same for every verb.
#pragma once

#include <memory>
#include <string>

#include "compare/losses.h"
#include "stream/output.h"
#include "tools/aceconv/run.h"

namespace aceconv::tool {

/// Whether anyone asks for losses; where no one does they need not be found.
bool losses_wanted(const LossOptions &options, const CommonOptions &common);
/// Whether a report shows what comes out of a losing entry.
bool words_after_wanted(const LossOptions &options, const CommonOptions &common);

/// What the end of the output's reader means: the exit code or another file may still tell
/// of losses.
ReaderGone reader_gone(const LossOptions &options, const CommonOptions &common);

class LossAccount {
  public:
    /// `about` are the report's first members, as JSON: "from":"base","to":"um".
    /// Throws UsageError when the run has another use for the report's file, IoError.
    LossAccount(const LossOptions &options, const std::string &about, Run &run);
    ~LossAccount();

    /// Counts the losses of what was made of the entry, says them and puts them in the report.
    void add(const Entry &entry, const Product &product);
    /// The same of an entry of another file than the run's inputs.
    void add(const std::string &file, const Entry &entry, const Product &product);
    /// Like the first, but says nothing: for a verb whose output they are, so that it fails.
    void count(const Entry &entry, const Product &product);

    /// The report, with its end written; null when there is none, or the run has stopped.
    Output *finish_report();
    /// exit_verdict when losses are to be told so.
    [[nodiscard]] int verdict() const;

  private:
    class Report;
    void note(const std::string &file, bool in_report, const Entry &entry, const Product &product,
              bool fails);
    void say_losses(const std::string &file, const Entry &entry, const Product &product) const;

    const LossOptions options_;
    Run &run_;
    std::unique_ptr<Report> report_; // null when none is asked for
};

} // namespace aceconv::tool
