// What a run finds, in files of their own: faults as JSON (--errors), a test report (--junit) and
// a page for people (--html). Unlike output and report they appear also when a fault ends the run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "converter/report_rows.h"
#include "converter/work.h"
#include "stream/files_in_use.h"
#include "tools/aceconv/html/html_report.h"
#include "tools/aceconv/junit.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

class Findings {
  public:
    /// Throws UsageError when a file has another use, and IoError.
    Findings(const CommonOptions &options, FilesInUse &files);

    /// Whether anyone wants to know of good entries.
    [[nodiscard]] bool has_report() const { return junit_ || html_; }
    void see(const std::string &file, const EntryKey &key);
    [[nodiscard]] bool takes_digests() const { return html_.has_value(); }
    /// What is written to `output`, which has this name, is a product of the run.
    void watch(Output &output, const std::string &name);
    void add_fault(const std::string &file, const Entry &entry, const DataError &fault,
                   const std::string &words);
    /// Records are asked for, which have these members.
    void draw_records(const std::vector<BagMember> &members);
    /// One of which nothing is lost.
    void add_record(const std::string &file, const Entry &entry, const Product &product);
    /// What is lost of an entry; whether its list fails by that.
    void add_losses(const std::string &file, const Entry &entry, const Product &product,
                    bool fails);
    /// What lint says of an entry, or, if `words` is "", of a list.
    void add_warnings(const std::string &file, const EntryKey &key, const Position &position,
                      const std::string &words, const LintWarnings &warnings);
    /// What differs between two inputs; the file and the list are those of the first.
    void add_found(const std::string &file, const EntryKey &key, const FoundDifference &found);
    /// The entry is not what it was compared with, or not what it should be; its list fails.
    void add_difference(const std::string &file, const EntryKey &key, const std::string &line);

    /// Puts these files, complete, in their places, together with the others.
    void commit(std::vector<Output *> others, const RunEnd &end);

  private:
    static JunitReport::List list_of(const std::string &file, const EntryKey &key) {
        return {file, key.acl.value_or("")};
    }

    std::optional<Output> errors_;
    std::optional<JunitReport> junit_;
    std::optional<HtmlReport> html_;
};

} // namespace aceconv::tool
