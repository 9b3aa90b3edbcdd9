#include "tools/aceconv/run.h"

#include <unistd.h>

#include "compare/schema_dependence.h"
#include "stream/errors.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/setup.h"

namespace aceconv::tool {
namespace {

/// The line has a terminal to itself, or was asked for.
bool progress_shown(const CommonOptions &common, const std::string &output) {
    const bool shared = output == "-" && isatty(STDOUT_FILENO) == 1;
    return common.progress || (!common.quiet && isatty(STDERR_FILENO) == 1 && !shared);
}

} // namespace

Run::Run(const CommonOptions &common, const InputOptions &input, const std::string &output)
    : common_(common), schema_option_(input.schema_option), setup_(start(common)),
      report_(input.path) {
    const auto meter = std::make_shared<InputMeter>();
    progress_.emplace(progress_shown(common, output), meter);
    try {
        source_ = open_source(input.path, input.format, input.schema, meter);
    } catch (const StreamError &fault) {
        fail(Entry{.position = {1, 0}}, fault);
    }
}

void Run::begin(Work work, unsigned jobs) {
    const bool traced = !common_.trace.empty(); // the trace stays in order
    stream_ = std::make_unique<EntryStream>(
        *source_, setup_, traced ? 1 : jobs,
        [work = std::move(work)](Codec &codec, Entry &entry, Product &product) {
            require_schema(codec.descriptor(), entry);
            work(codec, entry, product);
        });
}

EntryStream::Item *Run::next() {
    while (!over_) {
        EntryStream::Item *item = stream_->next();
        if (item == nullptr) {
            break;
        }
        try {
            if (item->fault) {
                std::rethrow_exception(item->fault);
            }
            note_key(item->entry.key);
            progress_->update(++tally_.entries);
            return item;
        } catch (const SchemaUnknown &unknown) {
            const std::string option = schema_option_;
            throw UsageError(shown_place(file(), item->entry.position, item->entry.key) +
                             unknown.what() + "; give " + option + " base or " + option + " um");
        } catch (const StreamError &fault) {
            fail(item->entry, fault);
            over_ = true;
        } catch (const DataError &fault) {
            progress_->update(++tally_.entries);
            fail(item->entry, fault);
        }
    }
    return nullptr;
}

void Run::note_key(const EntryKey &key) {
    if (key.acl && key.sequence && !used_.insert(*key.acl, *key.sequence)) {
        throw DataError("", "a second entry of this sequence number");
    }
}

void Run::fail(const Entry &entry, const DataError &fault) {
    report_.add(entry.position, entry.key, fault);
    ++tally_.errors;
    stopped_ = over_ = !common_.keep_going;
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
        }
    }
}

int Run::conclude() {
    if (!common_.quiet) {
        say((stopped_ ? "stopped: " : "") + summary(tally_, progress_->seconds()));
    }
    return tally_.errors == 0 ? exit_ok : exit_trouble;
}

} // namespace aceconv::tool
