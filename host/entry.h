// Access-list entries as YANG data: reading one entry's text into a tree that a
// converter can walk, and writing the tree that a converter emits.
//
// Two backends stand behind the ccv_yang_* functions; both implement this
// interface. A reader, a writer and their modules belong to one thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "aceconv/host/yang_access.h"
#include "host/error.h"

namespace aceconv {

enum class Schema { base, um };
enum class Format { json, xml };

/// The longest entry, as text or as an encoding, in bytes.
constexpr std::size_t max_entry_bytes = std::size_t{1} << 20;
/// The most members or elements in one entry's text.
constexpr std::size_t max_entry_nodes = 4096;

/// The most objects and arrays, or XML elements, that stand within each other.
constexpr std::size_t max_levels = 256;

/// Where an entry stands: the name of its access list and its sequence number,
/// as far as they are known. Converters carry neither.
struct EntryKey {
    std::optional<std::string> acl;
    std::optional<std::uint32_t> sequence;

    bool operator==(const EntryKey &) const = default;
};

/// The two YANG modules, loaded and compiled.
class Modules {
  public:
    /// Loads both modules from `directory`; throws DataError.
    explicit Modules(const std::string &directory);
    ~Modules();
    Modules(Modules &&) noexcept;
    Modules &operator=(Modules &&) noexcept;

    struct Context;
    [[nodiscard]] Context &context() const { return *context_; }

  private:
    std::unique_ptr<Context> context_;
};

class EntryReader {
  public:
    virtual ~EntryReader() = default;

    /// Parses the text of one entry: a JSON object of the entry's members
    /// (RFC 7951; names with or without the module's prefix) or an XML element
    /// <entry>. Unknown and repeated nodes, wrong types, values out of range and
    /// bad UTF-8 throw DataError with the node's path; `where` completes the
    /// path and supplies what the text leaves out. The node stays valid until
    /// the next read.
    virtual ccv_yang_node *read(std::string_view text, const EntryKey &where) = 0;

    /// Names texts that are read next, in this order; others may be read between them. They
    /// stay as and where they are until they have been read or others are named. It saves
    /// time to look at them together, and changes nothing else. Ends the node's validity.
    virtual void look_ahead(std::span<const std::string_view> texts) { (void)texts; }

    /// The sequence number of the entry last read, from its text or `where`.
    [[nodiscard]] virtual std::optional<std::uint32_t> sequence() const = 0;

    /// Why a converter returned `status` for the entry last read: the path of
    /// the node that it looked at last and what was expected there.
    [[nodiscard]] virtual DataError explain(std::uint32_t status) const = 0;
};

class EntryWriter {
  public:
    virtual ~EntryWriter() = default;

    /// Starts an entry; the handle stays valid until finish or the next begin.
    /// `sequence` becomes the entry's first leaf when it is given.
    virtual ccv_yang_output *begin(const EntryKey &where) = 0;

    /// Appends the entry's text to `text`, on one line: a JSON object or an XML
    /// element <entry>. Throws DataError when an emitter call could not write
    /// what it was given (a value without a keyword, an invalid string, a null
    /// string) or containers were left open.
    virtual void finish(std::string &text) = 0;
};

/// Takes what a decoder emits as nodes instead of text.
class EntryMirror {
  public:
    virtual ~EntryMirror() = default;

    /// Like EntryWriter's.
    virtual ccv_yang_output *begin(const EntryKey &where) = 0;
    /// The nodes as a reader would make them of the text, but for the sequence number,
    /// which may be missing; valid until the next begin. Throws what EntryWriter::finish throws.
    virtual ccv_yang_node &finish() = 0;
};
std::unique_ptr<EntryMirror> make_mirror(Modules &modules, Schema schema);

/// The validating backend, on libyang.
std::unique_ptr<EntryReader> make_validating_reader(Modules &modules, Schema schema, Format format);
std::unique_ptr<EntryWriter> make_validating_writer(Modules &modules, Schema schema, Format format);

/// The bulk backend for JSON, on simdjson: accepts and refuses what the validating
/// backend does, with the same messages, and reads and writes the same values.
std::unique_ptr<EntryReader> make_bulk_reader(Modules &modules, Schema schema);
std::unique_ptr<EntryWriter> make_bulk_writer(Modules &modules, Schema schema);

/// Whether a converter returned `status` for want of memory.
bool is_want_of_memory(std::uint32_t status);

/// "aceconv-base" or "aceconv-um", and the module's namespace.
std::string_view module_name(Schema schema);
std::string_view module_namespace(Schema schema);

} // namespace aceconv
