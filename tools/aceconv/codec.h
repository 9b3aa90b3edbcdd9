// One entry through the plug-in, in either direction.
#pragma once

#include <array>
#include <filesystem>
#include <memory>

#include "host/plugin.h"
#include "host/yang/entry.h"
#include "tools/aceconv/source.h"

namespace aceconv::tool {

/// Which of the host's backends reads and writes JSON; XML is always libyang's.
enum class Backend { bulk, validating };

/// What codecs are made of.
struct CodecSetup {
    Plugin plugin;
    std::filesystem::path modules; // their folder
    Backend backend;
};

/// Everything that conversions need; one for each thread.
class Codec {
  public:
    /// Throws IoError when the YANG modules cannot be loaded.
    explicit Codec(const CodecSetup &setup);

    /// The entry's encoding, which is `entry.encoding` where it came as one; valid
    /// until the next call. Fills in the sequence number in `entry.key`. `stored`
    /// is the entry's earlier encoding or empty. Throws DataError.
    Encoding encode(Entry &entry, Encoding stored = {});

    /// Appends the text of an entry, on one line. Throws DataError.
    void decode(Encoding encoding, Schema schema, Format format, const EntryKey &key,
                std::string &text);

    [[nodiscard]] const bag_descriptor &descriptor() const { return *plugin_.descriptor; }

  private:
    EntryReader &reader(Schema schema, Format format);
    EntryWriter &writer(Schema schema, Format format);

    [[nodiscard]] bool bulk(Format format) const {
        return backend_ == Backend::bulk && format == Format::json;
    }

    const Plugin plugin_;
    Modules modules_;
    const Backend backend_;
    std::unique_ptr<std::uint8_t, void (*)(void *)> encoded_;
    std::array<std::unique_ptr<EntryReader>, 4> readers_;
    std::array<std::unique_ptr<EntryWriter>, 4> writers_;
};

} // namespace aceconv::tool
