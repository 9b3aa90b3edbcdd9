#include "tools/aceconv/losses.h"

#include "converter/report_rows.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/json_report.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {

/// The losses as a JSON document.
class LossAccount::Report {
  public:
    Report(const std::string &path, const std::string &about)
        : output_(path, ReaderGone::is_ignored), report_(output_, about, "losses") {}
    void add(const EntryPlace &place, const Product &product) {
        for (const Change &loss : product.changes) {
            report_.add(loss_row(place, product, loss));
        }
    }
    Output *finish(const Tally &tally) {
        report_.finish(loss_members(tally, false));
        return &output_;
    }

  private:
    Output output_;
    JsonReport report_;
};

bool losses_wanted(const LossOptions &options, const CommonOptions &common) {
    return !options.unsaid || options.strict || words_after_wanted(options, common);
}

bool words_after_wanted(const LossOptions &options, const CommonOptions &common) {
    return !options.report.empty() || !common.html.empty();
}

ReaderGone reader_gone(const LossOptions &options, const CommonOptions &common) {
    const bool told = options.strict || !options.report.empty() || !common.errors.empty() ||
                      !common.junit.empty() || !common.html.empty();
    return told ? ReaderGone::is_ignored : ReaderGone::ends;
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
        const std::string file = run_.file(entry.position);
        note(file, run_.several(), entry, product, options_.strict);
        say_losses(file, entry, product);
    }
}

void LossAccount::add(const std::string &file, const Entry &entry, const Product &product) {
    note(file, true, entry, product, options_.strict);
    say_losses(file, entry, product);
}

void LossAccount::count(const Entry &entry, const Product &product) {
    if (!product.changes.empty()) {
        note(run_.file(entry.position), run_.several(), entry, product, true);
    }
}

/// `in_report`: the report names the file; `fails`: a test report counts it as a failure.
void LossAccount::note(const std::string &file, bool in_report, const Entry &entry,
                       const Product &product, bool fails) {
    run_.tally().add(product.changes);
    if (report_) {
        report_->add({in_report ? file : "", entry.key, entry.position}, product);
    }
    run_.findings().add_losses(file, entry, product, fails);
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
