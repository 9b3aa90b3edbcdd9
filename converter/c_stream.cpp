// aceconv_run: a stream of entries between callbacks.
#include <algorithm>

#include "converter/c_converter.h"
#include "converter/inspection.h"
#include "converter/passage.h"
#include "stream/sink.h"

namespace aceconv {
namespace {

constexpr unsigned most_jobs = 256;

void must_go_on(int answer) {
    if (answer != 0) {
        throw Cancelled();
    }
}

/// Gathers the output into pieces for the caller.
class CallerOutput : public Taker {
  public:
    explicit CallerOutput(const aceconv_stream &stream) : stream_(stream) {}
    void write(std::string_view bytes) override {
        pending_ += bytes;
        if (pending_.size() >= piece_bytes) {
            flush();
        }
    }
    void flush() {
        if (stream_.write != nullptr && !pending_.empty()) {
            must_go_on(stream_.write(stream_.context, pending_.data(), pending_.size()));
        }
        pending_.clear();
    }

  private:
    static constexpr std::size_t piece_bytes = 1 << 16;
    const aceconv_stream &stream_;
    std::string pending_;
};

ReadChunk caller_input(const aceconv_stream &stream, std::shared_ptr<const InputMeter> meter) {
    return [&stream, meter = std::move(meter)](char *buffer, std::size_t size) -> std::size_t {
        const ptrdiff_t got = stream.read(stream.context, buffer, size, meter->may_wait ? 1 : 0);
        if (got == ACECONV_READ_LATER && !meter->may_wait) {
            throw InputPauses();
        }
        if (got == -1) {
            throw Cancelled();
        }
        if (got < 0 || static_cast<std::size_t>(got) > size) {
            throw UsageError("the callback that reads returned " + std::to_string(got));
        }
        return static_cast<std::size_t>(got);
    };
}

/// What is made of an entry, and how it is written.
struct Making {
    Work work;
    std::optional<OutputFormat> format; // none: no output, or none of these
    Schema schema = Schema::base;       // of an output without entries
};

OutputFormat text_output(aceconv_format format) {
    switch (format) {
    case ACECONV_FORMAT_NDJSON:
        return OutputFormat::ndjson;
    default:
        return text_format(format) == Format::xml ? OutputFormat::xml : OutputFormat::json;
    }
}

OutputFormat encoding_output(aceconv_format format) {
    switch (format) {
    case ACECONV_FORMAT_ANY:
    case ACECONV_FORMAT_CBOR:
        return OutputFormat::cbor;
    case ACECONV_FORMAT_BARE_CBOR:
        return OutputFormat::bare_cbor;
    default:
        throw UsageError("not a format of encodings");
    }
}

Making making_of(const aceconv_stream &stream, const RecordView &view, bool losses,
                 std::optional<Schema> schema) {
    switch (stream.verb) {
    case ACECONV_ENCODE:
        return {[&view, losses](Codec &codec, Entry &entry, Product &product) {
                    encode_entry({codec, view, losses}, entry, Encoding(), product);
                },
                encoding_output(stream.format)};
    case ACECONV_DECODE: {
        if (stream.format == ACECONV_FORMAT_TEXT) {
            return {[&view, losses](Codec &codec, Entry &entry, Product &product) {
                        say_entry({codec, view, losses}, entry, product);
                    },
                    OutputFormat::text};
        }
        const OutputFormat format = text_output(stream.format);
        return {[&view, losses, text = text_format(format)](Codec &codec, Entry &entry,
                                                            Product &product) {
                    decode_entry({codec, view, losses}, entry, text, product);
                },
                format, schema.value_or(Schema::base)};
    }
    case ACECONV_CONVERT: {
        const auto to = schema_of(stream.to);
        if (!to) {
            throw UsageError("no schema to convert to");
        }
        const OutputFormat format = text_output(stream.format);
        return {[&view, losses, to = *to, text = text_format(format)](Codec &codec, Entry &entry,
                                                                      Product &product) {
                    convert_entry({codec, view, losses}, entry, to, text, product);
                    entry.schema = to;
                },
                format, *to};
    }
    case ACECONV_INSPECT:
        return {[&view, losses](Codec &codec, Entry &entry, Product &product) {
                    const auto inspected = inspect_entry({codec, view, losses}, entry, product);
                    product.bytes = inspection_json("", entry, inspected);
                },
                std::nullopt};
    case ACECONV_CHECK:
        return {[&view](Codec &codec, Entry &entry, Product &product) {
                    check_entry({codec, view, true}, entry, product);
                },
                std::nullopt};
    case ACECONV_READ:
        return {[&view](Codec &codec, Entry &entry, Product &product) {
                    encode_to_compare({codec, view, false}, entry, product);
                    if (entry.format) {
                        product.bytes = entry.text;
                    }
                },
                std::nullopt};
    }
    throw UsageError("no such verb");
}

/// Hands the fault that is being handled to the caller; whether the run goes on.
bool hand_over_fault(aceconv_converter &converter, const aceconv_stream &stream,
                     const Entry &entry) {
    converter.error.set(&entry);
    if (stream.fault == nullptr) {
        return false;
    }
    const aceconv_code code = converter.error.get().code;
    const int answer = stream.fault(stream.context, &converter.error.get());
    if (code != ACECONV_BAD_INPUT) { // which stays the run's own
        converter.error.clear();
    }
    must_go_on(answer);
    return true;
}

void run(aceconv_converter &converter, const aceconv_stream *given, Tally &tally) {
    const aceconv_stream stream = taken(given);
    if (stream.read == nullptr) {
        throw UsageError("nothing to read with");
    }
    if (stream.jobs > most_jobs) {
        throw UsageError("more than " + std::to_string(most_jobs) + " threads");
    }
    const auto own = schema_of(stream.schema);
    const auto schema = own ? own : converter.schema;
    const auto from = input_format(stream.from);
    const Making making = making_of(stream, *converter.view, converter.losses, schema);
    const auto meter = std::make_shared<InputMeter>();
    CallerOutput output(stream);
    const auto sink = making.format ? make_sink(*making.format, making.schema, output) : nullptr;
    const auto source = make_source(Window(caller_input(stream, meter)), from, schema);
    bool whole = true; // no fault ended it
    const auto on_fault = [&](const Entry &entry, const DataError &) {
        const bool on = hand_over_fault(converter, stream, entry);
        whole = whole && converter.error.get().code == ACECONV_OK;
        return on;
    };
    Passage passage(
        *source, *meter, *converter.setup, std::max(stream.jobs, 1U), making.work,
        [&output] { output.flush(); }, 1, Lists::joined, tally, on_fault);
    ShownResult shown;
    const auto emit = [&](const Entry &entry, const Product &product) {
        if (sink) {
            sink->write(entry.key, entry.schema, product.bytes);
        } else if (stream.verb == ACECONV_INSPECT) {
            output.write(product.bytes + "\n");
        }
        tally.add(product.changes);
        shown.set(entry, product, nullptr);
        if (stream.entry != nullptr) {
            must_go_on(stream.entry(stream.context, &shown.get()));
        }
        for (std::size_t i = 0; stream.loss != nullptr && i < shown.get().change_count; ++i) {
            must_go_on(stream.loss(stream.context, &shown.get(), &shown.get().changes[i]));
        }
    };
    try {
        while (const EntryStream::Item *item = passage.next()) {
            try {
                emit(item->entry, item->product);
            } catch (const DataError &fault) {
                passage.fail(item->entry, fault);
            }
        }
    } catch (const Cancelled &) {
        throw;
    } catch (...) {
        if (passage.at() != nullptr) { // where it was met
            converter.entry.key = passage.at()->key;
            converter.entry.position = passage.at()->position;
        }
        throw;
    }
    if (whole && sink) {
        sink->close();
    }
    output.flush();
}

} // namespace
} // namespace aceconv

using namespace aceconv;

aceconv_code aceconv_run(aceconv_converter *converter, const aceconv_stream *stream,
                         aceconv_tally *tally) ACECONV_NOEXCEPT {
    if (tally != nullptr) {
        *tally = {};
    }
    if (converter == nullptr) {
        return ACECONV_BAD_CALL;
    }
    Tally counted;
    aceconv_code code = converter->run([&] { run(*converter, stream, counted); });
    if (tally != nullptr) {
        *tally = {counted.entries, counted.errors, counted.losses, counted.entries_with_losses,
                  counted.entries_widened};
    }
    return code;
}
