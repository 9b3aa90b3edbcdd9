// Compile-time guards over the tables of the UM schema.
#pragma once

#include <bit>

#include "common/leaf_guards.h"
#include "um/schema.h"

namespace ace::um::guard {

using namespace ace::guard;

/// Leaves are well formed, names are unique in their level, and a bit marks one
/// field, however many leaves that field has.
class Tables {
  public:
    Bits used;

    constexpr bool hold(Rows rows) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (same_text(rows[i].leaf.name, rows[j].leaf.name)) {
                    return false;
                }
            }
            if (!holds(rows[i])) {
                return false;
            }
        }
        return true;
    }

    constexpr bool holds(const Leaf &leaf) {
        return well_formed(leaf) && mark(leaf.bit, leaf.field);
    }

  private:
    Field marked_[128] = {};

    constexpr bool mark(Bits bits, Field field) {
        if (std::popcount(bits.first) + std::popcount(bits.second) != 1) {
            return false;
        }
        const bool again = ((used.first & bits.first) | (used.second & bits.second)) != 0;
        Field &marked = marked_[bits.first != 0 ? std::countr_zero(bits.first)
                                                : 64 + std::countr_zero(bits.second)];
        const bool agrees = !again || marked.offset == field.offset;
        marked = field;
        used = used | bits;
        return agrees;
    }

    constexpr bool holds(const OperatorGroup &group) {
        return group.code.width == 1 && mark(group.code_bit, group.code) && holds(group.first) &&
               holds(group.second) && group.first.field.width == group.second.field.width;
    }

    constexpr bool holds(const Row &row) {
        switch (row.kind) {
        case Kind::leaf:
            return holds(row.leaf);
        case Kind::presence:
            return row.leaf.read == Read::none || holds(row.leaf);
        case Kind::action:
            return holds(row.leaf) && hold(row.rows());
        case Kind::rate_unit:
            return row.leaf.field.width == sizeof(std::uint32_t) && row.unit != nullptr &&
                   mark(row.leaf.bit, row.leaf.field);
        case Kind::form:
        case Kind::operator_group:
            return holds(*row.group);
        case Kind::next_hop:
        case Kind::first_next_hop:
            return row.child_count == next_hop_emission.size() && hold(row.rows());
        default:
            return hold(row.rows());
        }
    }
};

} // namespace ace::um::guard
