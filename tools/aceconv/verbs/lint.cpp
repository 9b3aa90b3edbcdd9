// aceconv lint: what no router can mean.
#include <algorithm>
#include <optional>
#include <sstream>
#include <unistd.h>

#include "compare/decoded_record.h"
#include "compare/entry_words.h"
#include "compare/linter.h"
#include "converter/report_rows.h"
#include "converter/work.h"
#include "host/nearest.h"
#include "stream/errors.h"
#include "stream/text.h"
#include "tools/aceconv/exit_code.h"
#include "tools/aceconv/json_report.h"
#include "tools/aceconv/run.h"
#include "tools/aceconv/verbs/verbs.h"

namespace aceconv::tool {
namespace {

using Rules = std::vector<const LintRule *>;

/// The rules of these names, which commas separate.
Rules named_rules(const std::string &names) {
    Rules rules;
    std::istringstream list(names);
    for (std::string name; std::getline(list, name, ',');) {
        rules.push_back(find_lint_rule(name));
        if (rules.back() == nullptr) {
            std::vector<std::string> known;
            for (const LintRule &rule : lint_rules()) {
                known.emplace_back(rule.name);
            }
            throw UsageError("unknown rule " + name + did_you_mean(name, known) +
                             "; --list-rules shows all");
        }
    }
    return rules;
}

Rules chosen_rules(const LintOptions &options) {
    const Rules only = named_rules(options.only), without = named_rules(options.without);
    const auto among = [](const Rules &rules, const LintRule &rule) {
        return std::find(rules.begin(), rules.end(), &rule) != rules.end();
    };
    Rules chosen;
    for (const LintRule &rule : lint_rules()) {
        if ((options.only.empty() || among(only, rule)) && !among(without, rule)) {
            chosen.push_back(&rule);
        }
    }
    return chosen;
}

int list_rules() {
    Output output("-");
    for (const LintRule &rule : lint_rules()) {
        std::string name = rule.name;
        name.resize(20, ' ');
        output.write(name + rule.meaning + "\n");
    }
    output.commit();
    return exit_ok;
}

/// The warnings on standard output, a line each or as a JSON document.
class Warnings {
  public:
    Warnings(const Run &run, bool json) : run_(run) {
        if (json) {
            json_.emplace(output_, json_member("verb", "lint"), "warnings");
        }
    }
    [[nodiscard]] Output &output() { return output_; }
    [[nodiscard]] std::uint64_t count() const { return count_; }

    /// `words` say the entry; empty for a list.
    void add(const EntryKey &key, const Position &position, const std::string &words,
             const LintWarnings &warnings) {
        count_ += warnings.size();
        const std::string file = run_.file(position);
        run_.findings().add_warnings(file, key, position, words, warnings);
        for (const LintWarning &warning : warnings) {
            if (json_) {
                const std::string shown = run_.several() ? file : "";
                json_->add(warning_row({shown, key, position}, warning, words));
            } else {
                output_.write(style_.bold(shown_place(escaped(file), position, key)) +
                              warning.text +
                              style_.faint(std::string(" [") + warning.rule->name + "]") + "\n");
            }
        }
        if (!json_ && !words.empty()) {
            output_.write(style_.faint("    " + words) + "\n");
        }
    }

    /// Says what was not compared, and ends the document.
    void finish(const Linter &linter, const Tally &tally, bool stopped) {
        std::string rows;
        for (const PartlyLinted &list : linter.partly()) {
            const std::string file = run_.file({.input = list.input});
            say(escaped(file) + ": acl '" + printable(list.acl) + "': its last " +
                counted(list.unseen, "entry was", "entries were") +
                " not compared with earlier ones, which would have taken too long");
            rows += (rows.empty() ? "" : ",") + uncompared_row(file, list.acl, list.unseen);
        }
        if (linter.without_list() > 1) {
            say(counted(linter.without_list(), "entry", "entries") +
                " of no named list: not compared with one another");
        }
        if (json_) {
            json_->finish(count_members(tally, stopped) + "," +
                          json_member("entries-without-list", linter.without_list()) +
                          ",\"not-compared\":[" + rows + "]");
        }
    }

  private:
    const Run &run_;
    Output output_{"-", ReaderGone::is_ignored};
    const Style style_{STDOUT_FILENO};
    std::optional<JsonReport> json_;
    std::uint64_t count_ = 0;
};

} // namespace

int run_lint(const LintOptions &options) {
    if (options.list_rules) {
        return list_rules();
    }
    Run run(options.common, options.input, "-", Lists::apart);
    const RecordView view(run.descriptor());
    Linter linter(run.descriptor(), chosen_rules(options));
    Warnings warnings(run, options.json);
    run.hand_over(warnings.output());
    run.each(
        [&view](Codec &codec, Entry &entry, Product &product) {
            encode_to_compare({codec, view, false}, entry, product);
        },
        [&](const Entry &entry, const Product &product) {
            const Bytes encoding(product.bytes.begin(), product.bytes.end());
            const LintWarnings found = linter.look_at(entry, encoding);
            if (!found.empty()) {
                const DecodedRecord record(run.descriptor(), encoding);
                warnings.add(entry.key, entry.position,
                             entry_words(view, record.get(), entry.schema, entry.key.sequence),
                             found);
            }
        });
    if (const LintRule *rule = find_lint_rule(empty_list_rule); linter.looks_at(rule->name)) {
        for (const EmptyList &list : run.empty_lists()) {
            warnings.add({list.acl, std::nullopt}, list.position, "",
                         {{rule, "", "the list has no entries", std::nullopt}});
        }
    }
    warnings.finish(linter, run.tally(), run.stopped());
    if (!options.json && !options.common.quiet && !run.stopped()) {
        warnings.output().write(counted(run.tally().entries, "entry", "entries") + " looked at, " +
                                counted(warnings.count(), "warning", "warnings") + "\n");
    }
    run.finish(warnings.output(), nullptr);
    const int verdict = options.strict && warnings.count() != 0 ? exit_verdict : exit_ok;
    return std::max(verdict, run.conclude());
}

} // namespace aceconv::tool
