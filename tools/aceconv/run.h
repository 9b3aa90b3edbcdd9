// One input on its way through one conversion, with an account of it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "stream/sequence_numbers.h"
#include "tools/aceconv/entry_stream.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/progress.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

class Run {
  public:
    /// Takes what the entry was made into to where it goes, in the input's order.
    using Emit = std::function<void(const Entry &, Product &)>;

    /// Loads the plug-in and opens the input; `output` is where its product goes.
    /// A fault in the input's first bytes is reported like any other. Throws
    /// IoError and UsageError.
    Run(const CommonOptions &common, const InputOptions &input, const std::string &output);

    [[nodiscard]] bool opened() const { return source_ != nullptr; }
    [[nodiscard]] const bag_descriptor &descriptor() const { return *setup_.plugin.descriptor; }
    [[nodiscard]] const std::string &file() const { return report_.file(); }

    /// Sets the conversion going on up to `jobs` threads.
    void begin(Work work, unsigned jobs);
    /// The next good entry; faults are reported. Null at the end, or behind the
    /// first fault unless it is to keep going. Throws UsageError for an entry whose
    /// meaning depends on a schema that is not known.
    EntryStream::Item *next();
    /// The fault counts as the entry's own.
    void fail(const Entry &entry, const DataError &fault);

    /// All three for every entry, `jobs` as the options have it.
    void each(Work work, const Emit &emit);

    /// It ended at a fault.
    [[nodiscard]] bool stopped() const { return stopped_; }
    [[nodiscard]] Tally &tally() { return tally_; }

    [[nodiscard]] double seconds() const { return progress_->seconds(); }

    /// Says the summary, unless it is to be quiet; returns the exit code.
    int conclude();

  private:
    /// Throws when the list has had this sequence number before.
    void note_key(const EntryKey &key);

    const CommonOptions common_;
    const char *const schema_option_;
    const CodecSetup setup_;
    FaultReport report_;
    std::unique_ptr<Source> source_;
    std::optional<Progress> progress_;
    std::unique_ptr<EntryStream> stream_;
    SequenceNumbers used_;
    Tally tally_;
    bool over_ = false;    // no more entries are taken
    bool stopped_ = false; // at a fault, since it was not to keep going
};

} // namespace aceconv::tool
