// Where chunks of the input end must not matter.
#include <algorithm>
#include <gtest/gtest.h>

#include "stream/errors.h"
#include "stream/node_line.h"
#include "stream/sequence_set.h"
#include "stream/source.h"

namespace aceconv {
namespace {

/// An input that comes in two pieces, then byte by byte after `split`.
Window in_pieces(const std::string &text, std::size_t split) {
    return Window([text, split, at = std::size_t{0}](char *buffer, std::size_t size) mutable {
        const std::size_t piece = at < split ? split - at : 1;
        const std::size_t count = std::min({piece, size, text.size() - at});
        text.copy(buffer, count, at);
        at += count;
        return count;
    });
}

/// Everything that a source tells, as one text.
std::string told_by(const std::string &text, std::size_t split) {
    std::string told;
    Entry entry;
    try {
        const auto source = make_source(in_pieces(text, split), std::nullopt, std::nullopt);
        while (source->next(entry)) {
            told += entry.key.acl.value_or("-") + "@" + std::to_string(entry.position.line) + " " +
                    entry.text + "\n";
        }
    } catch (const DataError &fault) {
        told +=
            "@" + std::to_string(entry.position.line) + " " + fault.path() + ": " + fault.what();
    }
    return told;
}

struct Input {
    const char *text;
    const char *told;
};

const Input chunk_inputs[] = {
    {R"({"aceconv-um:acls" : {"acl":[{"name":"A\"]\\","entry":[ {"remark":"}]\\\"{"} ,
  {"a":[{"b":{}}]}]},
 {"entry":[{}],"name":"B"} , {"name":"C"}]}})",
     "A\"]\\@1 {\"remark\":\"}]\\\\\\\"{\"}\nA\"]\\@2 {\"a\":[{\"b\":{}}]}\nB@3 {}\n"},
    {"\xEF\xBB\xBF{\"aceconv-base:acls\":{}}\n", ""},
    {"{\"aceconv-base:\\u0061cls\":{\"aceconv-base:acl\":[{\"aceconv-base:n\\u0061me\":\"\\u00e9\","
     "\"entry\":[{\"x\":\"\\u005d\"}]}]}}",
     "\xC3\xA9@1 {\"x\":\"\\u005d\"}\n"},
    {"{\"aceconv-base:acls\":{\"acl\":[{\"name\":\"A\",\"entry\":[{}\n{}]}]}}",
     "A@1 {}\n@2 /aceconv-base:acls/acl[name='A']: expected ',' or ']', found '{'"},
    {"{\"aceconv-base:acls\":{\"acl\":[{\"name\":\"A\",\"entry\":[{}",
     "A@1 {}\n@1 /aceconv-base:acls/acl[name='A']: expected ',' or ']', found the end of the "
     "input"},
    {"{\"grant\":\"deny\"}\n\n{\"\\u0061cl\":\"X\",\"entry\":{\"remark\":\"\\\"\"}}\r\n",
     "-@1 {\"grant\":\"deny\"}\nX@3 {\"remark\":\"\\\"\"}\n"},
    {" {\n\"permit\":{}}{\"deny\":{}}", "-@1 {\n\"permit\":{}}\n-@2 {\"deny\":{}}\n"},
    {"<acls xmlns='urn:aceconv:um'>\n<acl><name>A</name>\n<entry><remark>a</remark></entry></acl>"
     "</acls>",
     "A@3 <entry xmlns=\"urn:aceconv:um\"><remark>a</remark></entry>\n"},
};

TEST(Source, ChunksMayEndAnywhere) {
    for (const Input &input : chunk_inputs) {
        const std::string text = input.text;
        for (std::size_t split = 0; split <= text.size(); ++split) {
            ASSERT_EQ(told_by(text, split), input.told) << text << "\nsplit at " << split;
        }
    }
}

TEST(Source, EveryPrefixOfADocumentIsRefused) {
    const std::string text = "{\"aceconv-base:acls\":{\"acl\":[{\"name\":\"A\",\"entry\":[{}]}]}}";
    for (std::size_t length = 1; length < text.size(); ++length) {
        const std::string told = told_by(text.substr(0, length), length);
        EXPECT_NE(told.find(": "), told.npos) << text.substr(0, length);
    }
}

struct Place {
    Format format;
    const char *text;
    const char *path;
    std::uint64_t line;
};

const Place places[] = {
    {Format::xml, "<entry>\n<grant/></entry>", "", 1},
    {Format::xml, "<entry>\n<grant/></entry>", "/remark", 1},
    {Format::xml, "<e:entry>\n<e:tcp>\r\n<e:tcp-bits/></e:tcp></e:entry>", "/tcp/tcp-bits", 3},
    {Format::xml, "<entry><remark>\n</remark><remark/>\n<tcp/></entry>", "/remark", 2},
    {Format::xml, "<entry><tcp><!--\n--><x\n/></tcp><x/></entry>", "/tcp/x", 2},
    {Format::xml, "<entry><u><n>a'</n>\n<x/></u><u>\n<n>b</n><x/></u>\n<u><x/></u></entry>",
     "/u[n='b']/x", 3},
    {Format::xml, "<entry><u><n>a'</n>\n<x/></u><u>\n<n>b</n><x/></u>\n<u><x/></u></entry>",
     "/u[n=\"a'\"]/x", 2},
    {Format::xml, "<entry><u><n>a</n></u>\n<u><n>a</n>\n</u></entry>", "/u[n='a']", 2},
    {Format::xml, "<entry>\n<grant>\n</entry>", "/grant", 2}, // as far as it can be read
};

TEST(LineOfNode, IsThatOfTheLastNodeOfThePath) {
    for (const Place &place : places) {
        EXPECT_EQ(line_of_node(place.text, place.format, place.path), place.line)
            << place.text << '\n'
            << place.path;
    }
}

TEST(SequenceSet, FindsEveryRepetition) {
    // Ascending, with gaps, out of order, and each of them once more.
    const std::uint32_t numbers[] = {10, 20, 30, 40, 41, 42, 100, 35, 5, 4294967295U, 1, 99};
    SequenceSet set;
    for (const std::uint32_t number : numbers) {
        EXPECT_TRUE(set.insert(number)) << number;
    }
    for (const std::uint32_t number : numbers) {
        EXPECT_FALSE(set.insert(number)) << number;
    }
    for (const std::uint32_t number : {11U, 36U, 43U, 98U, 0U}) {
        EXPECT_TRUE(set.insert(number)) << number;
    }
}

} // namespace
} // namespace aceconv
