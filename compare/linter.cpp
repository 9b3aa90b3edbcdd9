#include "compare/linter.h"

#include <algorithm>

#include "compare/decoded_record.h"
#include "compare/translation.h"

namespace aceconv {
namespace {

/// What the entry says, remarks aside.
std::string content(const bag_descriptor &descriptor, const ipv4_acl_config_ace &record,
                    Schema schema) {
    ipv4_acl_config_ace said = record; // whose texts stay the record's
    said.remark = said.SequenceStr = nullptr;
    said.ConfigurationMask &= ~(std::uint64_t{1} << 31 | std::uint64_t{1} << 52);
    clear_derived_bits(said);
    std::string text(1, schema == Schema::base ? 'b' : 'u');
    append(text, encode_record(descriptor, said));
    return text;
}

} // namespace

bool Linter::looks_at(const char *rule) const {
    return std::find(rules_.begin(), rules_.end(), find_lint_rule(rule)) != rules_.end();
}

/// The list of the entry. Those of documents come one after the other; encodings of several
/// lists may be mixed.
Linter::List &Linter::list_of(const Entry &entry) {
    ListName name(*entry.key.acl, entry.position.before_list);
    const auto found = lists_.find(name);
    if (found != lists_.end() && entry.position.input == input_) {
        return found->second;
    }
    if (entry.in_document || entry.position.input != input_) {
        partly_ = partly();
        lists_.clear();
        texts_ = {};
        input_ = entry.position.input;
    }
    return lists_.try_emplace(std::move(name), steps_).first->second;
}

std::vector<PartlyLinted> Linter::partly() const {
    std::vector<PartlyLinted> partly = partly_;
    for (const auto &[name, list] : lists_) {
        if (list.shadowing.unseen() != 0) {
            partly.push_back({input_, name.first, list.shadowing.unseen()});
        }
    }
    return partly;
}

/// Fills in which earlier entries there are, and keeps this one for later ones.
void Linter::compare(List &list, const Entry &entry, const ipv4_acl_config_ace &record,
                     LintSubject &subject) {
    const auto number = static_cast<std::uint32_t>(list.entries.size());
    list.entries.push_back(
        {entry.key.sequence, entry.position.line, entry.position.ordinal, record.grant != 0});
    if (looks_at(duplicate_rule)) {
        const auto [first, is_new] =
            list.contents.try_emplace(content(descriptor_, record, entry.schema), number);
        if (!is_new) {
            subject.same = &list.entries[first->second];
            return; // which says it all
        }
    }
    if (looks_at(shadowed_rule)) {
        const auto around = list.shadowing.add(packet_match(record, entry.schema, texts_),
                                               entry.key.sequence, number);
        subject.around = around ? &list.entries[*around] : nullptr;
    }
}

LintWarnings Linter::look_at(const Entry &entry, Encoding encoding) {
    const DecodedRecord decoded(descriptor_, encoding);
    LintSubject subject{decoded.get(), entry.schema};
    if (!entry.key.acl) {
        ++without_list_;
    } else if (has_action(subject.record)) {
        compare(list_of(entry), entry, subject.record, subject);
    }
    LintWarnings warnings;
    for (const LintRule *rule : rules_) {
        if (rule->check != nullptr) {
            rule->check(*rule, subject, warnings);
        }
    }
    return warnings;
}

} // namespace aceconv
