#include "tools/aceconv/findings.h"

#include "converter/report_rows.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

Findings::Findings(const CommonOptions &options, FilesInUse &files) {
    if (!options.errors.empty()) {
        files.writes(options.errors);
        errors_.emplace(options.errors, ReaderGone::is_ignored);
    }
    if (!options.junit.empty()) {
        files.writes(options.junit);
        junit_.emplace(options.junit);
    }
}

void Findings::add_fault(const std::string &file, const Entry &entry, const DataError &fault,
                         const std::string &words) {
    if (errors_) {
        errors_->write(fault_row({file, entry.key, entry.position}, fault, words) + "\n");
    }
    if (junit_) {
        junit_->say(list_of(file, entry.key), JunitReport::Grade::error,
                    fault_text(file, entry, fault, words));
    }
}

void Findings::add_losses(const std::string &file, const Entry &entry, const Product &product,
                          bool fails) {
    if (!junit_) {
        return;
    }
    const std::string place = shown_place(file, entry.position, entry.key);
    for (const Change &loss : product.changes) {
        junit_->say(list_of(file, entry.key),
                    fails ? JunitReport::Grade::failure : JunitReport::Grade::note,
                    place + change_text(loss));
    }
}

void Findings::add_difference(const std::string &file, const EntryKey &key,
                              const std::string &line) {
    if (junit_) {
        junit_->say(list_of(file, key), JunitReport::Grade::failure, line);
    }
}

void Findings::commit(std::vector<Output *> others, double seconds) {
    others.push_back(errors_ ? &*errors_ : nullptr);
    others.push_back(junit_ ? junit_->finish(seconds) : nullptr);
    Output::commit(others);
}

} // namespace aceconv::tool
