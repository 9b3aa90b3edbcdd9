// Inputs on their way through one conversion, with an account of them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "converter/passage.h"
#include "stream/files_in_use.h"
#include "stream/sink.h"
#include "tools/aceconv/findings.h"
#include "tools/aceconv/input_files.h"
#include "tools/aceconv/inputs.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/progress.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

class Run {
  public:
    /// Takes what the entry was made into to where it goes, in the input's order.
    using Emit = std::function<void(const Entry &, Product &)>;
    /// Is told of each fault that is reported.
    using OnFault = std::function<void(const Entry &, const DataError &)>;

    /// Loads the plug-in; `output` is where the product goes. Throws IoError and
    /// UsageError.
    Run(const CommonOptions &common, const InputOptions &input, const std::string &output,
        Lists lists)
        : Run(common, input, OutputOptions{output, ""}, OutputFormat::json, lists) {}
    /// The same where each input may have an output of its own.
    Run(const CommonOptions &common, const InputOptions &input, const OutputOptions &output,
        OutputFormat format, Lists lists = Lists::joined);

    [[nodiscard]] const bag_descriptor &descriptor() const { return *setup_.plugin.descriptor; }
    /// The name of the input that this entry stands in.
    [[nodiscard]] std::string file(const Position &position = {}) const {
        return shown_name(input_.files[position.input].path);
    }
    /// The inputs' lists without entries, once they have been read.
    [[nodiscard]] std::vector<EmptyList> empty_lists() { return source_.take_empty_lists(); }
    [[nodiscard]] bool several() const { return input_.files.size() > 1 || input_.folders; }
    /// Whether each input has an output of its own; their names, or that of the one there is.
    [[nodiscard]] bool one_output_each() const { return one_each_; }
    [[nodiscard]] const std::vector<std::string> &outputs() const { return output_names_; }
    /// What to call an entry on standard output, with its input if there are several.
    [[nodiscard]] std::string shown(const Entry &entry) const;

    /// Sets the conversion going on up to `jobs` threads.
    void begin(Work work, unsigned jobs, OnFault on_fault = {});
    /// The next good entry; faults are reported. Null at the end, or behind the
    /// first fault unless it is to keep going. Throws UsageError for an entry whose
    /// meaning depends on a schema that is not known.
    EntryStream::Item *next();
    /// The fault counts as the entry's own.
    void fail(const Entry &entry, const DataError &fault) { passage_->fail(entry, fault); }

    /// All three for every entry, `jobs` as the options have it.
    void each(Work work, const Emit &emit);

    /// It ended at a fault, there was nothing but faults, or nobody is left to read
    /// the output: it is no result.
    [[nodiscard]] bool stopped() const {
        return stopped_ || closed_ || (tally_.errors != 0 && tally_.entries == 0);
    }
    /// Completes the output of the run, and with it the report if there is one. When it
    /// was stopped, a file is dropped, while what readers can see already is made whole.
    void finish(Output &output, Output *report, Sink *sink = nullptr);
    /// Says a fault of a file beside the inputs.
    void say_fault_of(const std::string &file, const Entry &entry, const DataError &fault);
    [[nodiscard]] Findings &findings() const { return *findings_; }
    /// What this run finds is a part of what the other one does, which names the lists. To be
    /// called before the first entry is asked for.
    void share_findings(const Run &other) {
        findings_ = other.findings_;
        names_lists_ = false;
        if (findings_->takes_digests()) {
            source_.take_digests();
        }
    }
    /// Nothing is made; what has been found is. Ends the run, and with it the entry at hand.
    void abandon() { commit({}); }
    /// Puts these files in their places, together with what has been found; null is none.
    void commit(std::vector<Output *> outputs);
    /// Other files of the run beside its inputs and its output. Throw UsageError when
    /// one of them is in use already.
    void also_reads(const std::string &path) { files_.reads(path); }
    void also_writes(const std::string &path) { files_.writes(path); }
    /// What is written to `output` is handed over before the run waits for input.
    void hand_over(Output &output) { outputs_.push_back(&output); }
    [[nodiscard]] Tally &tally() { return tally_; }
    /// What one input has come to.
    [[nodiscard]] const Tally &tally_of(std::size_t input) const { return tallies_[input]; }
    /// Ends the other run, whose account becomes a part of this one's.
    void merge(Run &other);

    /// Says the summary, unless it is to be quiet; returns the exit code. Behind finish or commit,
    /// and allocates nothing: what has its place already must not be followed by a failure.
    int conclude();

  private:
    /// Reports the fault; whether the run goes on.
    bool report(const Entry &entry, const DataError &fault);

    /// What the account has grown by since is of this input.
    void charge(std::size_t input);
    [[nodiscard]] RunEnd end();
    void compose_verdicts();
    void compose_summary();

    const CommonOptions common_;
    const InputOptions options_;
    const InputFiles input_;
    const bool one_each_;
    const Lists lists_;
    const std::vector<std::string> output_names_;
    FilesInUse files_;
    std::shared_ptr<Findings> findings_;
    bool names_lists_ = true;
    const CodecSetup setup_;
    const std::shared_ptr<InputMeter> meter_ = std::make_shared<InputMeter>();
    Inputs source_;
    Progress progress_;
    std::unique_ptr<Passage> passage_;
    OnFault on_fault_;
    std::vector<Output *> outputs_;
    Tally tally_;
    Tally charged_;
    std::vector<Tally> tallies_;            // of the inputs
    std::vector<FileDigest> other_digests_; // of the inputs of runs that are a part of this one
    std::vector<FileDigest> digests_;       // of all inputs, at the end
    Surroundings surroundings_;
    std::string summary_;  // its lines
    bool closed_ = false;  // the reader of the output has gone, and that ends it
    bool stopped_ = false; // at a fault, since it was not to keep going
};

} // namespace aceconv::tool
