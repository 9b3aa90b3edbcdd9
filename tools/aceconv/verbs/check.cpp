// aceconv check: which entries do not come back the same.
#include <algorithm>
#include <unistd.h>

#include "compare/changes.h"
#include "compare/leaves.h"
#include "compare/record_view.h"
#include "stream/errors.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// What is not the same after the entry was encoded, decoded and encoded again.
std::vector<Change> check(Codec &codec, const RecordView &view, Entry &entry) {
    const Encoding encoded = codec.encode(entry);
    const Bytes encoding(encoded.begin(), encoded.end());
    std::vector<Change> changes;
    if (entry.format) {
        changes = lost_leaves(codec, entry, encoding);
    }
    Entry again{.key = entry.key, .schema = entry.schema, .format = Format::json};
    codec.decode(encoding, entry.schema, Format::json, entry.key, again.text);
    const Encoding second = codec.encode(again);
    if (std::equal(second.begin(), second.end(), encoding.begin(), encoding.end())) {
        return changes;
    }
    const DecodedRecord before(codec.descriptor(), encoding);
    const DecodedRecord after(codec.descriptor(), second);
    for (Change &change : field_changes(view.compare(before, after, entry.schema), entry.schema)) {
        changes.push_back(std::move(change));
    }
    return changes;
}

} // namespace

int run_check(const CheckOptions &options) {
    Run run(options.common, options.input, "-", Lists::apart);
    const RecordView view(run.descriptor());
    Output output("-", ReaderGone::is_ignored);
    const Style style(STDOUT_FILENO);
    std::uint64_t changed = 0;
    run.each([&view](Codec &codec, Entry &entry,
                     Product &product) { product.changes = check(codec, view, entry); },
             [&](const Entry &entry, const Product &product) {
                 changed += product.changes.empty() ? 0U : 1U;
                 for (const Change &change : product.changes) {
                     output.write(style.bold(run.shown(entry)) + ": " + change_text(change) + "\n");
                 }
             });
    if (!options.common.quiet && !run.stopped()) {
        output.write(counted(run.tally().entries, "entry", "entries") + " checked, " +
                     counted(changed, "does", "do") + " not come back the same\n");
    }
    run.finish(output);
    return std::max<int>(changed != 0 ? exit_verdict : exit_ok, run.conclude());
}

} // namespace aceconv::tool
