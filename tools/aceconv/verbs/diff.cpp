// aceconv diff: two inputs by what their entries mean.
#include <algorithm>
#include <map>
#include <tuple>
#include <unistd.h>

#include "compare/changes.h"
#include "compare/record_view.h"
#include "stream/errors.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/run.h"
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
    Side(const CommonOptions &common, const InputOptions &options)
        : run_(common, options, "-", Lists::joined) {
        const auto encode = [](Codec &codec, Entry &entry, Product &product) {
            append(product.bytes, codec.encode(entry));
        };
        run_.begin(encode, (common.jobs + 1) / 2);
    }

    /// The next entry, which is then among the waiting ones; false at the end.
    bool advance(PairKey &key) {
        EntryStream::Item *item = run_.next();
        if (item == nullptr) {
            return false;
        }
        const Entry &entry = item->entry;
        key = {entry.key.acl, entry.key.sequence, 0};
        if (!entry.key.acl || !entry.key.sequence) {
            std::get<2>(key) = ++unnamed_[{entry.key.acl, entry.key.sequence}];
        }
        waiting_[key] = {entry.key,
                         entry.position,
                         entry.schema,
                         {item->product.bytes.begin(), item->product.bytes.end()}};
        return true;
    }

    [[nodiscard]] std::map<PairKey, Encoded> &waiting() { return waiting_; }
    [[nodiscard]] Run &run() { return run_; }

  private:
    Run run_;
    std::map<std::pair<std::optional<std::string>, std::optional<std::uint32_t>>, std::uint64_t>
        unnamed_;
    std::map<PairKey, Encoded> waiting_;
};

class Comparison {
  public:
    explicit Comparison(const bag_descriptor &descriptor)
        : view_(descriptor), descriptor_(descriptor) {}

    /// Compares the two entries of this key, if both are there by now.
    void pair(const PairKey &key, Side &left, Side &right) {
        const auto a = left.waiting().find(key);
        const auto b = right.waiting().find(key);
        if (a == left.waiting().end() || b == right.waiting().end()) {
            return;
        }
        compare(a->second, b->second);
        left.waiting().erase(a);
        right.waiting().erase(b);
    }

    void rest(Side &side, const std::string &mark) {
        for (const auto &[key, entry] : side.waiting()) {
            ++different_;
            write(entry, mark + " only in " + side.run().file());
        }
    }

    int finish() {
        output_.commit();
        return different_ == 0 ? exit_ok : exit_verdict;
    }

    [[nodiscard]] const Style &style() const { return style_; }

  private:
    void compare(const Encoded &a, const Encoded &b) {
        DecodedRecord before(descriptor_, a.encoding);
        DecodedRecord after(descriptor_, b.encoding);
        clear_derived_bits(before.get());
        clear_derived_bits(after.get());
        std::vector<FieldValue> original; // for a fragment type that A's schema cannot say
        if (translate_fragment_type(after.get(), b.schema, a.schema)) {
            original = view_.describe(DecodedRecord(descriptor_, b.encoding).get(), b.schema);
        }
        auto differences = view_.compare(before, after, a.schema);
        for (FieldValue &value : original) {
            if (value.name == "FragmentFlags") {
                differences.push_back({std::nullopt, std::move(value)});
            }
        }
        different_ += differences.empty() ? 0U : 1U;
        for (const Change &change : field_changes(differences, a.schema)) {
            write(a, change_text(change));
        }
    }

    void write(const Encoded &entry, const std::string &what) {
        output_.write(style_.bold(shown_entry(entry.key, entry.position)) + ": " + what + "\n");
    }

    RecordView view_;
    const bag_descriptor &descriptor_;
    Style style_{STDOUT_FILENO};
    Output output_{"-"};
    std::uint64_t different_ = 0;
};

} // namespace

int run_diff(const DiffOptions &options) {
    if (options.left.paths == options.right.paths && options.left.paths.front() == "-") {
        throw UsageError("only one of the two inputs can be standard input");
    }
    Side left(options.common, options.left);
    CommonOptions unseen = options.common; // the other one keeps its pace
    unseen.quiet = true;
    unseen.progress = false;
    Side right(unseen, options.right);
    Comparison comparison(left.run().descriptor());
    for (bool more = true; more;) {
        more = false;
        for (Side *side : {&left, &right}) {
            PairKey key;
            if (!side->advance(key)) {
                continue;
            }
            more = true;
            comparison.pair(key, left, right);
        }
    }
    Tally &tally = left.run().tally();
    const Tally &other = right.run().tally();
    tally.entries += other.entries;
    tally.errors += other.errors;
    if (tally.errors == 0 || options.common.keep_going) {
        comparison.rest(left, comparison.style().red("-"));
        comparison.rest(right, comparison.style().green("+"));
    }
    const int status = comparison.finish();
    return std::max(left.run().conclude(), status);
}

} // namespace aceconv::tool
