// Where chunks of the input end must not matter.
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <random>

#include "stream/errors.h"
#include "stream/node_line.h"
#include "stream/sequence_numbers.h"
#include "stream/source.h"

namespace aceconv {
namespace {

/// How an input comes: in two pieces, then byte by byte after `split`. Once it may,
/// it pauses before each of them.
struct Pieces {
    std::string text;
    std::size_t split;
    bool may_pause = false;
    bool paused = false;
    std::size_t at = 0;

    std::size_t operator()(char *buffer, std::size_t size) {
        paused = may_pause && !paused;
        if (paused) {
            throw InputPauses();
        }
        const std::size_t piece = at < split ? split - at : 1;
        const std::size_t count = std::min({piece, size, text.size() - at});
        text.copy(buffer, count, at);
        at += count;
        return count;
    }
};

/// Everything that a source tells, as one text.
std::string told_by(const std::string &text, std::size_t split, bool pauses = false,
                    std::optional<InputFormat> format = std::nullopt) {
    std::string told;
    Entry entry;
    Pieces pieces{text, split};
    const auto read = [&pieces](char *buffer, std::size_t size) { return pieces(buffer, size); };
    try {
        const auto source =
            make_source(Window(read), format, std::nullopt, OtherModules::stepped_over);
        pieces.may_pause = pauses;
        for (;;) {
            try {
                if (!source->next(entry)) {
                    break;
                }
            } catch (const InputPauses &) {
                continue;
            }
            told += entry.key.acl.value_or("-") + "@" + std::to_string(entry.position.line) + " " +
                    (entry.format ? entry.text : std::to_string(entry.encoding.size())) + "\n";
        }
    } catch (const DataError &fault) {
        told +=
            "@" + std::to_string(entry.position.line) + " " + fault.path() + ": " + fault.what();
    }
    return told;
}

using namespace std::string_literals;

struct Input {
    std::string text;
    const char *told;
    std::optional<InputFormat> format = std::nullopt;
};

const Input chunk_inputs[] = {
    {R"({"aceconv-um:acls" : {"acl":[{"name":"A\"]\\","entry":[ {"remark":"}]\\\"{"} ,
  {"a":[{"b":{}}]}]},
 {"entry":[{}],"name":"B"} , {"name":"C"}]}})",
     "A\"]\\@1 {\"remark\":\"}]\\\\\\\"{\"}\nA\"]\\@2 {\"a\":[{\"b\":{}}]}\nB@3 {}\n"},
    {"\xEF\xBB\xBF{\"aceconv-base:acls\":{}}\n", ""},
    // Documents one after the other, with other modules beside the lists.
    {R"({"i:a":["]\"}",{}],"ietf-restconf:data":{"aceconv-um:acls":{"acl":[{"name":"A","entry":[
{}]}]} , "j:b":-1,"k:c":"\\\"}" } }{"aceconv-base:acl":[{"name":"A"}]}
{"aceconv-um:entry":[{} , {"b":0}]})",
     "A@2 {}\n-@3 {}\n-@3 {\"b\":0}\n"},
    {"<acls xmlns='urn:aceconv:um'><acl><name>A</name>\n<entry/></acl></acls><!-- -->\n<?xml "
     "version='1.0'?><acl xmlns='urn:aceconv:base'><entry>\n</entry><name>A</name></acl><i:j "
     "xmlns:i='k'>\n<l>m<n/></l></i:j><o",
     "A@2 <entry xmlns=\"urn:aceconv:um\"/>\nA@3 <entry "
     "xmlns=\"urn:aceconv:base\">\n</entry>\n@5 : not well-formed XML: unclosed token"},
    {"<acls xmlns='urn:aceconv:um'/>]]>]]>\n \n<?xml version='1.0'?><acls "
     "xmlns='urn:aceconv:um'><acl><name>A</name><entry/></acl></acls>\n]]>]]>\n<entry "
     "xmlns='urn:aceconv:um'/>]]>]]> \n",
     "A@3 <entry xmlns=\"urn:aceconv:um\"/>\n-@5 <entry xmlns='urn:aceconv:um'/>\n"},
    {"<acls xmlns='urn:aceconv:um'/>]]>]]>\n]]>]", "@2 : not well-formed XML: syntax error"},
    {"<acls xmlns='urn:aceconv:um'><acl><name>A</name>\n<entry><a></a\xF1></c>",
     "@2 : not well-formed XML: unexpected character"},
    // Nothing is taken for another encoding than what it begins with.
    {"<!-- --> \0<\0a\0/\0>\0"s, "@1 : not well-formed XML: unexpected character"},
    {"<!-- -->\xEF\xBB\xBF<acls xmlns='urn:aceconv:um'/>",
     "@1 : not well-formed XML: unexpected character"},
    {"\xEF\xBB\xBF\xE0\0\ba"s, "@1 : not well-formed XML: unexpected character", InputFormat::xml},
    {"<\0a\0/\0>\0"s, "@0 : the encoding UTF-16; expected UTF-8"},
    {"\xFF\xFE{\0}\0"s, "@0 : the encoding UTF-16; expected UTF-8"},
    {"83\n7\n", "@2 : column 2: the line ends inside of a byte, which is two digits",
     InputFormat::hex},
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
    {"\n{\"permit\":{}}\n \n{\"acl\":\"X\",\"entry\":{}} \n", "-@2 {\"permit\":{}}\nX@4 {}\n",
     InputFormat::ndjson},
    {"{\"remark\":\"r\"}\nx\n{\"deny\":{}}\n",
     "-@1 {\"remark\":\"r\"}\n@2 : expected a JSON object, found 'x'", InputFormat::ndjson},
    {" {\n\"permit\":{}}{\"deny\":{}}", "-@1 {\n\"permit\":{}}\n-@2 {\"deny\":{}}\n"},
    {"<acls xmlns='urn:aceconv:um'>\n<acl><name>A</name>\n<entry><remark>a</remark></entry></acl>"
     "</acls>",
     "A@3 <entry xmlns=\"urn:aceconv:um\"><remark>a</remark></entry>\n"},
    // As it is written, with what is declared around it and may be used.
    {"<a:acls xmlns:a='urn:aceconv:um' xmlns:b='v' xmlns:c='w' xmlns='urn:x'>"
     "<a:acl xmlns:b='\"&amp;'>\r\n"
     "<a:entry\txmlns='u'><b:n/><![CDATA[]]]]>&#13;\r\n<!---->\xC3\xA9</a:entry >\n<a:entry/>"
     "<a:name>N&amp;<!--\n-->M</a:name><a:entry "
     "/></a:acl><a:acl><a:name>O</a:name></a:acl></a:acls>",
     "N&M@2 <a:entry xmlns:a=\"urn:aceconv:um\" xmlns:b=\"&quot;&amp;\"\txmlns='u'>"
     "<b:n/><![CDATA[]]]]>&#13;\r\n<!---->\xC3\xA9</a:entry >\n"
     "N&M@4 <a:entry xmlns:a=\"urn:aceconv:um\" xmlns=\"urn:x\"/>\n"
     "N&M@5 <a:entry xmlns:a=\"urn:aceconv:um\" xmlns=\"urn:x\" />\n"},
    {"<b:entry xmlns:b='urn:aceconv:base'\n><b:entry/></b:entry>\n<!-- -->",
     "-@1 <b:entry xmlns=\"\" xmlns:b='urn:aceconv:base'\n><b:entry/></b:entry>\n"},
    {"<acls xmlns='urn:aceconv:um'><acl><name>A</name><entry/>\n<x/></acl></acls>",
     "A@1 <entry xmlns=\"urn:aceconv:um\"/>\n@2 /aceconv-um:acls/acl[name='A']: unknown element "
     "'x'"},
    {"\x83\x61X\x0A\x62um\xC6\x80\x9F\x01\xFF\x82\x61Y\xF6\xA1\x01\x02\x82\x61Z\x01",
     "X@0 2\n-@0 3\nY@0 3\n@0 : a label without an encoding behind it"},
    {"8371\x90", "@0 : expected a JSON object, XML or encodings, found '8371\\x90'; --from-format "
                 "hex or base64 "
                 "takes it for encodings"},
    {"\x82\x61X\x0A\x80\x9F\x1C", "X@0 1\n@0 : the encoding at byte 5 is cut off or malformed"},
};

TEST(Source, ChunksMayEndAnywhere) {
    for (const Input &input : chunk_inputs) {
        const std::string &text = input.text;
        for (std::size_t split = 0; split <= text.size(); ++split) {
            for (const bool pauses : {false, true}) {
                ASSERT_EQ(told_by(text, split, pauses, input.format), input.told)
                    << text << "\nsplit at " << split << (pauses ? ", with pauses" : "");
            }
        }
    }
}

// Byte by byte, each after a pause.
TEST(Source, GivesAnEntryOutBeforeItReadsOn) {
    const struct {
        std::string text;
        std::string_view ending; // of both entries
    } cases[] = {
        {"<acls xmlns='urn:aceconv:um'><acl><name>A</name><entry>1</entry> <entry\n><!-- > --><a "
         "b='/>'/>&gt;</entry></acl></acls>",
         "</entry>"},
        {R"({"aceconv-um:acls":{"acl":[{"name":"A","entry":[{"m":1} , {"l":{},"m":1}]}]}})",
         R"("m":1})"},
        {"\x82\x61X\xF6\xA1\x01\x02\x81\xA1\x01\x02", "\x02"},
    };
    for (const auto &[text, ending] : cases) {
        Pieces pieces{text, 0};
        const auto source = make_source(
            Window([&from = pieces](char *buffer, std::size_t size) { return from(buffer, size); }),
            std::nullopt, std::nullopt);
        pieces.may_pause = true;
        int entries = 0;
        for (Entry entry;;) {
            try {
                if (!source->next(entry)) {
                    break;
                }
                ++entries;
                EXPECT_TRUE(text.substr(0, pieces.at).ends_with(ending)) << text << pieces.at;
            } catch (const InputPauses &) { // goes on
            }
        }
        EXPECT_EQ(entries, 2) << text;
    }
}

// Objects are found in blocks of 64 bytes, and byte by byte where fewer are there.
TEST(Source, BlocksAndBytesFindTheSameObjects) {
    std::mt19937 random(3);
    constexpr std::string_view alphabet = "{}[]\"\"\"\\ \n:,ab01";
    for (int run = 0; run < 3000; ++run) {
        std::string text = "{\"aceconv-base:acls\":{\"acl\":[{\"name\":\"A\",\"entry\":[{";
        for (std::size_t rest = random() % 300; rest > 0; --rest) {
            // Most of it is text without marks, as in real entries.
            text += random() % 4 == 0 ? alphabet[random() % alphabet.size()] : 'x';
        }
        text += run % 2 == 0 ? "\"}]}},{}]}]}}" : "}]}},{}]}]}}";
        ASSERT_EQ(told_by(text, text.size()), told_by(text, 0)) << text;
    }
}

TEST(Source, EveryPrefixOfADocumentIsRefused) {
    const std::string text = "{\"aceconv-base:acls\":{\"acl\":[{\"name\":\"A\",\"entry\":[{}]}]}}";
    for (std::size_t length = 1; length < text.size(); ++length) {
        const std::string told = told_by(text.substr(0, length), length);
        EXPECT_NE(told.find(": "), told.npos) << text.substr(0, length);
    }
}

TEST(Source, LongestEntries) {
    constexpr std::size_t most = 1 << 20;
    constexpr std::size_t line = most + 6 * 4096 + 64; // with the longest name around the entry
    const std::string declared = " xmlns=\"urn:aceconv:um\"";
    const struct {
        std::string head, open, close, tail;
        std::size_t limit; // of all but head and tail
        const char *fault;
        std::optional<InputFormat> format = std::nullopt;
    } rows[] = {
        {R"({"aceconv-um:acls":{"acl":[{"name":"A","entry":[)", "{", "}", "]}]}}", most,
         "@1 /aceconv-um:acls/acl[name='A']: an entry longer than 1048576 bytes"},
        {R"({"aceconv-um:acls":{"acl":[{"entry":[)", "{", "}", R"(],"name":"A"}]}})", most,
         "@1 /aceconv-um:acls/acl[1]: an entry longer than 1048576 bytes"},
        {"", R"({"deny":{)", "}}", "", line, "@1 : an entry longer than 1073216 bytes"},
        {"\n", R"({"deny":{)", "}}", "", line, "@2 : an entry longer than 1073216 bytes",
         InputFormat::ndjson},
        {"<acls" + declared + "><acl><name>A</name>", "<entry>", "</entry>", "</acl></acls>",
         most - declared.size(), "@1 : an entry longer than 1048576 bytes"},
        {"<acls" + declared + "><acl>", "<entry>", "</entry>", "<name>A</name></acl></acls>",
         most - declared.size(), "@1 : an entry longer than 1048576 bytes"},
        {"", std::string("\x5A\x00\x0F\xFF\xFB", 5), "", "", most,
         "@0 : the encoding at byte 0 is malformed or longer than 1048576 bytes",
         InputFormat::cbor},
    };
    for (const auto &row : rows) {
        const std::string padding(row.limit - row.open.size() - row.close.size(), ' ');
        const std::string longest = row.head + row.open + padding + row.close + row.tail;
        const std::string told = told_by(longest, longest.size(), false, row.format);
        EXPECT_EQ(told.find("longer than"), told.npos) << row.head << told.substr(0, 200);
        std::string longer = row.head + row.open + " " + padding + row.close + row.tail;
        if (row.open.front() == '\x5A') {
            longer[4] = '\xFC';
        }
        EXPECT_EQ(told_by(longer, longer.size(), false, row.format).substr(0, 200), row.fault);
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
    {Format::xml, "<e:entry xmlns:e='u'>\n<e:tcp>\r\n<e:tcp-bits/></e:tcp></e:entry>",
     "/tcp/tcp-bits", 3},
    {Format::xml, "<entry><remark>\n</remark><remark/>\n<tcp/></entry>", "/remark", 2},
    {Format::xml, "<entry><tcp><!--\n--><x\n/></tcp><x/></entry>", "/tcp/x", 2},
    {Format::xml, "<entry><u><n>a'</n>\n<x/></u><u>\n<n>b</n><x/></u>\n<u><x/></u></entry>",
     "/u[n='b']/x", 3},
    {Format::xml, "<entry><u><n>a'</n>\n<x/></u><u>\n<n>b</n><x/></u>\n<u><x/></u></entry>",
     "/u[n=\"a'\"]/x", 2},
    {Format::xml, "<entry><u><n>a</n></u>\n<u><n>a</n>\n</u></entry>", "/u[n='a']", 2},
    {Format::xml, "<entry>\n<grant>\n</entry>", "/grant", 2}, // as far as it can be read
    {Format::json, "{\n\"grant\":1}", "", 1},
    {Format::json, "{\n\"grant\":1}", "/remark", 1},
    {Format::json, "{\"t\":{\"x\":[\n{}]},\n\"m:t\":{\"y\":\"\n\",\n\"\\u0078\":1},\"x\":2}",
     "/t/x", 5},
    {Format::json, "{\"u\":[{\"n\":\"a'\",\n\"x\":1},{\"n\":\"b\",\n\"x\":1},\n{\"x\":1}]}",
     "/u[n='b']/x", 3},
    {Format::json, "{\"u\":[{\"n\":\"a'\",\n\"x\":1},{\"n\":\"b\",\n\"x\":1}]}", "/u[n=\"a'\"]/x",
     2},
    {Format::json, "{\"u\":[{\"n\":\"a\"},\n{\"n\":\"a\"\n}]}", "/u[n='a']", 2},
    {Format::json, "{\"u\"\n:\n[]}", "/u", 1},
    {Format::json, "]{{\"x\":[[{\n\"grant\":", "/grant", 1},
};

TEST(LineOfNode, IsThatOfTheLastNodeOfThePath) {
    for (const Place &place : places) {
        EXPECT_EQ(line_of_node(place.text, place.format, place.path), place.line)
            << place.text << '\n'
            << place.path;
    }
}

/// `count` times `piece` between `head` and `tail`, made as it is read.
Window repeated(std::string head, const std::string &piece, std::size_t count, std::string tail) {
    return Window(
        [=, text = std::move(head), left = count](char *buffer, std::size_t size) mutable {
            while (text.size() < size && left > 0) {
                text += --left > 0 ? piece : piece + tail;
            }
            const std::size_t given = text.copy(buffer, size);
            text.erase(0, given);
            return given;
        });
}

std::size_t allocated() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Entries that have to wait for what stands behind them.
TEST(Source, HoldsNothingInMemory) {
    const std::string remark = R"({"remark":")" + std::string(1000, 'r') + R"("})";
    struct Case {
        Window window;
        std::size_t entries, faults;
    } cases[] = {
        {repeated(R"({"aceconv-um:acls":{"acl":[{"entry":[{})", "," + remark, 8000,
                  R"(],"name":"A"}]}})"),
         8001, 0},
        {repeated("", remark + "\n", 8000, "{\"permit\":{}}\n"), 8001, 0},
        {repeated("",
                  R"({"acl":"A"})"
                  "\n",
                  20000, "{\"permit\":{}}\n"),
         1, 20000},
    };
    for (Case &row : cases) {
        const std::size_t before = allocated();
        std::size_t most = before;
        std::size_t entries = 0;
        std::size_t faults = 0;
        const auto source = make_source(std::move(row.window), std::nullopt, std::nullopt);
        for (Entry entry;;) {
            try {
                if (!source->next(entry)) {
                    break;
                }
                ++entries;
                EXPECT_EQ(entry.position.ordinal, entries + faults);
            } catch (const DataError &) {
                ++faults;
            }
            most = std::max(most, allocated());
        }
        EXPECT_EQ(entries, row.entries);
        EXPECT_EQ(faults, row.faults);
        EXPECT_LT(most - before, 3U << 20);
    }
}

TEST(Source, SaysWhereItCannotPutEntriesAside) {
    setenv("TMPDIR", "/no/such/folder", 1);
    const auto source =
        make_source(repeated("", "{\"remark\":\"r\"}\n", 50000, ""), std::nullopt, std::nullopt);
    Entry entry;
    try {
        source->next(entry);
        ADD_FAILURE();
    } catch (const IoError &error) {
        EXPECT_STREQ(error.what(), "/no/such/folder: cannot create a temporary file: No such file "
                                   "or directory");
    }
    unsetenv("TMPDIR");
}

TEST(SequenceNumbers, FindsEveryRepetition) {
    // Few and far, and many in one block in an order that jumps, each of them twice.
    std::vector<std::uint32_t> numbers = {10, 20, 42, 41, 4294967295U, 65535, 65536, 0, 131072};
    for (std::uint32_t i = 0; i < 30000; ++i) {
        numbers.push_back(0x70000 + i * 40503 % 65536);
    }
    SequenceNumbers used;
    for (const bool fresh : {true, false}) {
        for (const std::uint32_t number : numbers) {
            ASSERT_EQ(used.insert("A", number), fresh) << number;
            ASSERT_EQ(used.insert("B", ~number), fresh) << number;
        }
    }
    EXPECT_TRUE(used.insert("A", 11));
    EXPECT_TRUE(used.insert("A", 0x70000 + 30000 * 40503U % 65536));
}

} // namespace
} // namespace aceconv
