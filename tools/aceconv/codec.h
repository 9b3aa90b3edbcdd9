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

/// Everything that conversions need; one for each thread.
class Codec {
  public:
    /// Throws IoError when the YANG modules cannot be loaded.
    Codec(const Plugin &plugin, const std::filesystem::path &modules, Backend backend);

    /// The entry's encoding, which is `entry.encoding` where it came as one. Fills
    /// in the sequence number in `entry.key`. `stored` is the entry's earlier
    /// encoding or null. Throws DataError.
    Bytes encode(Entry &entry, const Bytes *stored = nullptr);

    /// The text of an entry on one line. Throws DataError.
    std::string decode(const Bytes &encoding, Schema schema, Format format, const EntryKey &key);

    [[nodiscard]] const bag_descriptor &descriptor() const { return *plugin_.descriptor; }

  private:
    EntryReader &reader(Schema schema, Format format);
    EntryWriter &writer(Schema schema, Format format);

    [[nodiscard]] bool bulk(Format format) const {
        return backend_ == Backend::bulk && format == Format::json;
    }

    Plugin plugin_;
    Modules modules_;
    Backend backend_;
    std::array<std::unique_ptr<EntryReader>, 4> readers_;
    std::array<std::unique_ptr<EntryWriter>, 4> writers_;
};

} // namespace aceconv::tool
