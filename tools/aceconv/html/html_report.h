// What a run did and found, as a page for those who approve it: one file that needs nothing
// else. The data of all that was found goes into it as it is found; counts, digests and the
// first entries of each list follow at the end.
#pragma once

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "converter/passage.h"
#include "host/plugin_loader.h"
#include "stream/output.h"
#include "tools/aceconv/digest.h"
#include "tools/aceconv/html/html_groups.h"
#include "tools/aceconv/html/html_page.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

/// How a run ended, and what it worked with.
struct RunEnd {
    const Tally &tally;
    bool stopped; // by a fault
    double seconds;
    const Plugin &plugin;
    const std::vector<FileDigest> &inputs;
};

class HtmlReport {
  public:
    /// Throws IoError.
    explicit HtmlReport(const CommonOptions &options);

    /// There is an entry of this list.
    void see(const std::string &file, const EntryKey &key) { groups_.see(groups_.list(file, key)); }
    void add(const std::string &file, const HtmlRow &row);
    /// Records have these members.
    void draw_records(const std::vector<BagMember> &members) { drawing_ = RecordDrawing(members); }
    /// What is written to `output`, which has this name, is a product of the run.
    void watch(Output &output, const std::string &name);
    /// Writes the rest; `written` are the products that are complete.
    Output *finish(const RunEnd &end, const std::vector<Output *> &written);

  private:
    struct Product {
        const Output *output;
        FileDigest file;
    };

    [[nodiscard]] std::string part(std::string_view name, const RunEnd &end) const;
    [[nodiscard]] std::string verdict(const RunEnd &end) const;
    [[nodiscard]] std::string figures(const RunEnd &end) const;
    [[nodiscard]] std::string facts(const RunEnd &end) const;
    [[nodiscard]] std::string files(const RunEnd &end) const;
    [[nodiscard]] std::uint64_t count(HtmlKind kind) const {
        return counts_[static_cast<std::size_t>(kind)];
    }

    const std::string verb_, command_;
    HtmlPage page_;
    HtmlGroups groups_;
    SharedStrings strings_;
    RecordDrawing drawing_;
    std::deque<Product> products_;
    std::array<std::uint64_t, 8> counts_{}; // of rows, by kind
    std::uint64_t rows_ = 0;
};

} // namespace aceconv::tool
