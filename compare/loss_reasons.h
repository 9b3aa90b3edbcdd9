// Why a field of a record does not come back from the text that was made of it.
#pragma once

#include <string>
#include <vector>

#include "compare/record_view.h"

namespace aceconv {

struct LossReason {
    std::string text;
    bool widens = false; // the entry matches more than before
};

/// Why the record of a text in `to` differs so from `before`, the one that the text
/// was made of.
LossReason loss_reason(const Difference &lost, const std::vector<FieldValue> &before, Schema to);

/// What loss_reason says where no reason is known.
extern const char *const unexplained;

} // namespace aceconv
