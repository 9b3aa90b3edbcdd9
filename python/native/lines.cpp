// Entries of one line each to their bags, all at once and without the interpreter's lock.
#include <cstring>
#include <vector>

#include "native/converter.h"
#include "native/values.h"

namespace aceconv::python {
namespace {

/// The lines of a run, each an entry of the list that it was made of, and their bags.
struct Lines {
    std::string text;
    std::size_t taken = 0;           // bytes of it
    std::vector<std::size_t> places; // in the list, of each line

    struct Bag {
        std::size_t begin = 0;
        std::size_t length = 0;
        unsigned products = 0; // other than one: the line is no entry, or several
        bool lossy = false;
    };
    std::string bytes;
    std::vector<Bag> bags; // of each line

    /// Takes text that is one line and may be an entry.
    void add(std::string_view entry, std::size_t place) {
        if (entry.empty() || entry.front() != '{' ||
            std::memchr(entry.data(), '\n', entry.size()) != nullptr ||
            std::memchr(entry.data(), '\r', entry.size()) != nullptr) {
            return;
        }
        text.append(entry).push_back('\n');
        places.push_back(place);
    }

    void attach(aceconv_stream &stream) {
        stream.context = this;
        stream.read = [](void *self, void *buffer, std::size_t size, int) {
            auto &lines = *static_cast<Lines *>(self);
            const std::size_t part = std::min(size, lines.text.size() - lines.taken);
            std::memcpy(buffer, lines.text.data() + lines.taken, part);
            lines.taken += part;
            return static_cast<std::ptrdiff_t>(part);
        };
        stream.entry = [](void *self, const aceconv_result *entry) {
            auto &lines = *static_cast<Lines *>(self);
            Bag &bag = lines.bags[entry->line - 1];
            bag = {lines.bytes.size(), entry->length, bag.products + 1, entry->change_count != 0};
            try {
                lines.bytes.append(reinterpret_cast<const char *>(entry->bytes), entry->length);
            } catch (const std::exception &) {
                return 1; // want of memory, as which the missing bags are told
            }
            return 0;
        };
        stream.fault = [](void *, const aceconv_error *) { return 0; };
    }
};

} // namespace

py::tuple Converter::encode_lines(const py::list &entries, int schema, unsigned jobs) {
    const Turn turn(*this);
    Lines lines;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const View view(entries[i]);
        lines.add({static_cast<const char *>(view.data()), view.size()}, i);
    }
    lines.bags.resize(lines.places.size());
    aceconv_stream stream{};
    stream.size = sizeof stream;
    stream.verb = ACECONV_ENCODE;
    stream.from = ACECONV_FORMAT_NDJSON;
    stream.schema = static_cast<aceconv_schema>(schema);
    stream.format = ACECONV_FORMAT_BARE_CBOR;
    stream.jobs = jobs;
    lines.attach(stream);
    aceconv_code code = ACECONV_OK;
    {
        const py::gil_scoped_release released;
        code = aceconv_run(converter_, &stream, nullptr);
    }
    if (code == ACECONV_CANCELLED) {
        throw std::bad_alloc();
    }
    if (code != ACECONV_OK && code != ACECONV_BAD_INPUT) { // whose rest is looked at one by one
        raise(aceconv_last_error(converter_));
    }
    py::list bags(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        bags[i] = py::none();
    }
    bool all = lines.places.size() == entries.size();
    for (std::size_t i = 0; i < lines.bags.size(); ++i) {
        const Lines::Bag &bag = lines.bags[i];
        if (bag.products == 1 && !bag.lossy) {
            bags[lines.places[i]] = py::bytes(lines.bytes.data() + bag.begin, bag.length);
        } else {
            all = false;
        }
    }
    return py::make_tuple(bags, all);
}

} // namespace aceconv::python
