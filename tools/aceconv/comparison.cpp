#include "tools/aceconv/comparison.h"

#include "compare/entry_words.h"

namespace aceconv::tool {

Comparison::Comparison(DiffSide &a, DiffSide &b, const ListNames &names, DiffReport &report)
    : a_(a), b_(b), names_(names), report_(report), descriptor_(a.run().descriptor()),
      view_(descriptor_), nothing_(encode_record(descriptor_, {})) {}

void Comparison::pair(const ComparedEntry &a, const ComparedEntry &b) {
    const auto changes =
        differences(view_, descriptor_, a.encoding, a.schema, b.encoding, b.schema);
    if (!changes.empty()) {
        const ReportedEntry before = reported(a);
        const ReportedEntry after = reported(b);
        tell({&before, &after, changes}, before, Which::a, before.words + " -> " + after.words);
    }
}

void Comparison::only_in(Which which, const ComparedEntry &entry, bool may_be_bad,
                         const ComparedEntry *moved) {
    const bool in_a = which == Which::a;
    const ReportedEntry alone = reported(entry);
    const ReportedEntry twin = moved == nullptr ? ReportedEntry() : reported(*moved);
    const Encoding nothing = nothing_;
    const auto changes = differences(view_, descriptor_, in_a ? entry.encoding : nothing,
                                     entry.schema, in_a ? nothing : entry.encoding, entry.schema);
    tell({in_a ? &alone : nullptr, in_a ? nullptr : &alone, changes, may_be_bad,
          moved == nullptr ? nullptr : &twin},
         alone, which, "only in " + side(which).file() + ": " + alone.words);
}

/// Test cases are the lists of the first input.
void Comparison::tell(const FoundDifference &found, const ReportedEntry &entry, Which which,
                      const std::string &line) {
    const EntryKey key = {names_.in_a(which, entry.key.acl), entry.key.sequence};
    report_.add(found);
    a_.run().findings().add_found(a_.file(), key, found);
    a_.run().findings().add_difference(a_.file(), key,
                                       shown_entry(entry.key, entry.position) + ": " + line);
}

ReportedEntry Comparison::reported(const ComparedEntry &entry) const {
    const DecodedRecord record(descriptor_, entry.encoding);
    return {entry.key, entry.position,
            entry_words(view_, record.get(), entry.schema, entry.key.sequence)};
}

} // namespace aceconv::tool
