#include "fuzz/promises.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>

#include "compare/entry_words.h"
#include "compare/loss_reasons.h"
#include "compare/losses.h"
#include "compare/translation.h"
#include "host/utf8.h"
#include "stream/errors.h"
#include "stream/text.h"
#include "tools/aceconv/report.h"

namespace aceconv::fuzz {
namespace {

using Names = std::set<std::string>;

constexpr Schema schemas[] = {Schema::base, Schema::um};

/// One line of text for people.
void require_shown(std::string_view line, std::size_t longest, const char *promise) {
    require(line.size() <= longest && escaped(line) == line, promise, line);
}

struct Written {
    std::string text;
    std::string fault; // why there is none
};

Written written(Backend backend, const Entry &entry, Format format) {
    Written made;
    try {
        codec(backend).decode(entry.encoding, entry.schema, format, entry.key, made.text);
    } catch (const DataError &fault) {
        made = {"", fault.path() + ": " + fault.what()};
        require(fault.line() == 0, "what is written has no lines");
    }
    return made;
}

/// The fields that `before`, a record in `from`, and the one of a text in `to` do not share.
Names fields_lost(Encoding before, Schema from, Encoding after, Schema to) {
    const bag_descriptor &descriptor = codec(Backend::bulk).descriptor();
    DecodedRecord left(descriptor, before);
    DecodedRecord right(descriptor, after);
    Names names;
    for (const Untranslated &number : translate(left.get(), from, to).untranslated) {
        names.insert(number.field);
    }
    clear_derived_bits(left.get());
    clear_derived_bits(right.get());
    const auto held = record_view().describe(left.get(), to);
    const auto kept = record_view().describe(right.get(), to);
    for (const Difference &difference : compare(held, kept)) {
        names.insert(difference.any().name);
    }
    return names;
}

/// What the text in `to` does not say of the entry is told as lost, and nothing else.
void check_losses(const Entry &entry, Encoding encoding, Schema to) {
    Entry source = entry;
    std::string text;
    Losses losses;
    try {
        convert(codec(Backend::bulk), record_view(), source, to, Format::json, text, &losses);
    } catch (const DataError &) {
        return;
    }
    Names told_lost;
    for (const Change &loss : losses) {
        require(!loss.reason.empty() && loss.reason.find(unexplained) == std::string::npos,
                "a loss has its reason", change_text(loss));
        if (!loss.field.empty()) {
            told_lost.insert(loss.field);
        }
    }
    const Entry product{.key = entry.key, .schema = to};
    const Names lost =
        fields_lost(encoding, entry.schema, read_again(product, Format::json, text), to);
    std::string seen = text;
    for (const Change &loss : losses) {
        seen += "\ntold: " + change_text(loss);
    }
    for (const std::string &name : lost) {
        seen += "\nlost: " + name;
    }
    require(lost == told_lost, "all losses are told, and nothing else", seen);
}

/// All that a user sees of one entry: what it is encoded to and as which text it comes back, or
/// the message.
std::string seen_of(Backend backend, Entry &entry) {
    std::string seen;
    entry.position = {1, 1};
    try {
        const Encoding encoding = codec(backend).encode(entry);
        seen = std::to_string(entry.key.sequence.value_or(0)) + " ";
        append(seen, encoding);
        entry.encoding.assign(encoding.begin(), encoding.end());
        seen += "\n";
        codec(backend).decode(encoding, entry.schema, Format::json, entry.key, seen);
    } catch (const DataError &fault) {
        seen += told(entry, fault, entry.text);
    }
    return seen;
}

} // namespace

void require(bool holds, const char *promise, std::string_view seen) {
    if (!holds) {
        std::cerr << "BROKEN: " << promise << '\n' << seen << std::endl;
        std::abort();
    }
}

void require_same(std::string_view one, std::string_view other, const char *promise) {
    if (one != other) {
        require(false, promise, std::string(one) + "\n--\n" + std::string(other));
    }
}

Codec &codec(Backend backend) {
    static const Plugin plugin = load_plugin(ACECONV_PLUGIN);
    static Codec bulk({plugin, ACECONV_MODULES, Backend::bulk});
    static Codec validating({plugin, ACECONV_MODULES, Backend::validating});
    return backend == Backend::bulk ? bulk : validating;
}

const RecordView &record_view() {
    static const RecordView view(codec(Backend::bulk).descriptor());
    return view;
}

std::string told(const Entry &entry, const DataError &fault, std::string_view text) {
    const auto ends = static_cast<std::uint64_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }));
    require(entry.position.line <= ends + 1 && fault.line() <= ends + 1,
            "a fault lies within its input", fault.what());
    require(*fault.what() != '\0', "a fault is told");
    const std::string line = tool::shown_line(tool::fault_text("input", entry, fault, ""));
    require_shown(line, 2000, "a message is one short line that drives no terminal");
    return tool::fault_text("input", entry, fault, "");
}

Bytes read_again(const Entry &entry, Format format, const std::string &text) {
    Entry again{.key = entry.key, .schema = entry.schema, .format = format, .text = text};
    try {
        const Encoding encoding = codec(Backend::bulk).encode(again);
        return {encoding.begin(), encoding.end()};
    } catch (const DataError &fault) {
        require(false, "what is written can be read",
                text + "\n" + fault.path() + ": " + fault.what());
        return {};
    }
}

void check_text(const Entry &entry) {
    Entry bulk = entry;
    Entry validating = entry;
    const std::string seen = seen_of(Backend::bulk, bulk);
    require_same(seen, seen_of(Backend::validating, validating), "both backends agree");
    if (!bulk.encoding.empty()) {
        check_losses(entry, bulk.encoding, Schema::base);
        check_losses(entry, bulk.encoding, Schema::um);
        bulk.format.reset();
        check_encoding(bulk);
    }
}

void check_encoding(const Entry &entry) {
    const Written json = written(Backend::bulk, entry, Format::json);
    const Written validating = written(Backend::validating, entry, Format::json);
    require_same(json.text, validating.text, "both backends write the same");
    require_same(json.fault, validating.fault, "both backends refuse the same");
    const Written xml = written(Backend::bulk, entry, Format::xml);
    require_same(json.fault, xml.fault, "JSON and XML have place for the same");
    if (json.fault.empty()) {
        const Bytes again = read_again(entry, Format::json, json.text);
        require(again == read_again(entry, Format::xml, xml.text), "JSON and XML say the same",
                json.text + "\n" + xml.text);
        for (const Schema to : schemas) {
            check_losses(entry, entry.encoding, to);
        }
    }
    const bag_descriptor &descriptor = codec(Backend::bulk).descriptor();
    try {
        const DecodedRecord record(descriptor, entry.encoding);
        require_shown(entry_words(record_view(), record.get(), entry.schema, entry.key.sequence),
                      std::size_t{1} << 21, "words are one line that drives no terminal");
    } catch (const DataError &) {
        require(!json.fault.empty(), "what cannot be decoded has no text", json.text);
    }
}

} // namespace aceconv::fuzz
