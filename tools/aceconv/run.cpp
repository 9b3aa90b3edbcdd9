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
      setup_(start(common)), source_(input, meter_),
      progress_(progress_shown(common, output), meter_) {}

void Run::begin(Work work, unsigned jobs, OnFault on_fault) {
    on_fault_ = std::move(on_fault);
    const bool traced = !common_.trace.empty(); // the trace stays in order
    stream_ = std::make_unique<EntryStream>(source_, *meter_, setup_, traced ? 1 : jobs,
                                            std::move(work), [this] {
                                                for (Output *output : outputs_) {
                                                    output->flush();
                                                }
                                            });
}

std::string Run::shown(const Entry &entry) const {
    return (several() ? escaped(file(entry.position)) + ": " : "") +
           shown_entry(entry.key, entry.position);
}

EntryStream::Item *Run::next() {
    while (!over_) {
        EntryStream::Item *item = stream_->next();
        if (item == nullptr) {
            break;
        }
        const std::size_t input = item->entry.position.input;
        if (input == ended_) {
            continue;
        }
        try {
            if (item->fault) {
                std::rethrow_exception(item->fault);
            }
            note_key(item->entry);
            progress_.update(++tally_.entries);
            return item;
        } catch (const SchemaUnknown &unknown) {
            const std::string option = input_.schema_option;
            const Entry &entry = item->entry;
            throw UsageError(shown_place(file(entry.position), entry.position, entry.key) +
                             unknown.what() + "; give " + option + " base or " + option + " um");
        } catch (const PipeClosed &) { // met before waiting for input
            closed_ = over_ = true;
        } catch (const StreamError &fault) {
            fail(item->entry, fault);
            ended_ = input;
            over_ = over_ || input + 1 == input_.paths.size();
        } catch (const DataError &fault) {
            progress_.update(++tally_.entries);
            fail(item->entry, fault);
        }
    }
    return nullptr;
}

void Run::note_key(const Entry &entry) {
    if (lists_ == Lists::apart &&
        std::exchange(used_in_, entry.position.input) != entry.position.input) {
        used_ = {};
    }
    const EntryKey &key = entry.key;
    if (key.acl && key.sequence && !used_.insert(*key.acl, *key.sequence)) {
        throw DataError("", "a second entry of this sequence number");
    }
}

void Run::fail(const Entry &entry, const DataError &fault) {
    const std::string words = words_of_encoding(descriptor(), entry);
    say_fault(file(entry.position), entry, fault, words);
    ++tally_.errors;
    stopped_ = over_ = !common_.keep_going;
    if (on_fault_) {
        on_fault_(entry, fault);
    }
}

void Run::merge(const Run &other) {
    tally_.entries += other.tally_.entries;
    tally_.errors += other.tally_.errors;
    stopped_ = stopped_ || other.stopped_;
}

void Run::each(Work work, const Emit &emit) {
    struct Stop { // no thread outlives what `work` refers to, on any way out
        std::unique_ptr<EntryStream> &stream;
        ~Stop() { stream.reset(); }
    } const stop{stream_};
    begin(std::move(work), common_.jobs);
    while (EntryStream::Item *item = next()) {
        try {
            emit(item->entry, item->product);
        } catch (const DataError &fault) {
            fail(item->entry, fault);
        } catch (const PipeClosed &) {
            closed_ = over_ = true;
        }
    }
}

void Run::finish(Output &output, Output *report, Sink *sink) {
    try {
        if (sink != nullptr && (!stopped() || (output.visible() && !output.empty()))) {
            sink->close();
        }
        Output::commit({report, !stopped() || output.visible() ? &output : nullptr});
    } catch (const PipeClosed &) {
        closed_ = true;
    }
}

int Run::conclude() {
    if (!common_.quiet && !closed_ && (tally_.entries != 0 || tally_.errors == 0)) {
        say((stopped_ ? "stopped: " : "") + summary(tally_, progress_.seconds()));
    }
    return tally_.errors == 0 ? exit_ok : exit_trouble;
}

} // namespace aceconv::tool
