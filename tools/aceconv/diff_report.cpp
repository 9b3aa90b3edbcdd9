#include "tools/aceconv/diff_report.h"

#include <unistd.h>
#include <utility>

#include "stream/text.h"

namespace aceconv::tool {

DiffReport::DiffReport(bool json, std::string a, std::string b)
    : a_(std::move(a)), b_(std::move(b)), style_(STDOUT_FILENO),
      output_("-", ReaderGone::is_ignored) {
    if (json) {
        json_.emplace(output_,
                      json_member("verb", "diff") + "," + json_member("a", a_) + "," +
                          json_member("b", b_),
                      "differences");
    }
}

void DiffReport::changed(const ReportedEntry &a, const ReportedEntry &b,
                         const std::vector<Change> &changes) {
    ++different_;
    if (json_) {
        return json_->add(difference_row(&a, &b, false, changes));
    }
    write(a, style_.red("-") + " " + a.words);
    write(a, style_.green("+") + " " + b.words);
    for (const Change &change : changes) {
        write(a, change_text(change));
    }
}

void DiffReport::only_in_a(const ReportedEntry &entry, bool may_be_bad) {
    ++different_;
    if (json_) {
        return json_->add(difference_row(&entry, nullptr, may_be_bad, {}));
    }
    write_only(entry, style_.red("-"), a_, b_, may_be_bad);
}

void DiffReport::only_in_b(const ReportedEntry &entry, bool may_be_bad) {
    ++different_;
    if (json_) {
        return json_->add(difference_row(nullptr, &entry, may_be_bad, {}));
    }
    write_only(entry, style_.green("+"), b_, a_, may_be_bad);
}

void DiffReport::finish(const Tally &tally, bool stopped) {
    if (json_) {
        json_->finish(count_members(tally, stopped) + "," + json_member("different", different_));
    }
}

void DiffReport::write(const ReportedEntry &entry, const std::string &what) {
    output_.write(style_.bold(shown_entry(entry.key, entry.position)) + ": " + what + "\n");
}

void DiffReport::write_only(const ReportedEntry &entry, const std::string &sign,
                            const std::string &here, const std::string &other, bool may_be_bad) {
    write(entry, sign + " only in " + escaped(here) +
                     (may_be_bad ? ", or a bad entry of " + escaped(other) : "") + ": " +
                     entry.words);
}

} // namespace aceconv::tool
