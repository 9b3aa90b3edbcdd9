// The library's C interface: calls that the bytes tell, good ones and others. After any of them
// a converter does what it did before.
#include "aceconv/converter.h"

#include "fuzz/pieces.h"
#include "fuzz/promises.h"

namespace aceconv::fuzz {
namespace {

/// Enumerators that are there, and one beyond.
template <class Enum>
Enum any(Pieces &pieces, unsigned last) {
    return static_cast<Enum>(pieces.number() % (last + 2));
}

aceconv_input any_input(Pieces &pieces) {
    constexpr std::uint32_t sequences[] = {0, 10, 4294967295};
    constexpr const char *lists[] = {nullptr, "LIST", "", "\x01"};
    aceconv_input input{};
    input.size = sizeof input;
    input.format = any<aceconv_format>(pieces, ACECONV_FORMAT_TEXT);
    input.schema = any<aceconv_schema>(pieces, ACECONV_SCHEMA_UM);
    input.list = pieces.one_of(lists);
    input.sequence = pieces.one_of(sequences);
    const bool stored = pieces.number() % 4 == 0;
    const std::string_view text = pieces.text();
    input.data = text.data();
    input.length = text.size();
    if (stored) {
        const std::string_view earlier = pieces.text();
        input.stored = earlier.data();
        input.stored_length = earlier.size();
    }
    return input;
}

void check_error(const aceconv_converter *converter, aceconv_code code) {
    const aceconv_error *error = aceconv_last_error(converter);
    require((error == nullptr) == (code == ACECONV_OK), "a failure has its error, no success has");
    if (error != nullptr) {
        require(error->code == code && *error->text != '\0' && error->path != nullptr,
                "an error tells its code and a reason", error->text);
        require(code != ACECONV_INTERNAL && code != ACECONV_NO_MEMORY,
                "no input leads to a fault of the library", error->text);
    }
}

void check_change(const aceconv_change &change) {
    require(change.field != nullptr && change.leaf != nullptr && change.reason != nullptr,
            "the texts of a change are there");
    for (const aceconv_value &value : {change.before, change.after}) {
        require(value.kind != ACECONV_VALUE_TEXT || value.text != nullptr, "a text has its text");
    }
}

void check_result(const aceconv_result *result) {
    require(result->bytes != nullptr && result->bytes[result->length] == 0,
            "bytes have a NUL behind them");
    for (std::size_t i = 0; i < result->change_count; ++i) {
        check_change(result->changes[i]);
    }
    for (std::size_t i = 0; i < result->field_count; ++i) {
        const aceconv_field &field = result->fields[i];
        require(field.name != nullptr && field.bits != nullptr &&
                    field.offset + field.width <= sizeof(ipv4_acl_config_ace),
                "a field lies within its record");
    }
}

/// A run, and what its callbacks have been told.
struct Run {
    std::string_view input;
    std::size_t piece = 1;
    unsigned stops_at = 0; // which callback ends it; 0 for none
    bool pauses = false;
    unsigned called = 0;
    std::uint64_t entries = 0, losses = 0, faults = 0;

    int answer() { return ++called == stops_at ? 1 : 0; }
};

ptrdiff_t on_read(void *context, void *buffer, size_t size, int may_wait) {
    Run &run = *static_cast<Run *>(context);
    run.pauses = run.pauses && may_wait != 0;
    if (may_wait == 0 && !run.pauses) {
        run.pauses = true;
        return ACECONV_READ_LATER;
    }
    if (run.answer() != 0) {
        return -1;
    }
    const std::size_t count =
        run.input.copy(static_cast<char *>(buffer), std::min(size, run.piece));
    run.input.remove_prefix(count);
    return static_cast<ptrdiff_t>(count);
}
int on_write(void *context, const void *bytes, size_t length) {
    require(bytes != nullptr && length > 0, "what is written is not empty");
    return static_cast<Run *>(context)->answer();
}
int on_entry(void *context, const aceconv_result *entry) {
    check_result(entry);
    ++static_cast<Run *>(context)->entries;
    return static_cast<Run *>(context)->answer();
}
int on_loss(void *context, const aceconv_result *, const aceconv_change *loss) {
    check_change(*loss);
    ++static_cast<Run *>(context)->losses;
    return static_cast<Run *>(context)->answer();
}
int on_fault(void *context, const aceconv_error *fault) {
    require(*fault->text != '\0' && fault->code != ACECONV_INTERNAL, "a fault has its reason",
            fault->text);
    ++static_cast<Run *>(context)->faults;
    return static_cast<Run *>(context)->answer();
}

aceconv_code any_run(aceconv_converter *converter, Pieces &pieces) {
    Run run;
    aceconv_stream stream{};
    stream.size = sizeof stream;
    stream.verb = any<aceconv_verb>(pieces, ACECONV_READ);
    stream.from = any<aceconv_format>(pieces, ACECONV_FORMAT_TEXT);
    stream.schema = any<aceconv_schema>(pieces, ACECONV_SCHEMA_UM);
    stream.to = any<aceconv_schema>(pieces, ACECONV_SCHEMA_UM);
    stream.format = any<aceconv_format>(pieces, ACECONV_FORMAT_TEXT);
    const unsigned bits = pieces.number();
    stream.jobs = bits & 3U;
    stream.context = &run;
    stream.read = on_read;
    stream.write = on_write;
    stream.entry = on_entry;
    stream.loss = on_loss;
    stream.fault = (bits & 4U) != 0 ? nullptr : on_fault;
    run.piece = std::size_t{1} << (bits >> 3U & 7U);
    run.stops_at = (bits & 64U) != 0 ? pieces.number() : 0U;
    run.input = pieces.text();
    aceconv_tally tally;
    const aceconv_code code = aceconv_run(converter, &stream, &tally);
    require(code != ACECONV_CANCELLED || run.stops_at != 0, "only a callback cancels");
    require(code != ACECONV_OK || (tally.entries == run.entries + run.faults &&
                                   tally.faults == run.faults && tally.losses == run.losses),
            "the tally counts what the callbacks were told");
    return code;
}

aceconv_converter *open(aceconv_backend backend) {
    aceconv_options options{};
    options.size = sizeof options;
    options.modules = ACECONV_MODULES;
    options.backend = backend;
    aceconv_converter *converter = nullptr;
    require(aceconv_open(&options, &converter) == ACECONV_OK, "a converter opens");
    return converter;
}

/// A call whose result is known.
void check_usable(aceconv_converter *converter) {
    constexpr std::string_view entry = R"({"sequence-number":7,"grant":"deny"})";
    aceconv_input input{};
    input.size = sizeof input;
    input.data = entry.data();
    input.length = entry.size();
    const aceconv_result *result = nullptr;
    require(aceconv_encode(converter, &input, &result) == ACECONV_OK && result->sequence == 7,
            "a converter stays usable");
}

} // namespace

void check_library(Input bytes) {
    static aceconv_converter *const converters[] = {open(ACECONV_BACKEND_BULK),
                                                    open(ACECONV_BACKEND_VALIDATING)};
    Pieces pieces(bytes);
    for (int calls = 0; calls < 4 && !pieces.empty(); ++calls) {
        aceconv_converter *const converter = pieces.one_of(converters);
        const unsigned call = pieces.number() % 7;
        const aceconv_result *result = nullptr;
        aceconv_code code = ACECONV_OK;
        if (call == 6) {
            code = any_run(converter, pieces);
        } else {
            const auto to = any<aceconv_schema>(pieces, ACECONV_SCHEMA_UM);
            const auto format = any<aceconv_format>(pieces, ACECONV_FORMAT_TEXT);
            const aceconv_input input = any_input(pieces);
            switch (call) {
            case 0:
                code = aceconv_encode(converter, &input, &result);
                break;
            case 1:
                code = aceconv_decode(converter, &input, format, &result);
                break;
            case 2:
                code = aceconv_convert(converter, &input, to, format, &result);
                break;
            case 3:
                code = aceconv_inspect(converter, &input, &result);
                break;
            case 4:
                code = aceconv_check(converter, &input, &result);
                break;
            case 5: {
                const aceconv_input after = any_input(pieces);
                code = aceconv_diff(converter, &input, &after, &result);
                break;
            }
            }
            require((result != nullptr) == (code == ACECONV_OK),
                    "a success has its result, no failure has");
            if (result != nullptr) {
                check_result(result);
            }
        }
        check_error(converter, code);
    }
    for (aceconv_converter *converter : converters) {
        check_usable(converter);
    }
}

} // namespace aceconv::fuzz
