#include "tools/aceconv/products.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include "stream/errors.h"
#include "stream/unfinished_files.h"

namespace aceconv::tool {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail_to_make(const fs::path &folder, int error) {
    throw IoError(folder.native() + ": cannot make the folder: " + std::strerror(error));
}

/// Makes the folders in which `path` is to lie; those that were missing are added to `made`.
void make_folders(const fs::path &path, std::deque<std::string> &made) {
    std::error_code fault;
    if (path.empty() || fs::is_directory(path, fault)) {
        return;
    }
    make_folders(path.parent_path(), made);
    made.push_back(path.native());
    if (create_unfinished_folder(made.back()) != 0) {
        const int error = errno;
        made.pop_back();
        if (error == EEXIST && fs::is_directory(path, fault)) { // made by others since
            return;
        }
        fail_to_make(path, error);
    }
    const fs::path parent = path.parent_path();
    if (const int error = sync_folder(parent.empty() ? "." : parent.native()); error != 0) {
        fail_to_make(path, error);
    }
}

} // namespace

Products::Product::Product(const std::string &path, ReaderGone gone, OutputFormat format,
                           Schema of_none)
    : output(std::make_unique<Output>(path, gone)), sink(make_sink(format, of_none, *output)) {}

Products::Products(Run &run, OutputFormat format, Schema of_none, ReaderGone gone)
    : run_(run), format_(format), of_none_(of_none), gone_(gone) {
    if (!run.one_output_each()) {
        open();
        run.hand_over(*current_->output);
    }
}

Products::~Products() {
    current_.reset();
    complete_.clear();
    for (; !made_.empty(); made_.pop_back()) {
        if (!in_place_) {
            rmdir(made_.back().c_str()); // one that others have put a file in stays
        }
        forget_unfinished(made_.back());
    }
}

void Products::open() {
    const std::string &path = run_.outputs()[at_];
    if (run_.one_output_each()) {
        make_folders(fs::path(path).parent_path(), made_);
    }
    current_ = std::make_unique<Product>(path, gone_, format_, of_none_);
    run_.findings().watch(*current_->output, path);
}

void Products::close() {
    current_->sink->close();
    current_->output->complete();
    complete_.push_back(std::move(current_->output));
    current_.reset();
}

/// The inputs before this one have ended.
void Products::go_on_to(std::size_t input) {
    for (; at_ < input; ++at_) {
        if (!current_ && run_.tally_of(at_).errors == 0) {
            open(); // it had no entries
        }
        if (current_) {
            close();
        }
    }
}

void Products::write(const Entry &entry, Schema schema, std::string_view product) {
    if (run_.one_output_each()) {
        go_on_to(entry.position.input);
        if (!current_) {
            open();
        }
    }
    current_->sink->write(entry.key, schema, product);
}

void Products::finish(Output *report) {
    if (!run_.one_output_each()) {
        run_.finish(*current_->output, report, current_->sink.get());
        return;
    }
    std::vector<Output *> outputs;
    if (!run_.stopped()) {
        go_on_to(run_.outputs().size());
        outputs.push_back(report);
        for (const auto &output : complete_) {
            outputs.push_back(output.get());
        }
    }
    run_.commit(outputs);
    in_place_ = !outputs.empty();
}

} // namespace aceconv::tool
