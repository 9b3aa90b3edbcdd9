#include "tools/aceconv/losses.h"

#include <utility>

#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

/// The losses as a JSON document, written as they come.
class LossAccount::Report {
  public:
    Report(const std::string &path, const std::string &about)
        : output_(path, ReaderGone::is_ignored) {
        output_.write("{" + about + (about.empty() ? "" : ",") + "\"losses\":[");
    }
    void add(const Change &loss, const Entry &entry, const std::string &file) {
        output_.write(std::exchange(first_, false) ? "\n" : ",\n");
        output_.write(change_json(loss, entry, file));
    }
    Output *finish(const Tally &tally) {
        output_.write("\n],\"entries\":" + std::to_string(tally.entries) +
                      ",\"entries-with-losses\":" + std::to_string(tally.entries_with_losses) +
                      ",\"entries-that-match-more\":" + std::to_string(tally.entries_widened) +
                      "}\n");
        return &output_;
    }

  private:
    Output output_;
    bool first_ = true;
};

bool losses_wanted(const LossOptions &options) {
    return !options.unsaid || options.strict || !options.report.empty();
}

ReaderGone reader_gone(const LossOptions &options) {
    return options.strict || !options.report.empty() ? ReaderGone::is_ignored : ReaderGone::ends;
}

LossAccount::LossAccount(const LossOptions &options, const std::string &about, Run &run)
    : options_(options), run_(run) {
    if (!options.report.empty()) {
        run.also_writes(options.report);
        report_ = std::make_unique<Report>(options.report, about);
    }
}

LossAccount::~LossAccount() = default;

void LossAccount::add(const Entry &entry, const Product &product) {
    if (!product.changes.empty()) {
        count(entry, product);
        say_losses(run_.file(entry.position), entry, product);
    }
}

void LossAccount::add(const std::string &file, const Entry &entry, const Product &product) {
    note(file, entry, product);
    say_losses(file, entry, product);
}

void LossAccount::count(const Entry &entry, const Product &product) {
    note(run_.several() ? run_.file(entry.position) : "", entry, product);
}

/// `file` is empty where it need not be named.
void LossAccount::note(const std::string &file, const Entry &entry, const Product &product) {
    run_.tally().add(product.changes);
    if (report_) {
        for (const Change &loss : product.changes) {
            report_->add(loss, entry, file);
        }
    }
}

void LossAccount::say_losses(const std::string &file, const Entry &entry,
                             const Product &product) const {
    if (options_.unsaid) {
        return;
    }
    const std::string place = shown_place(file, entry.position, entry.key);
    if (!product.words.empty()) {
        say(place + product.words);
    }
    for (const Change &loss : product.changes) {
        say(place + "loss: " + change_text(loss));
    }
}

Output *LossAccount::finish_report() {
    return report_ && !run_.stopped() ? report_->finish(run_.tally()) : nullptr;
}

int LossAccount::verdict() const {
    return options_.strict && run_.tally().losses != 0 ? exit_verdict : exit_ok;
}

} // namespace aceconv::tool
