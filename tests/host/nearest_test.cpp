#include "host/nearest.h"

#include <gtest/gtest.h>

namespace aceconv {
namespace {

TEST(Nearest, TakesAThirdOfTheLetters) {
    const std::vector<std::string> names = {"telnet", "tftp", "ftp", "www", "FTP-data"};
    const struct {
        const char *word, *meant;
    } rows[] = {
        {"telnte", "telnet"},    {"tlnt", ""},    {"telntt", "telnet"}, {"tellnett", "telnet"},
        {"ftp", "ftp"},          {"tfp", "tftp"}, {"ww", "www"},        {"vvw", ""},
        {"ftpdate", "FTP-data"}, {"", ""},        {"tel", ""},          {"TELNET", "telnet"},
    };
    for (const auto &[word, meant] : rows) {
        EXPECT_EQ(nearest(word, names), meant) << word;
    }
    EXPECT_EQ(did_you_mean("telnets", names), "; did you mean telnet?");
    EXPECT_EQ(did_you_mean("ssh", names), "");
}

} // namespace
} // namespace aceconv
