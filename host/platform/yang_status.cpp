#include "host/platform/yang_status.h"

#include <cstdio>

#include "aceconv/plugin.h"
#include "host/entry.h"

namespace aceconv {

namespace {

struct Sentence {
    std::uint32_t status;
    const char *text;
};

constexpr Sentence sentences[] = {
    {code(YangStatus::wrong_type), "the value is not of the type that is read here"},
    {code(YangStatus::out_of_range), "the number is out of range"},
    {code(YangStatus::no_keyword), "the value is not among the known names"},
    {code(YangStatus::no_memory), "out of memory"},
    {code(YangStatus::bad_text),
     "the text is missing or holds characters that YANG does not allow"},
    {code(YangStatus::unknown_node), "unknown node"},
    {code(YangStatus::repeated), "the node is given more than once"},
    {code(YangStatus::misplaced), "the node does not belong here"},
    {code(YangStatus::refused), "the module does not allow the value"},
    {ACE_STATUS_UNKNOWN_LEAF, "unknown node"},
    {ACE_STATUS_NO_MEMORY, "out of memory"},
    {ACE_STATUS_NO_KEYWORD, "unknown or repeated flag name"},
    {ACE_STATUS_UNKNOWN_UNIT, "unknown rate unit"},
    {ACE_STATUS_NO_SPACE, "more than there is room for"},
};

} // namespace

const char *known_status(std::uint32_t status) {
    for (const Sentence &sentence : sentences) {
        if (sentence.status == status) {
            return sentence.text;
        }
    }
    return nullptr;
}

bool is_want_of_memory(std::uint32_t status) {
    return status == code(YangStatus::no_memory) || status == ACE_STATUS_NO_MEMORY;
}

std::string status_text(std::uint32_t status) {
    if (const char *known = known_status(status); known != nullptr) {
        return known;
    }
    char text[48];
    (void)std::snprintf(text, sizeof text, "the conversion failed with status 0x%08X", status);
    return text;
}

} // namespace aceconv
