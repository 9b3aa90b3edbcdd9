// aceconv check: which entries do not come back the same.
#include <unistd.h>

#include "tools/aceconv/changes.h"
#include "tools/aceconv/errors.h"
#include "tools/aceconv/leaves.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/pipeline.h"
#include "tools/aceconv/record_view.h"

namespace aceconv::tool {
namespace {

struct CheckOptions {
    CommonOptions common;
    InputOptions input;
};

/// What is not the same after the entry was encoded, decoded and encoded again.
std::vector<Change> check(Codec &codec, const RecordView &view, Entry &entry) {
    const Bytes encoding = codec.encode(entry);
    Entry again;
    again.key = entry.key;
    again.schema = entry.schema;
    again.format = Format::json;
    again.text = codec.decode(encoding, entry.schema, Format::json, entry.key);
    std::vector<Change> changes;
    if (entry.format)
        changes = lost_leaves(leaves_of(entry.text, *entry.format),
                              leaves_of(again.text, Format::json), entry.schema);
    const Bytes second = codec.encode(again);
    if (second == encoding)
        return changes;
    const Record before(codec.descriptor(), encoding);
    const Record after(codec.descriptor(), second);
    for (Change &change : field_changes(view.compare(before, after, entry.schema), entry.schema))
        changes.push_back(std::move(change));
    return changes;
}

int run(const CheckOptions &options) {
    const auto codec = start(options.common);
    const RecordView view(codec->descriptor());
    FaultReport report(options.input.path);
    const auto source = open_source(options.input, report);
    if (!source)
        return exit_data;
    Output output("-");
    const Style style(STDOUT_FILENO);
    std::uint64_t changed = 0;
    const Outcome outcome = run_entries(
        *source, report, options.common.keep_going,
        [&](Entry &entry) { return check(*codec, view, entry); },
        [&](const Entry &entry, const std::vector<Change> &changes) {
            changed += changes.empty() ? 0U : 1U;
            for (const Change &change : changes)
                if (!options.common.quiet)
                    output.write(style.bold(shown_entry(entry.key, entry.position)) + ": " +
                                 change_text(change) + "\n");
        });
    if (!options.common.quiet && !outcome.stopped)
        output.write(std::to_string(outcome.entries) + " entries checked, " +
                     std::to_string(changed) + " do not come back the same\n");
    output.commit();
    const int status = conclude(options.common, report, outcome.entries);
    return changed != 0 ? exit_data : status;
}

} // namespace

void add_check(CLI::App &app, int &status) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App *verb = app.add_subcommand(
        "check", "Encode, decode and encode again; show what does not come back the same");
    add_input(*verb, options->input, "The entries' schema, when the data does not tell");
    add_common(*verb, options->common);
    verb->callback([options, &status] { status = run(*options); });
}

} // namespace aceconv::tool
