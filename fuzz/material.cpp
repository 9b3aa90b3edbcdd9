#include "fuzz/material.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "fuzz/pieces.h"
#include "fuzz/promises.h"
#include "host/schema_items.h"
#include "stream/sink.h"

namespace aceconv::fuzz {
namespace {

namespace fs = std::filesystem;

const Texts &names() {
    static const Texts all = [] {
        Modules modules(ACECONV_MODULES);
        std::set<std::string> found;
        for (const Schema schema : {Schema::base, Schema::um}) {
            for (const SchemaItem &item : schema_items(modules, schema)) {
                found.insert(item.name);
            }
        }
        return Texts(found.begin(), found.end());
    }();
    return all;
}

/// Names of values; not all of the many for ports, say.
Texts values() {
    constexpr std::size_t of_each = 6;
    Modules modules(ACECONV_MODULES);
    std::set<std::string> found{"192.0.2.1", "0.0.0.255", "65535", "4294967295", "0x1f", "true"};
    for (const Schema schema : {Schema::base, Schema::um}) {
        for (const SchemaItem &item : schema_items(modules, schema)) {
            for (std::size_t i = 0; i < std::min(of_each, item.names.size()); ++i) {
                found.insert(item.names[i].text);
            }
        }
    }
    return {found.begin(), found.end()};
}

/// So many entries to a text.
constexpr std::size_t in_seed = 3;

/// The examples in this format, a few entries each.
Texts lists_in(OutputFormat format) {
    Texts made;
    const auto entries = example_entries();
    for (std::size_t at = 0; at + in_seed <= entries.size(); at += in_seed) {
        Kept output;
        const auto sink = make_sink(format, entries[at].schema, output);
        for (std::size_t i = at; i < at + in_seed; ++i) {
            const Entry &entry = entries[i];
            if (entry.schema != entries[at].schema) {
                break;
            }
            std::string text;
            if (format == OutputFormat::cbor || format == OutputFormat::bare_cbor) {
                append(text, entry.encoding);
            } else {
                codec(Backend::bulk)
                    .decode(entry.encoding, entry.schema, text_format(format), entry.key, text);
            }
            sink->write(entry.key, entry.schema, text);
        }
        sink->close();
        made.push_back(output.text);
    }
    return made;
}

/// Each behind a first byte that has pieces end somewhere.
Texts behind_a_byte(const Texts &texts) {
    Texts made;
    for (const std::string &text : texts) {
        made.push_back(static_cast<char>(made.size() * 37 % 256) + text);
    }
    return made;
}

std::string hexadecimal(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

} // namespace

std::vector<Entry> example_entries() {
    std::set<fs::path> files;
    for (const auto &file : fs::directory_iterator(ACECONV_EXAMPLES)) {
        if (file.path().extension() == ".json") {
            files.insert(file.path());
        }
    }
    std::vector<Entry> entries;
    for (const fs::path &file : files) {
        const auto source = open_source(file.string(), std::nullopt, std::nullopt);
        for (Entry entry; source->next(entry);) {
            const Encoding encoding = codec(Backend::bulk).encode(entry);
            entry.encoding.assign(encoding.begin(), encoding.end());
            entries.push_back(entry);
        }
    }
    return entries;
}

Texts no_words() {
    return {};
}

Texts json_words() {
    Texts words = {"{",
                   "}",
                   "[null]",
                   "\"acl\":",
                   "\"entry\":[",
                   "},{",
                   "\\u00",
                   "\\ud83d",
                   "\"name\":\"A\"",
                   "\"aceconv-base:",
                   "null",
                   "\xFE\xFE",
                   "-1",
                   "\"aceconv-um:acls\":{\"acl\":[",
                   "\"ietf-restconf:data\":{",
                   "\"ietf-restconf:errors\":",
                   "\"sequence-number\":"};
    for (const std::string &name : names()) {
        words.push_back("\"" + name + "\":");
    }
    for (const std::string &value : values()) {
        words.push_back("\"" + value + "\"");
    }
    return words;
}

Texts xml_words() {
    Texts words = {"<![CDATA[",
                   "]]>",
                   "<!--",
                   "-->",
                   "<?xml version='1.0'?>",
                   "&#13;",
                   "&amp;",
                   "/>",
                   " xmlns=",
                   "\"urn:aceconv:base\"",
                   "</entry>",
                   "<entry>",
                   "<acl><name>",
                   "</acl>",
                   "'urn:aceconv:um'",
                   "\"urn:ietf:params:xml:ns:netconf:base:1.0\"",
                   "<rpc-reply",
                   "<data",
                   "<config"};
    for (const std::string &name : names()) {
        words.push_back("<" + name + ">");
        words.push_back("</" + name + ">");
    }
    const Texts all = values();
    words.insert(words.end(), all.begin(), all.end());
    return words;
}

Texts encoding_words() {
    return {"\x83\x61"
            "A\x0A\x62um",
            "\x83\xF6\xF6\x64"
            "base",
            "\x82\xF6\x01",
            "\xA1",
            "\xA0",
            "\x19\xFF\xFF",
            "\x1A\x80\x01\x02\x03",
            "\x1B\x80\x01\x02\x03\x04\x05\x06\x07",
            "\x80"};
}

Texts flag_words() {
    return {"fin", "syn", "rst", "psh", "ack", "urg", " +", " -", "+", "-", "  "};
}

Texts json_seeds() {
    return behind_a_byte(lists_in(OutputFormat::json));
}

Texts line_seeds() {
    return behind_a_byte(lists_in(OutputFormat::ndjson));
}

Texts xml_seeds() {
    return behind_a_byte(lists_in(OutputFormat::xml));
}

Texts encoding_seeds() {
    return behind_a_byte(lists_in(OutputFormat::cbor));
}

Texts digit_seeds() {
    Texts made;
    for (const std::string &bytes : lists_in(OutputFormat::cbor)) {
        made.push_back(hexadecimal(bytes));
    }
    made.push_back("0xA0 0x\n80");
    made.push_back("g2FBCmJ1bQ==\ng2FB");
    return behind_a_byte(made);
}

Texts entry_seeds() {
    Texts made;
    for (const Entry &entry : example_entries()) {
        for (const Format format : {Format::json, Format::xml}) {
            std::string text(1, static_cast<char>((entry.schema == Schema::um ? 1 : 0) +
                                                  (format == Format::xml ? 2 : 0)));
            codec(Backend::bulk).decode(entry.encoding, entry.schema, format, entry.key, text);
            made.push_back(text);
        }
    }
    return made;
}

Texts bag_seeds() {
    Texts made;
    for (const Entry &entry : example_entries()) {
        made.emplace_back(text_of(entry.encoding));
    }
    return made;
}

Texts record_seeds() { // every bit with every member behind it, in threes
    Texts made;
    for (int bit = 0; bit < 128; bit += 3) {
        std::string steps(1, static_cast<char>(bit));
        for (int at = bit; at < bit + 3; ++at) {
            steps += static_cast<char>(at);
            steps += static_cast<char>(129 + at % 66);
            steps += {1, 0, 0, 0};
        }
        made.push_back(steps);
    }
    return made;
}

Texts flag_seeds() {
    return {"+syn -ack", "syn ack", "-fin +syn -ack", "+urg +ack +psh +rst +syn +fin", "+syn  +"};
}

Texts stored_seeds() {
    Texts made;
    const auto entries = example_entries();
    std::string earlier;
    for (const Entry &entry : entries) {
        if (entry.text.find("udf") != std::string::npos) {
            earlier = text_of(entry.encoding);
        }
    }
    for (const Entry &entry : entries) {
        if (entry.schema == Schema::base) {
            made.push_back(entry.text + std::string(Pieces::mark) + "\x01" + earlier +
                           std::string(Pieces::mark) + "\x05" + earlier);
        }
    }
    return made;
}

Texts library_seeds() {
    Texts made;
    const auto entries = example_entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const Entry &entry = entries[i];
        const bool text = i % 2 == 0;
        const std::string data = text ? entry.text : std::string(text_of(entry.encoding));
        const auto call = static_cast<char>(i % 6);
        made.push_back(std::string{static_cast<char>(i % 2), call, 1, 0, 0, 0, 1, 0, 1} + data +
                       std::string(Pieces::mark));
    }
    char verb = 1;
    for (const std::string &lines : lists_in(OutputFormat::ndjson)) {
        made.push_back(std::string{0, 6, verb, 0, 0, 1, 0, 2} + lines + std::string(Pieces::mark));
        verb = static_cast<char>(verb % 6 + 1);
    }
    return made;
}

} // namespace aceconv::fuzz
