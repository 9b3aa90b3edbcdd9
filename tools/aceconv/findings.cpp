#include "tools/aceconv/findings.h"

#include "tools/aceconv/report.h"

namespace aceconv::tool {
namespace {

HtmlRow row_of(const Entry &entry, const Product &product) {
    const bool drawn = product.inspected.has_value();
    return {drawn ? HtmlKind::record : HtmlKind::loss,
            entry.key,
            entry.position,
            drawn ? product.inspected->words : product.words,
            product.words_after,
            product.changes,
            drawn ? &*product.inspected : nullptr};
}

} // namespace

Findings::Findings(const CommonOptions &options, FilesInUse &files) {
    if (!options.errors.empty()) {
        files.writes(options.errors);
        errors_.emplace(options.errors, ReaderGone::is_ignored);
    }
    if (!options.junit.empty()) {
        files.writes(options.junit);
        junit_.emplace(options.junit);
    }
    if (!options.html.empty()) {
        files.writes(options.html);
        html_.emplace(options);
    }
}

void Findings::see(const std::string &file, const EntryKey &key) {
    if (junit_) {
        junit_->see(list_of(file, key));
    }
    if (html_) {
        html_->see(file, key);
    }
}

void Findings::watch(Output &output, const std::string &name) {
    if (html_) {
        html_->watch(output, name == "-" ? "<stdout>" : name);
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
    if (html_) {
        Change change;
        change.leaf = fault.path();
        change.reason = fault.what();
        html_->add(file, {HtmlKind::fault, entry.key, entry.position, words, "", {change}});
    }
}

void Findings::draw_records(const std::vector<BagMember> &members) {
    if (html_) {
        html_->draw_records(members);
    }
}

void Findings::add_record(const std::string &file, const Entry &entry, const Product &product) {
    if (html_) {
        html_->add(file, row_of(entry, product));
    }
}

void Findings::add_losses(const std::string &file, const Entry &entry, const Product &product,
                          bool fails) {
    if (html_ && !product.changes.empty()) {
        html_->add(file, row_of(entry, product));
    }
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

void Findings::add_warnings(const std::string &file, const EntryKey &key, const Position &position,
                            const std::string &words, const LintWarnings &warnings) {
    std::vector<Change> changes;
    for (const LintWarning &warning : warnings) {
        const std::string text = shown_place(file, position, key) + warning.text;
        add_difference(file, key, text);
        Change &change = changes.emplace_back();
        change.leaf = warning.rule->name;
        change.reason = warning.text;
    }
    if (html_) {
        html_->add(file, {HtmlKind::warning, key, position, words, "", changes});
    }
}

void Findings::add_found(const std::string &file, const EntryKey &key,
                         const FoundDifference &found) {
    if (!html_) {
        return;
    }
    const std::string none;
    const auto words = [&](const ReportedEntry *side) -> const std::string & {
        return side != nullptr ? side->words : found.moved != nullptr ? found.moved->words : none;
    };
    const Position &position = (found.a != nullptr ? found.a : found.b)->position;
    if (found.moved != nullptr) {
        html_->add(file, {HtmlKind::moved, key, position, words(found.a), words(found.b), {}});
    } else if (found.b == nullptr) {
        html_->add(file, {HtmlKind::only_a, key, position, words(found.a), none, found.changes,
                          nullptr, found.may_be_bad});
    } else if (found.a == nullptr) {
        html_->add(file, {HtmlKind::only_b, key, position, words(found.b), none, found.changes,
                          nullptr, found.may_be_bad});
    } else {
        html_->add(file, {HtmlKind::changed, key, position, words(found.a), words(found.b),
                          found.changes});
    }
}

void Findings::add_difference(const std::string &file, const EntryKey &key,
                              const std::string &line) {
    if (junit_) {
        junit_->say(list_of(file, key), JunitReport::Grade::failure, line);
    }
}

void Findings::commit(std::vector<Output *> others, const RunEnd &end) {
    if (html_) { // it tells their digests
        for (Output *output : others) {
            if (output != nullptr) {
                output->complete();
            }
        }
        others.push_back(html_->finish(end, others));
    }
    others.push_back(errors_ ? &*errors_ : nullptr);
    others.push_back(junit_ ? junit_->finish(end.seconds) : nullptr);
    Output::commit(others);
}

} // namespace aceconv::tool
