#include "aceconv/plugin.h"

void removeChar(char *string, char character) noexcept {
    char *kept = string;
    for (const char *next = string; *next != '\0'; ++next) {
        if (*next != character) {
            *kept++ = *next;
        }
    }
    *kept = '\0';
}

void removeNonTcpFlag(char *string) noexcept {
    char *kept = string;
    bool withdrawn = false; // from a minus to the next plus
    for (const char *next = string; *next != '\0'; ++next) {
        withdrawn = *next == '-' || (withdrawn && *next != '+');
        if (!withdrawn) {
            *kept++ = *next;
        }
    }
    if (kept != string && kept[-1] == ' ') {
        --kept;
    }
    *kept = '\0';
}
