// Inputs of each format: wherever their pieces end the same entries and faults are found, and
// what has been found comes back from every output.
#include <array>

#include "fuzz/pieces.h"
#include "fuzz/promises.h"
#include "stream/errors.h"
#include "stream/sink.h"
#include "stream/source.h"

namespace aceconv::fuzz {
namespace {

/// How an input is read: the fuzzer's first byte.
struct Manner {
    std::optional<InputFormat> format;
    std::optional<Schema> schema;
    OtherModules others;
    std::size_t piece; // bytes that come at once
    bool pauses;
};

Manner manner(Pieces &pieces, InputFormat format) {
    constexpr std::size_t sizes[] = {1, 2, 3, 7, 16, 63, 64, 65};
    constexpr std::optional<Schema> schemas[] = {{}, Schema::base, Schema::um, {}};
    const unsigned bits = pieces.number();
    Manner read;
    read.schema = schemas[bits & 3U];
    read.others = (bits & 4U) != 0 ? OtherModules::stepped_over : OtherModules::refused;
    read.piece = sizes[bits >> 3U & 7U];
    read.pauses = (bits & 64U) != 0;
    if ((bits & 128U) == 0) { // else it is recognised
        read.format = format;
    }
    return read;
}

struct Found {
    std::vector<Entry> entries; // good ones
    std::string told;           // everything, faults too
};

Found found(Source &source, std::string_view text) {
    Found all;
    std::string empty; // lists, which are told whenever somebody asks
    std::uint64_t last = 0;
    for (bool more = true; more;) {
        Entry entry;
        try {
            more = source.next(entry);
            if (more) {
                require(entry.position.ordinal == last + 1, "entries are counted");
                last = entry.position.ordinal;
                all.told += std::to_string(entry.position.line) + " " + entry.key.acl.value_or("") +
                            " " + entry.text + std::string(text_of(entry.encoding)) + "\n";
                all.entries.push_back(entry);
            }
        } catch (const InputPauses &) {
        } catch (const StreamError &fault) {
            all.told += told(entry, fault, text) + "\n";
            more = false;
        } catch (const DataError &fault) {
            all.told += told(entry, fault, text) + "\n";
            require(entry.position.ordinal > last, "bad entries are counted");
            last = entry.position.ordinal;
        } catch (const SchemaUnknown &unknown) {
            all.told += unknown.what();
            more = false;
        }
        for (const EmptyList &list : source.take_empty_lists()) {
            empty += list.acl + " " + std::to_string(list.position.line) + "\n";
        }
    }
    all.told += empty + source.surroundings().text();
    return all;
}

Found read(std::string_view text, const Manner &how, std::size_t piece, bool pauses) {
    bool may_pause = false; // not before the source stands
    const auto next_piece = [&, left = text, paused = false](char *buffer,
                                                             std::size_t size) mutable {
        paused = may_pause && !paused;
        if (paused) {
            throw InputPauses();
        }
        const std::size_t count = left.copy(buffer, std::min(piece, size));
        left.remove_prefix(count);
        return count;
    };
    try {
        const auto source = make_source(Window(next_piece), how.format, how.schema, how.others);
        may_pause = pauses;
        return found(*source, text);
    } catch (const StreamError &fault) {
        return {{}, told({}, fault, text)};
    }
}

struct Output {
    OutputFormat write;
    InputFormat read;
};
constexpr Output outputs[] = {{OutputFormat::json, InputFormat::json},
                              {OutputFormat::xml, InputFormat::xml},
                              {OutputFormat::ndjson, InputFormat::ndjson},
                              {OutputFormat::cbor, InputFormat::cbor},
                              {OutputFormat::bare_cbor, InputFormat::cbor}};

/// What each entry that has its place in the output comes back as.
std::vector<Entry> write_all(const std::vector<Entry> &entries, OutputFormat format, Kept &output) {
    const bool text = format != OutputFormat::cbor && format != OutputFormat::bare_cbor;
    std::vector<Entry> taken;
    const auto sink = make_sink(format, entries.front().schema, output);
    for (Entry entry : entries) {
        try {
            std::string bytes;
            if (text) {
                const Format written = text_format(format);
                codec(Backend::bulk)
                    .decode(entry.encoding, entry.schema, written, entry.key, bytes);
                entry.encoding = read_again(entry, written, bytes);
            } else {
                append(bytes, entry.encoding);
            }
            sink->write(entry.key, entry.schema, bytes);
            taken.push_back(entry);
        } catch (const DataError &) {
        }
    }
    sink->close();
    return taken;
}

void check_outputs(const std::vector<Entry> &entries) {
    for (const Output &format : outputs) {
        Kept output;
        const auto taken = write_all(entries, format.write, output);
        const auto source = make_source(Window(output.text), format.read, entries.front().schema);
        const Found back = found(*source, output.text);
        require(back.entries.size() == taken.size(), "every entry comes back", output.text);
        for (std::size_t i = 0; i < taken.size(); ++i) {
            Entry again = back.entries[i];
            require_same(text_of(codec(Backend::bulk).encode(again)), text_of(taken[i].encoding),
                         "entries come back as they were");
            require(format.write == OutputFormat::bare_cbor || again.key == taken[i].key,
                    "entries keep their keys", output.text);
        }
    }
}

void check_source(Input bytes, InputFormat format) {
    Pieces pieces(bytes);
    const Manner how = manner(pieces, format);
    const std::string_view text = pieces.rest();
    const Found whole = read(text, how, text.size() + 1, false);
    require_same(whole.told, read(text, how, how.piece, how.pauses).told,
                 "where pieces end does not matter");
    constexpr std::size_t looked_at = 4; // which takes most of the time
    std::vector<Entry> encoded;
    for (std::size_t i = 0; i < whole.entries.size() && i < looked_at; ++i) {
        Entry entry = whole.entries[i];
        if (!entry.format) {
            check_encoding(entry);
        } else {
            check_text(entry);
        }
        try {
            const Encoding encoding = codec(Backend::bulk).encode(entry);
            entry.encoding.assign(encoding.begin(), encoding.end());
        } catch (const DataError &) {
            continue;
        }
        if (encoded.empty() || encoded.front().schema == entry.schema) {
            encoded.push_back(std::move(entry));
        }
    }
    if (!encoded.empty()) {
        check_outputs(encoded);
    }
}

} // namespace

void check_json(Input bytes) {
    check_source(bytes, InputFormat::json);
}
void check_lines(Input bytes) {
    check_source(bytes, InputFormat::ndjson);
}
void check_xml(Input bytes) {
    check_source(bytes, InputFormat::xml);
}
void check_encodings(Input bytes) {
    check_source(bytes, InputFormat::cbor);
}
void check_digits(Input bytes) {
    check_source(bytes, (bytes.size() & 1U) == 0 ? InputFormat::hex : InputFormat::base64);
}

} // namespace aceconv::fuzz
