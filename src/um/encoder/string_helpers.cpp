#include <cstring>

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
    for (char *position = string; *position != '\0'; ++position) {
        if (*position != '-') {
            continue;
        }
        const char *plus = std::strchr(position, '+');
        if (plus == nullptr) {
            *position = '\0';
            break;
        }
        std::memmove(position, plus, std::strlen(plus) + 1);
    }
    const std::size_t length = std::strlen(string);
    if (length != 0 && string[length - 1] == ' ') {
        string[length - 1] = '\0';
    }
}
