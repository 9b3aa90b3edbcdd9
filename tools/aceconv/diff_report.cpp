#include "tools/aceconv/diff_report.h"

#include <unistd.h>
#include <utility>

#include "stream/text.h"
#include "tools/aceconv/word_changes.h"

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
    if (found.a == nullptr || found.b == nullptr) {
        return write_only(found);
    }
    write_pair(*found.a, *found.b);
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
void DiffReport::write_only(const FoundDifference &found) {
    const bool in_a = found.b == nullptr;
    const ReportedEntry &entry = in_a ? *found.a : *found.b;
    const std::string other = escaped(in_a ? b_ : a_);
    std::string what;
    if (found.moved != nullptr) {
        const EntryKey place{std::nullopt, found.moved->key.sequence};
        what = (in_a ? "- moved to " : "+ moved from ") +
               shown_entry(place, found.moved->position) + " of " + other;
    } else {
        what = (in_a ? "- only in " : "+ only in ") + escaped(in_a ? a_ : b_) +
               (found.may_be_bad ? ", or a bad entry of " + other : "");
    }
    what += ": " + entry.words;
    write(entry, in_a ? style_.removed(what) : style_.added(what));
    if (found.moved == nullptr) {
        write_changes(entry, found.changes);
    }
}

void DiffReport::write_pair(const ReportedEntry &a, const ReportedEntry &b) {
    if (!style_.on()) {
        write(a, "- " + a.words);
        write(b, "+ " + b.words);
        return;
    }
    const auto [before, after] = word_changes(a.words, b.words);
    std::string removed = style_.removed("-");
    for (const LinePart &part : before) {
        removed +=
            " " + (part.changed ? style_.removed_word(part.text) : style_.removed(part.text));
    }
    std::string added = style_.added("+");
    for (const LinePart &part : after) {
        added += " " + (part.changed ? style_.added_word(part.text) : style_.added(part.text));
    }
    write(a, removed);
    write(b, added);
}

} // namespace aceconv::tool
