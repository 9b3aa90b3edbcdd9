// aceconv check: which entries do not come back the same.
#include <algorithm>
#include <optional>
#include <unistd.h>

#include "converter/report_rows.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/json_report.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {

int run_check(const CheckOptions &options) {
    Run run(options.common, options.input, "-", Lists::apart);
    const RecordView view(run.descriptor());
    Output output("-", ReaderGone::is_ignored);
    const Style style(STDOUT_FILENO);
    LossAccount account(options.losses, "\"verb\":\"check\"", run);
    run.hand_over(output);
    std::optional<JsonReport> json;
    if (options.json) {
        json.emplace(output, json_member("verb", "check"), "entries-that-differ");
    }
    run.each(
        [&view](Codec &codec, Entry &entry, Product &product) {
            check_entry({codec, view, true}, entry, product);
        },
        [&](const Entry &entry, const Product &product) {
            account.count(entry, product);
            if (options.losses.unsaid || product.changes.empty()) {
                return;
            }
            if (json) {
                const std::string file = run.several() ? run.file(entry.position) : "";
                return json->add(losses_row({file, entry.key, entry.position}, product));
            }
            const std::string name = style.bold(run.shown(entry)) + ": ";
            output.write(name + product.words + "\n");
            for (const Change &change : product.changes) {
                output.write(name + change_text(change) + "\n");
            }
        });
    const Tally &tally = run.tally();
    if (json) {
        json->finish(loss_members(tally, run.stopped()));
    } else if (!options.common.quiet && !run.stopped()) {
        output.write(counted(tally.entries, "entry", "entries") + " checked, " +
                     counted(tally.entries_with_losses, "does", "do") +
                     " not come back the same\n");
    }
    run.finish(output, account.finish_report());
    const int verdict = tally.losses != 0 ? exit_verdict : exit_ok;
    return std::max({account.verdict(), verdict, run.conclude()});
}

} // namespace aceconv::tool
