#include "compare/changes.h"

namespace aceconv {

std::string change_text(const Change &change) {
    std::string text = change.field.empty() ? change.leaf : change.field;
    if (!change.field.empty() && !change.leaf.empty()) {
        text += " (" + change.leaf + ")";
    }
    text += ": " + change.before.value_or("absent") + " -> " + change.after.value_or("absent");
    text += change.reason.empty() ? "" : "; " + change.reason;
    return text + (change.widens ? "; matches more than before" : "");
}

} // namespace aceconv
