// Lists of records: lint, and the differences of records from each other.
#include "compare/entry_words.h"
#include "compare/linter.h"
#include "compare/losses.h"
#include "compare/translation.h"
#include "fuzz/promises.h"
#include "fuzz/records.h"
#include "stream/text.h"

namespace aceconv::fuzz {
namespace {

const bag_descriptor &descriptor() {
    return codec(Backend::bulk).descriptor();
}

std::string words(const Entry &entry) {
    return entry_words(record_view(), DecodedRecord(descriptor(), entry.encoding).get(),
                       entry.schema, std::nullopt);
}

void check_differences(const Entry &before, const Entry &after) {
    const auto there = differences(record_view(), descriptor(), before.encoding, before.schema,
                                   after.encoding, after.schema);
    const auto back = differences(record_view(), descriptor(), after.encoding, after.schema,
                                  before.encoding, before.schema);
    require(there.empty() == back.empty(), "differences do not depend on the direction");
    require(before.encoding != after.encoding || before.schema != after.schema || there.empty(),
            "an entry does not differ from itself");
    if (before.schema == after.schema) {
        DecodedRecord left(descriptor(), before.encoding);
        DecodedRecord right(descriptor(), after.encoding);
        clear_derived_bits(left.get());
        clear_derived_bits(right.get());
        const bool same = left.encode() == right.encode();
        require(same == there.empty(), "what differs is told", words(before));
        require(same || words(before) != words(after), "what differs reads differently",
                words(before));
    }
}

std::vector<Entry> any_list(Pieces &pieces) {
    constexpr std::size_t longest = 12;
    std::vector<Entry> list;
    while (!pieces.empty() && list.size() < longest) {
        const unsigned bits = pieces.number();
        Entry entry{.key = {"LIST", bits}};
        entry.position.ordinal = list.size() + 1;
        entry.schema = (bits & 1U) != 0 ? Schema::um : Schema::base;
        try {
            entry.encoding = any_record(pieces);
            list.push_back(entry);
        } catch (const DataError &) { // what no encoding holds
        }
    }
    return list;
}

} // namespace

void check_lists(Input bytes) {
    Pieces pieces(bytes);
    const std::vector<Entry> list = any_list(pieces);
    std::vector<const LintRule *> rules;
    for (const LintRule &rule : lint_rules()) {
        rules.push_back(&rule);
    }
    Linter linter(descriptor(), rules, 1000);
    for (const Entry &entry : list) {
        bool repeats = false; // an entry that is there once already
        for (const LintWarning &warning : linter.look_at(entry, entry.encoding)) {
            require(warning.rule != nullptr && !warning.text.empty() &&
                        escaped(warning.text) == warning.text,
                    "a warning drives no terminal", warning.text);
            require(!warning.earlier || warning.earlier->ordinal < entry.position.ordinal,
                    "what a warning is about stands before it");
            repeats = repeats || warning.earlier.has_value();
        }
        for (const Entry &earlier : list) {
            if (&earlier == &entry) {
                break;
            }
            const DecodedRecord record(descriptor(), entry.encoding);
            require(repeats || earlier.encoding != entry.encoding ||
                        earlier.schema != entry.schema || !has_action(record.get()),
                    "a repeated entry is told", words(entry));
            check_differences(earlier, entry);
        }
    }
}

} // namespace aceconv::fuzz
