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

FilesInUse files_of(const InputFiles &inputs, const std::vector<std::string> &outputs) {
    FilesInUse files;
    for (const InputFile &input : inputs.files) {
        files.reads(input.path);
    }
    for (const std::string &output : outputs) {
        files.writes(output);
    }
    return files;
}

std::vector<std::string> names_of(const OutputOptions &output, const InputOptions &options,
                                  const InputFiles &inputs, OutputFormat format) {
    return output.folder.empty() ? std::vector{output.path}
                                 : output_names(options.paths, inputs, output.folder, format);
}

} // namespace

Run::Run(const CommonOptions &common, const InputOptions &input, const OutputOptions &output,
         OutputFormat format, Lists lists)
    : common_(common), options_(input), input_(input_files(input.paths)),
      one_each_(!output.folder.empty()), lists_(one_each_ ? Lists::apart : lists),
      output_names_(names_of(output, input, input_, format)),
      files_(files_of(input_, output_names_)),
      findings_(std::make_shared<Findings>(common, files_)), setup_(start(common)),
      source_(input, input_.files, meter_),
      progress_(progress_shown(common, one_each_ ? "" : output.path), meter_),
      tallies_(input_.files.size()) {
    if (findings_->takes_digests()) {
        source_.take_digests();
    }
}

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
        input_.files.size(), lists_, tally_,
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
        const std::string option = options_.schema_option;
        const Entry &entry = *passage_->at();
        const DataError fault("", std::string(unknown.what()) + "; give " + option + " base or " +
                                      option + " um");
        const std::string place = file(entry.position);
        const std::string said = fault_text(place, entry, fault, "");
        findings_->add_fault(place, entry, fault, "");
        ++tally_.errors;
        stopped_ = true;
        abandon(); // and with it the entry
        throw UsageError(said);
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
    charge(entry.position.input);
    stopped_ = !common_.keep_going;
    if (on_fault_) {
        on_fault_(entry, fault);
    }
    return common_.keep_going;
}

void Run::charge(std::size_t input) {
    Tally &own = tallies_[input];
    own.entries += tally_.entries - charged_.entries;
    own.errors += tally_.errors - charged_.errors;
    own.losses += tally_.losses - charged_.losses;
    own.entries_with_losses += tally_.entries_with_losses - charged_.entries_with_losses;
    own.entries_widened += tally_.entries_widened - charged_.entries_widened;
    charged_ = tally_;
}

/// Of each input, up to the one at which the run stopped.
void Run::compose_verdicts() {
    std::size_t end = tallies_.size();
    while (stopped_ && end > 0 && tallies_[end - 1].entries + tallies_[end - 1].errors == 0) {
        --end;
    }
    for (std::size_t i = 0; i < end; ++i) {
        summary_ += to_say(file({0, 0, i}) + ": " + account(tallies_[i]));
    }
    if (end < tallies_.size()) {
        summary_ += to_say(counted(tallies_.size() - end, "input", "inputs") + " not read");
    }
    if (input_.passed_over != 0) {
        summary_ += to_say(counted(input_.passed_over, "other file", "other files") +
                           " not read, whose names do not end like an input's");
    }
}

void Run::merge(Run &other) {
    other.passage_.reset();
    tally_.entries += other.tally_.entries;
    tally_.errors += other.tally_.errors;
    surroundings_.add(other.source_.surroundings());
    const auto &read = other.source_.digests();
    other_digests_.insert(other_digests_.end(), read.begin(), read.end());
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
            charge(item->entry.position.input);
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
        commit({report, !stopped() || output.visible() ? &output : nullptr});
    } catch (const PipeClosed &) {
        closed_ = true;
        commit({});
    }
}

RunEnd Run::end() {
    digests_ = source_.digests();
    digests_.insert(digests_.end(), other_digests_.begin(), other_digests_.end());
    return {tally_, stopped_, progress_.seconds(), setup_.plugin, digests_};
}

void Run::commit(std::vector<Output *> outputs) {
    passage_.reset(); // libyang asks for memory when it ends; no run fails behind its outputs
    compose_summary();
    findings_->commit(std::move(outputs), end());
}

void Run::compose_summary() {
    surroundings_.add(source_.surroundings());
    if (several()) {
        compose_verdicts();
    }
    if (tally_.entries != 0 || tally_.errors == 0) {
        summary_ += to_say((stopped_ ? "stopped: " : "") +
                           summary(tally_, surroundings_, progress_.seconds()));
    }
}

int Run::conclude() {
    if (!common_.quiet && !closed_) {
        say_lines(summary_);
    }
    return tally_.errors == 0 ? exit_ok : exit_trouble;
}

} // namespace aceconv::tool
