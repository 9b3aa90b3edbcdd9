// Signed flag texts: the exported string helpers, stated cases, and every text
// of up to three words against a model that knows words only.
#include <gtest/gtest.h>

#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t no_keyword = 0x4DCB9200;

TEST(StringHelpers, RemoveChar) {
    struct {
        const char *text;
        char character;
        const char *left;
    } const cases[] = {{"a+b+", '+', "ab"}, {"", '+', ""},          {"+++", '+', ""},
                       {"abc", '+', "abc"}, {"+a-+b", '-', "+a+b"}, {" a  b ", ' ', "ab"}};
    for (const auto &test : cases) {
        std::string text = test.text;
        removeChar(text.data(), test.character);
        EXPECT_STREQ(text.c_str(), test.left) << test.text;
    }
}

TEST(StringHelpers, RemoveNonTcpFlag) {
    std::string changes; // 2 MB, which take long where a sign moves all that is behind it
    for (size_t i = 0; i < 1 << 20; ++i) {
        changes += "-+";
    }
    const std::pair<std::string, std::string> cases[] = {
        {changes, std::string(changes.size() / 2, '+')},
        {"+syn -ack ", "+syn"},
        {"-ack", ""},
        {"", ""},
        {" ", ""},
        {"  ", " "},
        {"syn", "syn"},
        {"syn ", "syn"},
        {"-fin -ack +syn", "+syn"},
        {"-ack syn", ""},
        {"+syn -ack +fin -urg", "+syn +fin"},
        {"+syn  ", "+syn "},
        {"-a+b-c+d", "+b+d"},
        {"--+x", "+x"},
        {"-a+-b+c", "++c"},
        {"x-", "x"},
        {"x -", "x"},
        {"-+", "+"},
    };
    for (const auto &[text, left] : cases) {
        std::string changed = text;
        removeNonTcpFlag(changed.data());
        EXPECT_TRUE(changed.c_str() == left) << text.substr(0, 100);
    }
}

struct TextCase {
    const char *text;
    uint32_t status;
    const char *record; // beside operator and bit 20
};

TEST(FlagText, StatedCases) {
    const TextCase cases[] = {
        {"+syn", 0, "tcpflags=2 tcpflags_mask=2 | 21 22"},
        {"+syn -ack", 0, "tcpflags=2 tcpflags_mask=0x12 | 21 22"},
        {"-fin +syn -ack", 0, "tcpflags=2 tcpflags_mask=0x13 | 21 22"},
        {"syn ack", 0, "tcpflags=0x12 tcpflags_mask=0x12 | 21 22"},
        {"-ack syn", 0, "tcpflags_mask=0x12 | 22"},
        {"-ack", 0, "tcpflags_mask=0x10 | 22"},
        {"", 0, "|"},
        {"   ", 0, "|"},
        {"+", 0, "|"},
        {"-", 0, "|"},
        {"+syn  +ack", 0, "tcpflags=0x12 tcpflags_mask=0x12 | 21 22"},
        {"+urg +ack +psh +rst +syn +fin", 0, "tcpflags=0x3F tcpflags_mask=0x3F | 21 22"},
        {"s+yn", 0, "tcpflags=2 tcpflags_mask=2 | 21 22"}, // signs go wherever they stand
        {"+syn,+ack", no_keyword, ""},
        {"+SYN", no_keyword, ""},
        {"+syn\t+ack", no_keyword, ""},
        {"+syn +syn", no_keyword, ""},
        {"+syn -syn", no_keyword, ""},
        {"-syn -syn", no_keyword, ""},
        {"-other", no_keyword, ""},
        {"+syn+ack", no_keyword, ""},
        {"+sy", no_keyword, ""},
        {"+synn", no_keyword, ""},
    };
    for (const auto &[match, code] : {std::pair("match-all", "1"), std::pair("match-any", "3")}) {
        for (const TextCase &test : cases) {
            Host host;
            EXPECT_EQ(host.encode(Schema::um, "deny{tcp-flags{" + std::string(match) +
                                                  "{tcp-bits='" + test.text + "'}}}"),
                      test.status)
                << test.text;
            const std::string record =
                test.status != 0
                    ? ""
                    : canonical("tcpflagsopr=" + std::string(code) + " " + test.record + " 0 20");
            EXPECT_EQ(host.encoded, record) << test.text;
            EXPECT_EQ(host.leaks(), 0U) << test.text;
            EXPECT_TRUE(host.faults.empty()) << test.text;
        }
    }
}

struct Word {
    char sign; // '+', '-' or 0
    int flag;  // 0 to 5, 6 an unknown word, 7 no word behind the sign
};

struct Meaning {
    const char *failing; // the pass that fails, or null
    unsigned flags, mask;
};

// Of a list of words: "-" withdraws words until the next "+"; within a pass no
// flag may come twice.
Meaning meaning(const std::vector<Word> &words) {
    Meaning result{nullptr, 0, 0};
    bool withdrawn = false;
    for (const Word &word : words) {
        withdrawn = word.sign == '-' || (withdrawn && word.sign != '+');
        if (withdrawn || word.flag == 7) {
            continue;
        }
        if (word.flag == 6 || (result.flags >> word.flag & 1U) != 0) {
            return {"flags_um", 0, 0};
        }
        result.flags |= 1U << word.flag;
    }
    for (const Word &word : words) {
        if (word.flag == 7) {
            continue;
        }
        if (word.flag == 6 || (result.mask >> word.flag & 1U) != 0) {
            return {"flags_mask_um", 0, 0};
        }
        result.mask |= 1U << word.flag;
    }
    return result;
}

std::string text_of(const std::vector<Word> &words, const char *gap) {
    static const char *const names[] = {"fin", "syn", "rst", "psh", "ack", "urg", "ece", ""};
    std::string text;
    for (const Word &word : words) {
        text += (text.empty() ? "" : gap) + std::string(word.sign != 0 ? 1 : 0, word.sign) +
                names[word.flag];
    }
    return text;
}

void check(const std::vector<Word> &words, const char *before, const char *gap, const char *after) {
    const std::string text = before + text_of(words, gap) + after;
    const Meaning expected = meaning(words);
    Host host;
    host.event = Event::on;
    const uint32_t status = host.encode(
        Schema::um,
        Node{"entry",
             "",
             {{"permit", "", {{"tcp-flags", "", {{"match-all", "", {{"tcp-bits", text, {}}}}}}}}}});
    ASSERT_EQ(status, expected.failing != nullptr ? no_keyword : 0) << text;
    ASSERT_EQ(host.traces.size(), expected.failing != nullptr ? 1U : 0U) << text;
    if (expected.failing != nullptr) {
        ASSERT_NE(host.traces[0].find(std::string("tcp") + expected.failing + " returned"),
                  std::string::npos)
            << text << ": " << host.traces[0];
        return;
    }
    ASSERT_EQ(host.encoded,
              canonical("grant=1 tcpflagsopr=1 tcpflags=" + std::to_string(expected.flags) +
                        " tcpflags_mask=" + std::to_string(expected.mask) + " | 0 20" +
                        (expected.flags != 0 ? " 21" : "") + (expected.mask != 0 ? " 22" : "")))
        << text;
}

TEST(ExhaustiveFlagText, UpToThreeWords) {
    std::vector<Word> all;
    for (const char sign : {'\0', '+', '-'}) {
        for (int flag = 0; flag < (sign == '\0' ? 7 : 8); ++flag) {
            all.push_back({sign, flag});
        }
    }
    size_t number = 0;
    for (const Word &first : all) {
        check({first}, "", " ", "");
        check({first}, "  ", " ", "   ");
        for (const Word &second : all) {
            check({first, second}, "", " ", "");
            check({first, second}, " ", "   ", " ");
            for (const Word &third : all) {
                check({first, second, third}, "", number % 2 == 0 ? " " : "  ",
                      number % 3 == 0 ? " " : "");
                ++number;
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

} // namespace
} // namespace aceconv::test
