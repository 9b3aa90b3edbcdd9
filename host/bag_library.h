// What the reference bag library offers beside the functions of
// aceconv/host/bag.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "aceconv/host/bag.h"
#include "host/cbor_head.h"

namespace aceconv {

// In this host the two output arguments of bag_encode_v3, and so of the encoders,
// are `uint8_t **encoded` and `uint32_t *length`. On success *encoded is a new
// block from malloc, which the caller frees; on failure neither is written.

/// Status codes of the reference bag library.
enum class BagStatus : std::uint32_t {
    ok = 0,
    not_registered = 0xBA600001, // no such type, or no registration open
    bad_description,             // description and layout do not agree
    truncated,                   // the encoding ends early
    malformed,                   // not the deterministic form, or not of this shape
    mismatch,                    // another type, version or layout
    too_large,                   // a string, array or encoding beyond its limit
    no_memory,
};

/// Like bag_decode, but what the record points to lies in `room` and is not to be released: for
/// records that are only looked at.
std::uint32_t bag_decode_lent(std::span<const std::uint8_t> encoded, void *record,
                              const bag_descriptor *descriptor, std::pmr::memory_resource &room);

/// What the last failing bag call of this thread found, with the byte offset in
/// the encoding where there is one; empty after a success.
std::string bag_last_error();

/// Throws what the last failing bag call of this thread, which returned `status`, was refused
/// for: std::bad_alloc or DataError.
[[noreturn]] void throw_bag_failure(std::uint32_t status);

/// The length of the first CBOR item of `bytes`, or nothing when it is cut off
/// or malformed. Items of a CBOR sequence (RFC 8742) follow each other directly.
std::optional<std::size_t> cbor_item_length(std::span<const std::uint8_t> bytes);

/// The same of an item whose bytes come little by little; each is looked at once.
class CborItemEnd {
  public:
    /// `bytes` begin with those of earlier calls, for none of which there was a length.
    std::optional<std::size_t> length(std::span<const std::uint8_t> bytes);

  private:
    /// An item of indefinite length that is open.
    struct OpenItem {
        std::uint64_t owed; // items still to come of the array or map around it
        std::uint8_t head;
        bool odd = false; // in number, its elements so far

        [[nodiscard]] bool takes(std::uint8_t first) const;
        [[nodiscard]] bool may_end() const;
    };

    std::size_t at_ = 0;
    std::uint64_t owed_ = 1; // items still to come of the innermost array or map
    std::vector<OpenItem> open_;
};

/// One member of a described record, for those who show records.
struct BagMember {
    std::string name;   // nested members as "Police.PoliceUnit"
    std::string type;   // as in the long description, for instance "I" or "17x"
    std::size_t offset; // bytes from the record's start
    std::size_t width;  // bytes
};

/// The members of a registered or registrable descriptor in description order;
/// a counted array is one member. Throws DataError when the description and the
/// layout do not agree.
std::vector<BagMember> bag_members(const bag_descriptor &descriptor);

/// A part of an encoding: one item, or the two of a member, its index and its value. Of arrays
/// and maps it is the head; what they hold are parts of their own behind it.
struct BagPart {
    enum class What : std::uint8_t { array, type_name, fingerprint, members, member, element };
    What what;
    unsigned depth;     // of arrays and maps around it
    std::size_t offset; // bytes from the encoding's start
    std::size_t size;   // bytes
    // Of a member: its index and name as bag_members has it, in an element as the element's type
    // has it; how many bytes the index takes.
    std::uint64_t index = 0;
    std::string member = {};
    std::size_t index_size = 0;
    CborKind kind;       // of the item, or of the member's value
    std::uint64_t value; // a number, or how many bytes, elements or pairs it has
};

/// The parts of a good encoding, in order. Throws DataError for any other.
std::vector<BagPart> bag_parts(const bag_descriptor &descriptor,
                               std::span<const std::uint8_t> encoding);

/// The digest of type name, both descriptions and the layout that encodings carry, in hex.
std::string bag_fingerprint(const bag_descriptor &descriptor);

} // namespace aceconv
