// aceconv diff: two inputs by what their entries mean.
#include <algorithm>

#include "stream/errors.h"
#include "tools/aceconv/comparison.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

InputOptions input_of(const DiffOptions &options, InputOptions side) {
    side.schema = side.schema ? side.schema : options.schema;
    side.ignore_others = options.ignore_others;
    return side;
}

/// Of the second input, which keeps the first one's pace and whose findings are told with its.
CommonOptions unseen(CommonOptions common) {
    common.quiet = true;
    common.progress = false;
    common.errors = common.junit = common.html = "";
    return common;
}

/// Says which lists of --acl are in neither input; whether there are such.
bool say_missing(DiffSide &side) {
    const std::vector<std::string> missing = side.missing();
    for (const std::string &name : missing) {
        say_error(side.file() + ": no list '" + name + "', which --acl names");
    }
    return !missing.empty();
}

} // namespace

int run_diff(const DiffOptions &options) {
    if (options.left.paths == options.right.paths && options.left.paths.front() == "-") {
        throw UsageError("only one of the two inputs can be standard input");
    }
    ListNames names(options.renamed);
    const bool wanted = losses_wanted(options.losses, options.common);
    DiffSide left(Which::a, options.common, input_of(options, options.left), wanted, names);
    DiffSide right(Which::b, unseen(options.common), input_of(options, options.right), wanted,
                   names);
    right.run().share_findings(left.run());
    for (const std::string &path : {options.losses.report, options.common.errors,
                                    options.common.junit, options.common.html}) {
        if (!path.empty()) {
            right.run().also_writes(path);
        }
    }
    LossAccount account(options.losses, "\"verb\":\"diff\"", left.run());
    DiffReport report(options.json, left.file(), right.file());
    Comparison comparison(left, right, names, report);
    const auto matcher = options.by == DiffOptions::By::content ? match_by_content(comparison)
                                                                : match_by_sequence(comparison);
    left.run().hand_over(report.output());
    right.run().hand_over(report.output());
    const auto stopped = [&] {
        return !options.common.keep_going &&
               left.run().tally().errors + right.run().tally().errors != 0;
    };
    for (bool more = true; more && !stopped();) {
        more = false;
        for (const Which which : {Which::a, Which::b}) {
            DiffSide &side = comparison.side(which);
            const EntryStream::Item *item = stopped() ? nullptr : side.next(account);
            if (item == nullptr) {
                continue;
            }
            more = true;
            const Entry &entry = item->entry;
            const auto *const bytes =
                reinterpret_cast<const std::uint8_t *>(item->product.bytes.data());
            matcher->take(
                which, side.key(),
                {entry.key, entry.position, entry.schema, {bytes, item->product.bytes.size()}});
        }
    }
    int verdict = exit_ok;
    if (!stopped()) {
        matcher->finish();
        for (DiffSide *side : {&left, &right}) {
            verdict = say_missing(*side) ? exit_trouble : verdict;
        }
    }
    left.run().merge(right.run());
    report.finish(left.run().tally(), stopped());
    left.run().finish(report.output(), account.finish_report());
    verdict = std::max<int>(verdict, report.different() == 0 ? exit_ok : exit_verdict);
    return std::max({account.verdict(), left.run().conclude(), verdict});
}

} // namespace aceconv::tool
