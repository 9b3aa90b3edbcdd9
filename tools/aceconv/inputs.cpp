#include "tools/aceconv/inputs.h"

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

#include "stream/errors.h"

namespace aceconv::tool {
namespace {

std::optional<std::uint64_t> total_size(const std::vector<InputFile> &files) {
    std::uint64_t total = 0;
    for (const auto &[path, name] : files) {
        struct stat status {};
        const int failed = path == "-" ? fstat(STDIN_FILENO, &status) : stat(path.c_str(), &status);
        if (failed != 0 || !S_ISREG(status.st_mode)) {
            return std::nullopt;
        }
        total += static_cast<std::uint64_t>(status.st_size);
    }
    return total;
}

} // namespace

Inputs::Inputs(const InputOptions &options, const std::vector<InputFile> &files,
               std::shared_ptr<InputMeter> meter)
    : options_(options), files_(files), meter_(std::move(meter)), size_(total_size(files)) {
    if (std::count(options_.paths.begin(), options_.paths.end(), "-") > 1) {
        throw UsageError("only one of the inputs can be standard input");
    }
}

void Inputs::take_digests() {
    for (const InputFile &file : files_) {
        digests_.push_back({file.path == "-" ? "<stdin>" : file.path, {}, false});
    }
    meter_->show = [this](std::string_view bytes) {
        FileDigest &file = digests_[at_];
        file.digest.add(bytes);
        file.whole = bytes.empty();
    };
}

bool Inputs::next(Entry &entry) {
    for (; at_ < files_.size(); end_input()) {
        entry.position = {};
        struct Mark {
            Position &position;
            const std::size_t input;
            ~Mark() { position.input = input; }
        } const mark{entry.position, at_};
        try {
            if (!source_) {
                if (!meter_->may_wait) {
                    throw InputPauses(); // the first bytes cannot be read in pieces
                }
                source_ = open_source(files_[at_].path, options_.format, options_.schema, meter_,
                                      options_.ignore_others ? OtherModules::stepped_over
                                                             : OtherModules::refused);
                meter_->size = size_;
            }
            if (source_->next(entry)) {
                return true;
            }
        } catch (const StreamError &) {
            if (!source_) { // a fault of the first bytes
                entry.position.line = 1;
            }
            end_input();
            throw;
        }
    }
    return false;
}

void Inputs::end_input() {
    if (source_) {
        for (EmptyList &list : source_->take_empty_lists()) {
            list.position.input = at_;
            empty_lists_.push_back(std::move(list));
        }
    }
    surroundings_ = surroundings();
    source_.reset();
    ++at_;
}

Surroundings Inputs::surroundings() const {
    Surroundings all = surroundings_;
    if (source_) {
        all.add(source_->surroundings());
    }
    return all;
}

std::optional<Schema> Inputs::schema() const {
    return source_ ? source_->schema() : std::nullopt;
}

} // namespace aceconv::tool
