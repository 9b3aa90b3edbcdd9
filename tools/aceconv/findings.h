// What a run finds, in files for programs that watch it: faults as JSON (--errors) and a test
// report (--junit). Unlike output and report they appear also when a fault ends the run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "converter/work.h"
#include "stream/files_in_use.h"
#include "tools/aceconv/junit.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

class Findings {
  public:
    /// Throws UsageError when a file has another use, and IoError.
    Findings(const CommonOptions &options, FilesInUse &files);

    /// Whether anyone wants to know of good entries.
    [[nodiscard]] bool has_report() const { return junit_.has_value(); }
    void see(const std::string &file, const EntryKey &key) { junit_->see(list_of(file, key)); }
    void add_fault(const std::string &file, const Entry &entry, const DataError &fault,
                   const std::string &words);
    /// What is lost of an entry; whether its list fails by that.
    void add_losses(const std::string &file, const Entry &entry, const Product &product,
                    bool fails);
    /// The entry is not what it was compared with, or not what it should be; its list fails.
    void add_difference(const std::string &file, const EntryKey &key, const std::string &line);

    /// Puts these files, complete, in their places, together with the others.
    void commit(std::vector<Output *> others, double seconds);

  private:
    static JunitReport::List list_of(const std::string &file, const EntryKey &key) {
        return {file, key.acl.value_or("")};
    }

    std::optional<Output> errors_;
    std::optional<JunitReport> junit_;
};

} // namespace aceconv::tool
