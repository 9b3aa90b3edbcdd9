// A descriptor made ready for use: flat tables of members that encoder, decoder
// and release walk. Built once, at registration, and constant from then on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "aceconv/host/bag.h"

namespace aceconv {

/// Part of the fingerprint: goes up with every change of the encoding's rules.
constexpr std::uint64_t format_version = 1;

// Limits, the same for both directions.
constexpr std::size_t max_string_bytes = std::size_t{64} * 1024;
constexpr std::size_t max_elements = 4096;
constexpr std::size_t max_encoding_bytes = std::size_t{16} * 1024 * 1024;
// Limits of descriptions.
constexpr std::size_t max_types = 16; // bounds how deep encodings nest
constexpr std::size_t max_members = 256;
constexpr std::size_t max_type_bytes = std::size_t{64} * 1024;

/// What the encoder looks at together: zero words hold no member that is set.
constexpr std::size_t word_bytes = 8;
constexpr std::uint16_t no_member = 0xFFFF;

/// Where a counted array keeps its element pointer, from its 32-bit count.
constexpr std::size_t elements_pointer = 8;

enum class MemberKind : std::uint8_t {
    u8,
    u16,
    u32,
    u64,
    address, // 4 bytes in network byte order
    string,  // from here on, no numbers
    array,
    bytes,
    record
};

struct RecordType;

struct Member {
    MemberKind kind;
    std::uint32_t offset;
    std::uint32_t width;
    const RecordType *type; // of a sub-record or of an array's elements, else null
    std::uint64_t largest;  // of a number, else 0
};

/// Where a record keeps the address of a heap block that it owns.
struct OwnedBlock {
    std::size_t address;       // offset of the pointer
    std::size_t count;         // of an array: offset of its 32-bit count
    const RecordType *element; // of an array, else null
};

struct RecordType {
    std::size_t size = 0;
    std::size_t alignment = 1;
    std::vector<Member> members; // in description order: the index is the map key
    // A byte for a byte of the record, up to a whole word: the member that is set when
    // this byte is not zero.
    std::vector<std::uint16_t> deciding;
    std::vector<OwnedBlock> blocks;     // also those of sub-records
    std::vector<std::string> names;     // parallel to members
    std::vector<std::string> spellings; // parallel to members: the type's text
};

} // namespace aceconv

struct bag_definition {
    std::vector<aceconv::RecordType> types; // the record first; members point into it
    std::string type_name;
    std::uint64_t fingerprint = 0;
    std::vector<std::uint8_t> head; // what every encoding starts with, up to the map
};

namespace aceconv {

/// Parses the descriptions and checks them against each other and the layout.
/// Throws DataError when they do not agree.
std::unique_ptr<bag_definition> compile_descriptor(const bag_descriptor &descriptor);

/// Releases what a record of `type` owns and clears the pointers.
void release_blocks(const RecordType &type, std::uint8_t *record) noexcept;

/// The registered definition of a descriptor, or null. Takes no lock.
bag_definition *find_definition(const bag_descriptor *descriptor) noexcept;

std::string fingerprint_text(std::uint64_t fingerprint);

} // namespace aceconv
