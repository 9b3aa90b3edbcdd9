#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>

#include "aceconv/host/bounded_append.h"
#include "aceconv/host/debug.h"
#include "host/debug_control.h"

namespace {

/// What the plug-in does at a trace point.
std::string trace(const char *function, const char *argument) {
    testing::internal::CaptureStderr();
    const ipv4_acl_debug_event *event = ipv4_acl_debug_get_dll_event_type(2);
    if (event->enabled != 0 &&
        (*ipv4_acl_get_dll_func_regexec() == 0 ||
         regexec(*ipv4_acl_get_dll_func_regexp(), function, 0, nullptr, 0) == 0)) {
        buginf(event, 0, 1, "%s: unit %s, rc=%d.", function, argument, -844595200);
    }
    return testing::internal::GetCapturedStderr();
}

TEST(Debug, TraceIsSwitchedAndFiltered) {
    constexpr auto police = "acl_yang_police";
    const std::string line = "acl_yang_police: unit pps, rc=-844595200.\n";
    EXPECT_EQ(trace(police, "pps"), "");
    aceconv::enable_trace(std::nullopt);
    EXPECT_EQ(trace(police, "pps"), line);
    aceconv::enable_trace("^acl_yang_(police|udf)$");
    EXPECT_EQ(trace(police, "pps"), line);
    EXPECT_EQ(trace("acl_yang_police2", "pps"), "");
    EXPECT_THROW(aceconv::enable_trace("(police"), std::invalid_argument);
    EXPECT_EQ(trace("acl_yang_udf", "x"), "acl_yang_udf: unit x, rc=-844595200.\n")
        << "a refused filter leaves the former one in place";
    aceconv::enable_trace(std::nullopt);
    EXPECT_NE(trace("acl_yang_police2", "pps"), "");
    aceconv::disable_trace();
    EXPECT_EQ(trace(police, "pps"), "");
    for (const uint32_t other : {0U, 1U, 3U, UINT32_MAX}) {
        EXPECT_EQ(ipv4_acl_debug_get_dll_event_type(other), nullptr);
    }
}

TEST(Debug, LineStaysOneLine) {
    aceconv::enable_trace(std::nullopt);
    EXPECT_EQ(trace("f", "a\nb\x1B[2J"), "f: unit a?b?[2J, rc=-844595200.\n");
    const std::string cut = trace("f", std::string(10000, 'x').c_str());
    EXPECT_EQ(cut.size(), 4096U);
    EXPECT_EQ(cut.substr(4090), "xx...\n");
    aceconv::disable_trace();
}

TEST(BoundedAppend, AppendsWhatFits) {
    const struct {
        size_t size;
        const char *text, *piece;
        size_t room;
        const char *result;
    } cases[] = {
        {8, "", "abc", 8, "abc"},          {8, "ab", "cd", 5, "abcd"},
        {8, "ab", "cdef", 2, "abcd"},      {8, "ab", "cdefghij", 99, "abcdefg"},
        {8, "abcdefg", "h", 1, "abcdefg"}, {8, "ab", "cd", 0, "ab"},
    };
    for (const auto &row : cases) {
        char text[9] = "";
        text[8] = '#';
        std::strcpy(text, row.text);
        __strncat_to_buf(row.size, text, row.piece, row.room);
        EXPECT_STREQ(text, row.result);
        EXPECT_EQ(text[8], '#');
    }
    char full[2] = {'a', 'b'}; // not terminated inside its size
    __strncat_to_buf(2, full, "c", 1);
    EXPECT_EQ(full[1], 'b');
}

} // namespace
