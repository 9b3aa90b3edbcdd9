#include "tools/aceconv/products.h"

#include <filesystem>

#include "stream/errors.h"

namespace aceconv::tool {
namespace {

namespace fs = std::filesystem;

/// Makes the folders in which `path` is to lie; those that were missing are added to `made`.
void make_folders(const fs::path &path, std::vector<std::string> &made) {
    std::error_code fault;
    if (path.empty() || fs::is_directory(path, fault)) {
        return;
    }
    make_folders(path.parent_path(), made);
    if (fs::create_directory(path, fault)) {
        made.push_back(path.native());
    } else if (fault) {
        throw IoError(path.native() + ": cannot make the folder: " + fault.message());
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
    std::error_code fault; // one that others have put a file in stays
    for (std::size_t i = made_.size(); !in_place_ && i-- > 0;) {
        fs::remove(made_[i], fault);
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
