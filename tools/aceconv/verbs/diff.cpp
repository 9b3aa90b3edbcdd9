// aceconv diff: two inputs by what their entries mean.
#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "compare/entry_words.h"
#include "stream/errors.h"
#include "tools/aceconv/diff_report.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/losses.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

/// What pairs entries: list name, sequence number, and for those without one
/// their place among the entries of the same kind.
using PairKey = std::tuple<std::optional<std::string>, std::optional<std::uint32_t>, std::uint64_t>;

struct Encoded {
    EntryKey key;
    Position position;
    Schema schema;
    Bytes encoding;
};

/// One of the two inputs, read ahead only as far as the other one's order asks for.
class Side {
  public:
    Side(const CommonOptions &common, const InputOptions &options, bool losses_wanted)
        : run_(common, options, "-", Lists::joined) {
        if (run_.several()) {
            throw UsageError(options.paths.front() + " is a folder; diff compares two files");
        }
        const auto encode = [view = RecordView(run_.descriptor()),
                             losses_wanted](Codec &codec, Entry &entry, Product &product) {
            encode_to_compare({codec, view, losses_wanted}, entry, product);
        };
        run_.begin(encode, (common.jobs + 1) / 2,
                   [this](const Entry &entry, const DataError &fault) {
                       bad_.insert(key_of(entry));
                       whole_ = whole_ && dynamic_cast<const StreamError *>(&fault) == nullptr;
                   });
    }

    /// The next entry, which is then among the waiting ones; false at the end.
    bool advance(PairKey &key, LossAccount &account) {
        EntryStream::Item *item = run_.next();
        if (item == nullptr) {
            return false;
        }
        const Entry &entry = item->entry;
        key = key_of(entry);
        account.add(run_.file(), entry, item->product);
        waiting_[key] = {entry.key,
                         entry.position,
                         entry.schema,
                         {item->product.bytes.begin(), item->product.bytes.end()}};
        return true;
    }

    /// Whether this side has no such entry, not even a bad one.
    [[nodiscard]] bool lacks(const PairKey &key) const { return whole_ && !bad_.contains(key); }
    /// Whether one of its bad entries, whose number nobody knows, may be this one.
    [[nodiscard]] bool may_have(const PairKey &key) const {
        return std::get<1>(key) && std::any_of(bad_.begin(), bad_.end(), [&](const PairKey &bad) {
                   const auto &list = std::get<0>(bad);
                   return !std::get<1>(bad) && (!list || list == std::get<0>(key));
               });
    }

    [[nodiscard]] std::map<PairKey, Encoded> &waiting() { return waiting_; }
    [[nodiscard]] Run &run() { return run_; }
    [[nodiscard]] std::string file() const { return run_.file(); }

  private:
    /// To be called once for each entry.
    PairKey key_of(const Entry &entry) {
        PairKey key = {entry.key.acl, entry.key.sequence, 0};
        if (!entry.key.acl || !entry.key.sequence) {
            std::get<2>(key) = ++unnamed_[{entry.key.acl, entry.key.sequence}];
        }
        return key;
    }

    Run run_;
    std::map<std::pair<std::optional<std::string>, std::optional<std::uint32_t>>, std::uint64_t>
        unnamed_;
    std::map<PairKey, Encoded> waiting_;
    std::set<PairKey> bad_;
    bool whole_ = true; // nothing of the input was left unread
};

class Comparison {
  public:
    Comparison(const bag_descriptor &descriptor, DiffReport &report)
        : view_(descriptor), descriptor_(descriptor), report_(report) {}

    /// Compares the two entries of this key, if both are there by now.
    void pair(const PairKey &key, Side &left, Side &right) {
        const auto a = left.waiting().find(key);
        const auto b = right.waiting().find(key);
        if (a == left.waiting().end() || b == right.waiting().end()) {
            return;
        }
        const auto changes = differences(view_, descriptor_, a->second.encoding, a->second.schema,
                                         b->second.encoding, b->second.schema);
        if (!changes.empty()) {
            const ReportedEntry before = reported(a->second);
            const ReportedEntry after = reported(b->second);
            report_.changed(before, after, changes);
            found(left, before, before.words + " -> " + after.words);
        }
        left.waiting().erase(a);
        right.waiting().erase(b);
    }

    /// What waits in vain.
    void rest(Side &left, Side &right) {
        for (const auto &[key, entry] : left.waiting()) {
            if (right.lacks(key)) {
                const ReportedEntry alone = reported(entry);
                report_.only_in_a(alone, right.may_have(key));
                found(left, alone, "only in " + left.file() + ": " + alone.words);
            }
        }
        for (const auto &[key, entry] : right.waiting()) {
            if (left.lacks(key)) {
                const ReportedEntry alone = reported(entry);
                report_.only_in_b(alone, left.may_have(key));
                found(left, alone, "only in " + right.file() + ": " + alone.words);
            }
        }
    }

  private:
    /// Cases are the lists of the first input.
    static void found(Side &left, const ReportedEntry &entry, const std::string &what) {
        left.run().findings().add_difference(left.file(), entry.key,
                                             shown_entry(entry.key, entry.position) + ": " + what);
    }

    [[nodiscard]] ReportedEntry reported(const Encoded &entry) const {
        const DecodedRecord record(descriptor_, entry.encoding);
        return {entry.key, entry.position,
                entry_words(view_, record.get(), entry.schema, entry.key.sequence)};
    }

    const RecordView view_;
    const bag_descriptor &descriptor_;
    DiffReport &report_;
};

} // namespace

int run_diff(const DiffOptions &options) {
    if (options.left.paths == options.right.paths && options.left.paths.front() == "-") {
        throw UsageError("only one of the two inputs can be standard input");
    }
    const bool wanted = losses_wanted(options.losses);
    const auto input = [&options](InputOptions side) {
        side.schema = side.schema ? side.schema : options.schema;
        side.ignore_others = options.ignore_others;
        return side;
    };
    Side left(options.common, input(options.left), wanted);
    CommonOptions unseen = options.common; // the other one keeps its pace
    unseen.quiet = true;
    unseen.progress = false;
    unseen.errors = unseen.junit = "";
    Side right(unseen, input(options.right), wanted);
    right.run().share_findings(left.run());
    for (const std::string &path :
         {options.losses.report, options.common.errors, options.common.junit}) {
        if (!path.empty()) {
            right.run().also_writes(path);
        }
    }
    LossAccount account(options.losses, "\"verb\":\"diff\"", left.run());
    DiffReport report(options.json, left.file(), right.file());
    Comparison comparison(left.run().descriptor(), report);
    left.run().hand_over(report.output());
    right.run().hand_over(report.output());
    const auto stopped = [&] {
        return !options.common.keep_going &&
               left.run().tally().errors + right.run().tally().errors != 0;
    };
    for (bool more = true; more && !stopped();) {
        more = false;
        for (Side *side : {&left, &right}) {
            PairKey key;
            if (stopped() || !side->advance(key, account)) {
                continue;
            }
            more = true;
            comparison.pair(key, left, right);
        }
    }
    if (!stopped()) {
        comparison.rest(left, right);
    }
    left.run().merge(right.run());
    report.finish(left.run().tally(), stopped());
    left.run().finish(report.output(), account.finish_report());
    const int verdict = report.different() == 0 ? exit_ok : exit_verdict;
    return std::max({account.verdict(), left.run().conclude(), verdict});
}

} // namespace aceconv::tool
