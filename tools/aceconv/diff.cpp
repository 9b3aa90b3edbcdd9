// aceconv diff: two inputs by what their entries mean.
#include <map>
#include <tuple>
#include <unistd.h>

#include "tools/aceconv/changes.h"
#include "tools/aceconv/errors.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/pipeline.h"
#include "tools/aceconv/record_view.h"

namespace aceconv::tool {
namespace {

struct DiffOptions {
    CommonOptions common;
    InputOptions left, right;
};

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
    Side(Codec &codec, const InputOptions &options, bool keep_going)
        : codec_(codec), keep_going_(keep_going), report_(options.path),
          source_(open_source(options, report_)) {}

    /// The next entry, which is then among the waiting ones; false at the end.
    bool advance(PairKey &key) {
        Entry entry;
        for (;;) {
            try {
                if (!source_ || !source_->next(entry))
                    return false;
                Bytes encoding = codec_.encode(entry);
                keys_.add(entry.key);
                key = {entry.key.acl, entry.key.sequence, 0};
                std::get<2>(key) = entry.key.acl && entry.key.sequence
                                       ? 0
                                       : ++unnamed_[{entry.key.acl, entry.key.sequence}];
                waiting_[key] = {entry.key, entry.position, entry.schema, std::move(encoding)};
                return true;
            } catch (const DataError &fault) {
                report_.add(entry.position, entry.key, fault);
                if (!keep_going_ || dynamic_cast<const StreamError *>(&fault) != nullptr)
                    source_.reset();
            }
        }
    }

    [[nodiscard]] std::map<PairKey, Encoded> &waiting() { return waiting_; }
    [[nodiscard]] const FaultReport &report() const { return report_; }

  private:
    Codec &codec_;
    bool keep_going_;
    FaultReport report_;
    std::unique_ptr<Source> source_;
    KeyRegistry keys_;
    std::map<std::pair<std::optional<std::string>, std::optional<std::uint32_t>>, std::uint64_t>
        unnamed_;
    std::map<PairKey, Encoded> waiting_;
};

class Comparison {
  public:
    Comparison(const Codec &codec, bool quiet)
        : view_(codec.descriptor()), descriptor_(codec.descriptor()), quiet_(quiet) {}

    /// Compares the two entries of this key, if both are there by now.
    void pair(const PairKey &key, Side &left, Side &right) {
        const auto a = left.waiting().find(key);
        const auto b = right.waiting().find(key);
        if (a == left.waiting().end() || b == right.waiting().end())
            return;
        compare(a->second, b->second);
        left.waiting().erase(a);
        right.waiting().erase(b);
    }

    void rest(Side &side, const std::string &mark) {
        for (const auto &[key, entry] : side.waiting()) {
            ++different_;
            write(entry, mark + " only in " + side.report().file());
        }
    }

    int finish() {
        output_.commit();
        return different_ == 0 ? exit_ok : exit_data;
    }

    [[nodiscard]] const Style &style() const { return style_; }

  private:
    void compare(const Encoded &a, const Encoded &b) {
        Record before(descriptor_, a.encoding);
        Record after(descriptor_, b.encoding);
        clear_derived_bits(before.get());
        clear_derived_bits(after.get());
        std::vector<FieldValue> original; // for a fragment type that A's schema cannot say
        if (translate_fragment_type(after.get(), b.schema, a.schema))
            original = view_.describe(Record(descriptor_, b.encoding).get(), b.schema);
        auto differences = view_.compare(before, after, a.schema);
        for (FieldValue &value : original)
            if (value.name == "FragmentFlags")
                differences.push_back({std::nullopt, std::move(value)});
        different_ += differences.empty() ? 0U : 1U;
        for (const Change &change : field_changes(differences, a.schema))
            write(a, change_text(change));
    }

    void write(const Encoded &entry, const std::string &what) {
        if (!quiet_)
            output_.write(style_.bold(shown_entry(entry.key, entry.position)) + ": " + what + "\n");
    }

    RecordView view_;
    const bag_descriptor &descriptor_;
    bool quiet_;
    Style style_{STDOUT_FILENO};
    Output output_{"-"};
    std::uint64_t different_ = 0;
};

int run(const DiffOptions &options) {
    if (options.left.path == "-" && options.right.path == "-")
        throw UsageError("only one of the two inputs can be standard input");
    const auto codec = start(options.common);
    Side left(*codec, options.left, options.common.keep_going);
    Side right(*codec, options.right, options.common.keep_going);
    Comparison comparison(*codec, options.common.quiet);
    for (bool more = true; more;) {
        more = false;
        for (Side *side : {&left, &right}) {
            PairKey key;
            if (!side->advance(key))
                continue;
            more = true;
            comparison.pair(key, left, right);
        }
    }
    const bool faults = left.report().count() + right.report().count() != 0;
    if (!faults || options.common.keep_going) {
        comparison.rest(left, comparison.style().red("-"));
        comparison.rest(right, comparison.style().green("+"));
    }
    const int status = comparison.finish();
    return faults ? exit_data : status;
}

} // namespace

void add_diff(CLI::App &app, int &status) {
    auto options = std::make_shared<DiffOptions>();
    CLI::App *verb = app.add_subcommand(
        "diff", "Compare two inputs, of either schema or encodings, entry by entry and field by "
                "field; the order of entries does not matter");
    verb->add_option("A", options->left.path, "The first input")->required();
    verb->add_option("B", options->right.path, "The second input; - is standard input")->required();
    add_schema(*verb, "--schema-a", options->left.schema,
               "The schema of A, when the data does not tell; of encodings, base by default");
    add_schema(*verb, "--schema-b", options->right.schema, "The same of B");
    add_common(*verb, options->common);
    verb->callback([options, &status] { status = run(*options); });
}

} // namespace aceconv::tool
