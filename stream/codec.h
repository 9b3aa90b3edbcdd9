// One entry through the plug-in, in either direction.
#pragma once

#include <array>
#include <cstdlib>
#include <memory>
#include <string>

#include "host/entry.h"
#include "host/plugin_loader.h"
#include "stream/source.h"

namespace aceconv {

/// Which of the host's backends reads and writes JSON; XML is always libyang's.
enum class Backend { bulk, validating };

/// What codecs are made of.
struct CodecSetup {
    Plugin plugin;
    std::string modules; // their folder
    Backend backend;
};

/// Throws IoError when those in the folder cannot be loaded.
Modules load_modules(const std::string &directory);

/// Everything that conversions need; one for each thread.
class Codec {
  public:
    /// Throws IoError when the YANG modules cannot be loaded.
    explicit Codec(const CodecSetup &setup);

    /// The entry's encoding, which is `entry.encoding` where it came as one; valid
    /// until the next call. Fills in the sequence number in `entry.key`. `stored`
    /// is the entry's earlier encoding or empty. Throws DataError, with
    /// `entry.position` moved on to the line of the node at fault.
    Encoding encode(Entry &entry, Encoding stored = {});

    /// What `encode` has last returned of a text; valid until the next call of that.
    [[nodiscard]] Encoding encoded() const { return encoded_.get(); }

    /// Names the JSON texts of entries that are encoded next, and forgets those that were
    /// named before, see EntryReader::look_ahead.
    void look_ahead(Schema schema, std::span<const std::string_view> texts);

    /// Appends the text of an entry, on one line. Throws DataError, also for a text
    /// that is too long to be read again.
    void decode(Encoding encoding, Schema schema, Format format, const EntryKey &key,
                std::string &text);

    /// The entry as nodes, valid until the next call. Throws DataError.
    ccv_yang_node &decode_nodes(Encoding encoding, Schema schema, const EntryKey &key);

    /// The nodes of the entry last encoded from text, valid until the next; null when
    /// that was an encoding.
    [[nodiscard]] ccv_yang_node *nodes() const { return read_; }
    /// The encoding of an entry's nodes, valid until the next call. Throws DataError.
    Encoding encode_nodes(ccv_yang_node &entry, Schema schema);

    [[nodiscard]] const bag_descriptor &descriptor() const { return *plugin_.descriptor; }

  private:
    struct OwnedEncoding {
        std::unique_ptr<std::uint8_t, void (*)(void *)> bytes{nullptr, std::free};
        std::uint32_t length = 0;
        [[nodiscard]] Encoding get() const { return {bytes.get(), length}; }
    };

    EntryReader &reader(Schema schema, Format format);
    EntryWriter &writer(Schema schema, Format format);
    std::uint32_t run_encoder(ccv_yang_node *entry, Schema schema, Encoding stored,
                              OwnedEncoding &encoded) const;
    void write(EntryWriter &target, Encoding encoding, Schema schema, const EntryKey &key,
               std::string &text) const;
    void run_decoder(ccv_yang_output *output, Encoding encoding, Schema schema) const;

    [[nodiscard]] bool bulk(Format format) const {
        return backend_ == Backend::bulk && format == Format::json;
    }

    const Plugin plugin_;
    Modules modules_;
    const Backend backend_;
    std::array<std::unique_ptr<EntryMirror>, 2> mirrors_;
    OwnedEncoding encoded_;
    OwnedEncoding nodes_encoded_;
    ccv_yang_node *read_ = nullptr; // the entry last encoded from text
    std::array<std::unique_ptr<EntryReader>, 4> readers_;
    std::array<std::unique_ptr<EntryWriter>, 4> writers_;
};

} // namespace aceconv
