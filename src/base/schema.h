// The base schema as one table that both directions interpret, in the decoder's
// order of emission.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "common/leaf.h"

namespace ace::base {

enum class RowKind : std::uint8_t {
    leaf,
    container,
    next_hop_container, // holds containers; the bits for its second and third are derived
    icmp_message,       // its presence bit depends on the value
    ignored,            // accepted by the encoder, never written
};

struct Row {
    RowKind kind;
    Leaf leaf; // of a container its name, and the bits of what it holds
    const Row *children = nullptr;
    std::size_t child_count = 0;

    /// Most rows are plain leaves and stand in the table as such.
    constexpr Row(const Leaf &row_leaf) : kind(RowKind::leaf), leaf(row_leaf) {} // NOLINT
    constexpr Row(RowKind row_kind, const Leaf &row_leaf, std::span<const Row> rows = {})
        : kind(row_kind), leaf(row_leaf), children(rows.data()), child_count(rows.size()) {}

    [[nodiscard]] constexpr std::span<const Row> rows() const { return {children, child_count}; }
};

/// The children of an entry.
extern const std::span<const Row> entry_rows;

} // namespace ace::base
