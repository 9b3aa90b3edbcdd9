// What differs between two inputs, on standard output: lines for people, or a JSON document.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "converter/report_rows.h"
#include "tools/aceconv/json_report.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

class DiffReport {
  public:
    /// The inputs' names as they are shown.
    DiffReport(bool json, std::string a, std::string b);

    void add(const FoundDifference &found);
    void finish(const Tally &tally, bool stopped);

    /// How many entries differ, or are in one input alone.
    [[nodiscard]] std::uint64_t different() const { return different_; }
    [[nodiscard]] Output &output() { return output_; }

  private:
    void write(const ReportedEntry &entry, const std::string &what);
    void write_changes(const ReportedEntry &entry, const std::vector<Change> &changes);
    void write_only(const FoundDifference &found);
    void write_pair(const ReportedEntry &a, const ReportedEntry &b);

    const std::string a_, b_;
    const Style style_;
    Output output_;
    std::optional<JsonReport> json_;
    std::uint64_t different_ = 0;
};

} // namespace aceconv::tool
