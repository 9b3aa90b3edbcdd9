#include "tools/aceconv/run.h"

#include <unistd.h>
#include <utility>

#include "stream/errors.h"
#include "stream/text.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/setup.h"

namespace aceconv::tool {
namespace {

/// The line has a terminal to itself, or was asked for.
bool progress_shown(const CommonOptions &common, const std::string &output) {
    const bool shared = output == "-" && isatty(STDOUT_FILENO) == 1;
    return common.progress || (!common.quiet && isatty(STDERR_FILENO) == 1 && !shared);
}

FilesInUse files_of(const std::vector<std::string> &inputs, const std::string &output) {
    FilesInUse files;
    for (const std::string &path : inputs) {
        files.reads(path);
    }
    files.writes(output);
    return files;
}

} // namespace

Run::Run(const CommonOptions &common, const InputOptions &input, const std::string &output,
         Lists lists)
    : common_(common), input_(input), lists_(lists), files_(files_of(input.paths, output)),
      findings_(std::make_shared<Findings>(common, files_)), setup_(start(common)),
      source_(input, meter_), progress_(progress_shown(common, output), meter_) {}

void Run::begin(Work work, unsigned jobs, OnFault on_fault) {
    on_fault_ = std::move(on_fault);
    const bool traced = !common_.trace.empty(); // the trace stays in order
    passage_ = std::make_unique<Passage>(
        source_, *meter_, setup_, traced ? 1 : jobs, std::move(work),
        [this] {
            for (Output *output : outputs_) {
                output->flush();
            }
        },
        input_.paths.size(), lists_, tally_,
        [this](const Entry &entry, const DataError &fault) { return report(entry, fault); });
}

std::string Run::shown(const Entry &entry) const {
    return (several() ? escaped(file(entry.position)) + ": " : "") +
           shown_entry(entry.key, entry.position);
}

EntryStream::Item *Run::next() {
    try {
        EntryStream::Item *item = passage_->next();
        if (item != nullptr) {
            progress_.update(tally_.entries);
            if (names_lists_ && findings_->has_report()) {
                findings_->see(file(item->entry.position), item->entry.key);
            }
        }
        return item;
    } catch (const SchemaUnknown &unknown) {
        const std::string option = input_.schema_option;
        const Entry &entry = *passage_->at();
        throw UsageError(shown_place(file(entry.position), entry.position, entry.key) +
                         unknown.what() + "; give " + option + " base or " + option + " um");
    } catch (const PipeClosed &) { // met before waiting for input
        closed_ = true;
        passage_->stop();
        return nullptr;
    }
}

void Run::say_fault_of(const std::string &file, const Entry &entry, const DataError &fault) {
    const std::string words = words_of_encoding(descriptor(), entry);
    say_fault(file, entry, fault, words);
    findings_->add_fault(file, entry, fault, words);
}

bool Run::report(const Entry &entry, const DataError &fault) {
    progress_.update(tally_.entries);
    say_fault_of(file(entry.position), entry, fault);
    stopped_ = !common_.keep_going;
    if (on_fault_) {
        on_fault_(entry, fault);
    }
    return common_.keep_going;
}

void Run::merge(const Run &other) {
    tally_.entries += other.tally_.entries;
    tally_.errors += other.tally_.errors;
    surroundings_.add(other.source_.surroundings());
    stopped_ = stopped_ || other.stopped_;
}

void Run::each(Work work, const Emit &emit) {
    struct Stop { // no thread outlives what `work` refers to, on any way out
        std::unique_ptr<Passage> &passage;
        ~Stop() { passage.reset(); }
    } const stop{passage_};
    begin(std::move(work), common_.jobs);
    while (EntryStream::Item *item = next()) {
        try {
            emit(item->entry, item->product);
        } catch (const DataError &fault) {
            fail(item->entry, fault);
        } catch (const PipeClosed &) {
            closed_ = true;
            passage_->stop();
        }
    }
}

void Run::finish(Output &output, Output *report, Sink *sink) {
    try {
        if (sink != nullptr && (!stopped() || (output.visible() && !output.empty()))) {
            sink->close();
        }
        findings_->commit({report, !stopped() || output.visible() ? &output : nullptr},
                          progress_.seconds());
    } catch (const PipeClosed &) {
        closed_ = true;
        findings_->commit({}, progress_.seconds());
    }
}

int Run::conclude() {
    surroundings_.add(source_.surroundings());
    if (!common_.quiet && !closed_ && (tally_.entries != 0 || tally_.errors == 0)) {
        say((stopped_ ? "stopped: " : "") + summary(tally_, surroundings_, progress_.seconds()));
    }
    return tally_.errors == 0 ? exit_ok : exit_trouble;
}

} // namespace aceconv::tool
