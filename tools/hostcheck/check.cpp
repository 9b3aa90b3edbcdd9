#include "tools/hostcheck/check.h"

#include <cstdio>
#include <unistd.h>

namespace aceconv::hostcheck {

void Check::broken(const char *function, const std::string &words) {
    std::string text = std::string(function) + " " + words;
    if (place().place[0] != '\0') {
        text += std::string(" (") + place().place.data() + ")";
    }
    for (char &character : text) { // data of a broken host does not drive a terminal
        character = character < ' ' || character > '~' ? '?' : character;
    }
    if (own_ != nullptr) {
        text = "with several threads " + text;
    }
    note(notes_->broken, text);
    _exit(1);
}

void Check::expect_success(std::uint32_t status) {
    if (status != 0) {
        std::array<char, 64> words;
        std::snprintf(words.data(), words.size(), "fails with 0x%X where nothing is wrong", status);
        broken(words.data());
    }
}

} // namespace aceconv::hostcheck
