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

void DiffReport::add(const FoundDifference &found) {
    ++different_;
    if (json_) {
        return json_->add(difference_row(found));
    }
    if (found.b == nullptr) {
        return write_only(found, *found.a, style_.red("-"), a_, b_);
    }
    if (found.a == nullptr) {
        return write_only(found, *found.b, style_.green("+"), b_, a_);
    }
    write(*found.a, style_.red("-") + " " + found.a->words);
    write(*found.b, style_.green("+") + " " + found.b->words);
    write_changes(*found.a, found.changes);
}

void DiffReport::finish(const Tally &tally, bool stopped) {
    if (json_) {
        json_->finish(count_members(tally, stopped) + "," + json_member("different", different_));
    }
}

void DiffReport::write(const ReportedEntry &entry, const std::string &what) {
    output_.write(style_.bold(shown_entry(entry.key, entry.position)) + ": " + what + "\n");
}

void DiffReport::write_changes(const ReportedEntry &entry, const std::vector<Change> &changes) {
    for (const Change &change : changes) {
        write(entry, change_text(change));
    }
}

/// What is moved is said in full by its words alone.
void DiffReport::write_only(const FoundDifference &found, const ReportedEntry &entry,
                            const std::string &sign, const std::string &here,
                            const std::string &other) {
    if (found.moved != nullptr) {
        const ReportedEntry &moved = *found.moved;
        return write(entry, sign + (found.a == nullptr ? " moved from " : " moved to ") +
                                shown_entry({std::nullopt, moved.key.sequence}, moved.position) +
                                " of " + escaped(other) + ": " + entry.words);
    }
    write(entry, sign + " only in " + escaped(here) +
                     (found.may_be_bad ? ", or a bad entry of " + escaped(other) : "") + ": " +
                     entry.words);
    write_changes(entry, found.changes);
}

} // namespace aceconv::tool
