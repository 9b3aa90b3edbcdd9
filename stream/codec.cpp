#include "stream/codec.h"

#include <new>

#include "host/bag_library.h"
#include "host/data_path.h"
#include "host/entry_nodes.h"
#include "stream/errors.h"
#include "stream/node_line.h"

namespace aceconv {
namespace {

std::size_t slot(Schema schema, Format format) {
    return (schema == Schema::um ? 2U : 0U) + (format == Format::xml ? 1U : 0U);
}

constexpr bool is_bag_status(std::uint32_t status) {
    return status >= static_cast<std::uint32_t>(BagStatus::not_registered) &&
           status <= static_cast<std::uint32_t>(BagStatus::no_memory);
}

/// Why a decoder returned `status`.
std::string decoder_fault(std::uint32_t status) {
    switch (status) {
    case ACE_STATUS_NO_KEYWORD:
        return "a TCP flag that has no name; expected flags fin, syn, rst, psh, ack, urg";
    case ACE_STATUS_UNKNOWN_UNIT:
        return "an unknown rate unit; expected 0 to 4, pps to gbps";
    default:
        return "the decoder failed with status " + std::to_string(status);
    }
}

/// Throws why a decoder returned `status`.
[[noreturn]] void throw_decoder_fault(std::uint32_t status) {
    if (is_bag_status(status)) {
        throw_bag_failure(status);
    }
    if (is_want_of_memory(status)) {
        throw std::bad_alloc();
    }
    throw DataError("", decoder_fault(status));
}

/// Moves the entry's position on to the node at fault. Only a fault costs this look
/// at the text.
void point_at(const DataError &fault, Entry &entry) {
    const std::string around = entry_path(entry.schema, entry.key);
    std::uint64_t line = fault.line();
    if (line == 0 && fault.path().compare(0, around.size(), around) == 0) {
        const auto below = std::string_view(fault.path()).substr(around.size());
        line = line_of_node(entry.text, *entry.format, below);
    }
    if (line != 0 && entry.position.line != 0) {
        entry.position.line += line - 1;
    }
}

} // namespace

Modules load_modules(const std::string &directory) {
    try {
        return Modules(directory);
    } catch (const DataError &e) {
        throw IoError(directory + ": cannot load the YANG modules: " + e.what());
    }
}

Codec::Codec(const CodecSetup &setup)
    : plugin_(setup.plugin), modules_(load_modules(setup.modules)), backend_(setup.backend) {}

EntryReader &Codec::reader(Schema schema, Format format) {
    auto &reader = readers_[slot(schema, format)];
    if (!reader) {
        reader = bulk(format) ? make_bulk_reader(modules_, schema)
                              : make_validating_reader(modules_, schema, format);
    }
    return *reader;
}

EntryWriter &Codec::writer(Schema schema, Format format) {
    auto &writer = writers_[slot(schema, format)];
    if (!writer) {
        writer = bulk(format) ? make_bulk_writer(modules_, schema)
                              : make_validating_writer(modules_, schema, format);
    }
    return *writer;
}

void Codec::look_ahead(Schema schema, std::span<const std::string_view> texts) {
    for (const auto &reader : readers_) {
        if (reader) {
            reader->look_ahead({});
        }
    }
    if (!texts.empty()) {
        reader(schema, Format::json).look_ahead(texts);
    }
}

Encoding Codec::encode(Entry &entry, Encoding stored) {
    read_ = nullptr;
    if (!entry.format) {
        return entry.encoding;
    }
    EntryReader &source = reader(entry.schema, *entry.format);
    ccv_yang_node *node = nullptr;
    try {
        node = source.read(entry.text, entry.key);
    } catch (const DataError &fault) {
        entry.key.sequence = source.sequence(); // for the message
        point_at(fault, entry);
        throw;
    }
    entry.key.sequence = source.sequence();
    if (entry.in_document && !entry.key.sequence) {
        throw DataError("", "an entry without \"sequence-number\"");
    }
    const std::uint32_t status = run_encoder(node, entry.schema, stored, encoded_);
    if (status != 0) {
        const DataError fault = source.explain(status);
        point_at(fault, entry);
        throw fault;
    }
    if (entry.schema == Schema::um && child_named(*node, "permit") != nullptr &&
        child_named(*node, "deny") != nullptr) {
        // Both fill one record, which may then hold what no text can say: two
        // user-defined fields of one name.
        decode_nodes(encoded_.get(), entry.schema, entry.key);
    }
    read_ = node;
    return encoded_.get();
}

Encoding Codec::encode_nodes(ccv_yang_node &entry, Schema schema) {
    const std::uint32_t status = run_encoder(&entry, schema, {}, nodes_encoded_);
    if (status != 0) {
        throw DataError("", explain_nodes(entry, status));
    }
    return nodes_encoded_.get();
}

/// Throws what the bag library refused.
std::uint32_t Codec::run_encoder(ccv_yang_node *entry, Schema schema, Encoding stored,
                                 OwnedEncoding &encoded) const {
    std::uint8_t *bytes = nullptr;
    const Encoder encoder = schema == Schema::base ? plugin_.encode_base : plugin_.encode_um;
    const std::uint32_t status =
        encoder(entry, stored.empty() ? nullptr : stored.data(),
                static_cast<std::uint32_t>(stored.size()), &bytes, &encoded.length);
    if (is_bag_status(status)) {
        throw_bag_failure(status);
    }
    if (is_want_of_memory(status)) {
        throw std::bad_alloc();
    }
    encoded.bytes.reset(bytes);
    return status;
}

void Codec::run_decoder(ccv_yang_output *output, Encoding encoding, Schema schema) const {
    const Decoder decoder = schema == Schema::base ? plugin_.decode_base : plugin_.decode_um;
    const std::uint32_t status =
        decoder(output, encoding.data(), static_cast<std::uint32_t>(encoding.size()));
    if (status != 0) {
        throw_decoder_fault(status);
    }
}

void Codec::write(EntryWriter &target, Encoding encoding, Schema schema, const EntryKey &key,
                  std::string &text) const {
    const std::size_t before = text.size();
    run_decoder(target.begin(key), encoding, schema);
    target.finish(text);
    if (text.size() - before > max_entry_bytes) {
        throw DataError("", "more than " + std::to_string(max_entry_bytes) + " bytes as text");
    }
}

void Codec::decode(Encoding encoding, Schema schema, Format format, const EntryKey &key,
                   std::string &text) {
    write(writer(schema, format), encoding, schema, key, text);
}

ccv_yang_node &Codec::decode_nodes(Encoding encoding, Schema schema, const EntryKey &key) {
    auto &mirror = mirrors_[schema == Schema::um ? 1 : 0];
    if (!mirror) {
        mirror = make_mirror(modules_, schema);
    }
    run_decoder(mirror->begin(key), encoding, schema);
    return mirror->finish();
}

} // namespace aceconv
