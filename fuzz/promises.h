// What holds of any entry, whatever it came from.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "compare/record_view.h"
#include "fuzz/target.h"
#include "stream/codec.h"
#include "stream/output.h"

namespace aceconv::fuzz {

/// Ends the process unless the promise holds; `seen` is shown.
void require(bool holds, const char *promise, std::string_view seen = {});
void require_same(std::string_view one, std::string_view other, const char *promise);

/// One for the whole process.
Codec &codec(Backend backend);
const RecordView &record_view();

inline const std::uint8_t *bytes_of(std::string_view text) {
    return reinterpret_cast<const std::uint8_t *>(text.data());
}
inline std::string_view text_of(Encoding encoding) {
    return {reinterpret_cast<const char *>(encoding.data()), encoding.size()};
}

/// An output that is only looked at.
class Kept : public Taker {
  public:
    void write(std::string_view bytes) override { text += bytes; }
    std::string text;
};

/// As the command tells it. It is one short line that drives no terminal, and its place lies
/// within the `text` it is about.
std::string told(const Entry &entry, const DataError &fault, std::string_view text);

/// The encoding of what was written of the entry, which must be readable.
Bytes read_again(const Entry &entry, Format format, const std::string &text);

/// Both backends take the entry's text, or refuse it, alike; what it is encoded to holds what is
/// promised of any encoding.
void check_text(const Entry &entry);

/// What decodes has a text in each schema that can be read again and says the same but for the
/// losses that are told; what has no text is refused alike by all.
void check_encoding(const Entry &entry);

} // namespace aceconv::fuzz
