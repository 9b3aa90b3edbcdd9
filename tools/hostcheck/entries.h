// What the host is given and has to show: entries of both schemas, as rows.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "aceconv/hostcheck.h"

namespace aceconv::hostcheck {

enum class Kind : std::uint8_t {
    container,
    presence, // a container that is marked as one
    list,
    list_entry,
    u8,
    u16,
    u32,
    keyword,
    keyword_or_number,
    named_number, // read as a keyword or a number, written as a number
    bits,
    boolean,
    address,
    string,
    empty,
    key, // the entry's own, which hosts may insist on; encoders pass over it
};

struct Row {
    std::uint32_t depth;
    Kind kind;
    const char *name;
    const char *value = nullptr;
    const ccv_yang_keyword *table = nullptr;
};
using Rows = std::span<const Row>;

/// In the order in which the decoders write them.
struct Entry {
    const char *name;
    hostcheck_schema schema;
    Rows rows;
};
extern const std::span<const Entry> entries;

inline constexpr Row sequence_number{0, Kind::key, "sequence-number", "10"};

/// What decoders write: all but the key.
inline Rows written(Rows rows) {
    return !rows.empty() && rows.front().kind == Kind::key ? rows.subspan(1) : rows;
}

inline bool is_leaf(const Row &row) {
    return row.kind >= Kind::u8;
}

/// The number that the reader of the row's kind gives: of a keyword its value, of bits
/// their set. Not for addresses and strings.
std::uint32_t number_of(const Row &row);
/// What the decoders make of the value.
std::string written(const Row &row);
/// "name" "value", for words.
std::string quoted(const Row &row);

/// With the row that ends them; what they point at stays the rows'.
std::vector<hostcheck_row> for_host(Rows rows);
/// The places of the rows one level below `parent`; without one, of the entry's children.
std::vector<std::size_t> children(Rows rows, const std::size_t *parent);

} // namespace aceconv::hostcheck
