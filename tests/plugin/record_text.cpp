#include "record_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace aceconv::test {

namespace {

// A member's place as the compiler sees it must be the place written here.
consteval Member member(const char *name, size_t offset, size_t width, char kind,
                        size_t true_offset, size_t true_width) {
    if (offset != true_offset || width != true_width) {
        throw std::logic_error("the record's layout is another one");
    }
    return {name, offset, width, kind};
}

#define MEMBER(name, offset, width, kind)                                                          \
    member(#name, offset, width, kind, offsetof(Record, name), sizeof(Record::name))
#define POLICE(name, offset)                                                                       \
    member(#name, offset, 4, 'u', offsetof(Record, Police) + offsetof(ace_police, name),           \
           sizeof(ace_police::name))

constexpr Member member_rows[] = {
    MEMBER(grant, 16, 1, 'u'),
    MEMBER(proto_oper, 17, 1, 'u'),
    MEMBER(protocol, 18, 2, 'u'),
    MEMBER(protocol2, 20, 2, 'u'),
    MEMBER(saddr, 24, 4, 'a'),
    MEMBER(smask, 28, 4, 'a'),
    MEMBER(spfx_len, 32, 4, 'u'),
    MEMBER(daddr, 36, 4, 'a'),
    MEMBER(dmask, 40, 4, 'a'),
    MEMBER(dpfx_len, 44, 4, 'u'),
    MEMBER(sopr, 48, 1, 'u'),
    MEMBER(sport1, 50, 2, 'u'),
    MEMBER(sport2, 52, 2, 'u'),
    MEMBER(dopr, 54, 1, 'u'),
    MEMBER(dport1, 56, 2, 'u'),
    MEMBER(dport2, 58, 2, 'u'),
    MEMBER(log, 60, 4, 'u'),
    MEMBER(capture, 64, 4, 'u'),
    MEMBER(dscp_op, 68, 1, 'u'),
    MEMBER(dscp, 69, 1, 'u'),
    MEMBER(dscp2, 70, 1, 'u'),
    MEMBER(prec, 71, 1, 'u'),
    MEMBER(tos_byte, 72, 1, 'u'),
    MEMBER(icmp_type_code, 76, 4, 'x'),
    MEMBER(tcpflagsopr, 80, 1, 'u'),
    MEMBER(tcpflags, 81, 1, 'x'),
    MEMBER(tcpflags_mask, 82, 1, 'x'),
    MEMBER(frags, 83, 1, 'u'),
    MEMBER(igmp_type, 84, 1, 'u'),
    MEMBER(plenopr, 85, 1, 'u'),
    MEMBER(plen1, 86, 2, 'u'),
    MEMBER(plen2, 88, 2, 'u'),
    MEMBER(ttloper, 90, 1, 'u'),
    MEMBER(ttl1, 91, 1, 'u'),
    MEMBER(ttl2, 92, 1, 'u'),
    MEMBER(icmp_off, 93, 1, 'u'),
    MEMBER(qos_group, 94, 2, 'u'),
    MEMBER(nexthop, 96, 1, 'u'),
    MEMBER(nexthop1, 100, 4, 'a'),
    MEMBER(nexthop2, 104, 4, 'a'),
    MEMBER(nexthop3, 108, 4, 'a'),
    MEMBER(vrf1, 112, 8, 's'),
    MEMBER(vrf2, 120, 8, 's'),
    MEMBER(vrf3, 128, 8, 's'),
    MEMBER(track1, 136, 8, 's'),
    MEMBER(track2, 144, 8, 's'),
    MEMBER(track3, 152, 8, 's'),
    MEMBER(net_src_obj, 160, 8, 's'),
    MEMBER(net_dst_obj, 168, 8, 's'),
    MEMBER(port_src_obj, 176, 8, 's'),
    MEMBER(port_dst_obj, 184, 8, 's'),
    MEMBER(counter_name, 192, 8, 's'),
    MEMBER(remark, 200, 8, 's'),
    MEMBER(SequenceStr, 208, 8, 's'),
    MEMBER(frag_offset_oper, 216, 1, 'u'),
    MEMBER(frag_offset1, 218, 2, 'u'),
    MEMBER(frag_offset2, 220, 2, 'u'),
    MEMBER(SetTTL, 240, 2, 'u'),
    MEMBER(FragmentFlags, 242, 1, 'u'),
    POLICE(PoliceValue, 244),
    POLICE(PoliceUnit, 248),
    POLICE(PolicePeakValue, 252),
    POLICE(PolicePeakUnit, 256),
    MEMBER(Priority, 260, 1, 'u'),
    MEMBER(icmp_on, 261, 1, 'u'),
};
static_assert(sizeof(Record) == 264 && sizeof(ace_udf_element) == 28 && sizeof(ace_police) == 16);
static_assert(offsetof(Record, UDF.count) == 224 && offsetof(Record, UDF.elements) == 232);
static_assert(offsetof(ace_udf_element, UDFValue) == 20 &&
              offsetof(ace_udf_element, UDFMask) == 24);

constexpr size_t padding[] = {22,  23,  49,  55,  73,  74,  75,  97,  98,  99,
                              217, 222, 223, 228, 229, 230, 231, 243, 262, 263};

uint64_t load(const Record &record, const Member &row) {
    uint64_t value = 0;
    std::memcpy(&value, reinterpret_cast<const char *>(&record) + row.offset, row.width);
    return value;
}

void store(Record &record, const Member &row, uint64_t value) {
    std::memcpy(reinterpret_cast<char *>(&record) + row.offset, &value, row.width);
}

[[noreturn]] void refuse(std::string_view what, std::string_view text) {
    throw std::invalid_argument(std::string(what) + ": " + std::string(text));
}

// Splits at blanks outside quotes.
std::vector<std::string> words(std::string_view text) {
    std::vector<std::string> result;
    std::string word;
    bool quoted = false;
    for (const char c : text) {
        quoted ^= c == '\'';
        if (c == ' ' && !quoted) {
            if (!word.empty()) {
                result.push_back(word);
            }
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.empty()) {
        result.push_back(word);
    }
    return result;
}

void parse_bits(Record &record, const std::string &word) {
    const bool second = word.starts_with("2:");
    char *end = nullptr;
    const char *start = word.c_str() + (second ? 2 : 0);
    const unsigned long first = std::strtoul(start, &end, 10);
    const unsigned long last = *end == '-' ? std::strtoul(end + 1, &end, 10) : first;
    if (*end != '\0' || last > 63) {
        refuse("not a bit", word);
    }
    for (unsigned long bit = first; bit <= last; ++bit) {
        (second ? record.ConfigurationMask2 : record.ConfigurationMask) |= uint64_t{1} << bit;
    }
}

void parse_elements(Given &given, std::string_view text) {
    while (!text.empty()) {
        const std::string one(text.substr(0, text.find(',')));
        text.remove_prefix(std::min(text.size(), one.size() + 1));
        ace_udf_element element{};
        const size_t colon = one.find(':');
        one.copy(element.UDFName, std::min<size_t>(colon, 16));
        if (std::sscanf(one.c_str() + colon, ":%x:%x", &element.UDFValue, &element.UDFMask) != 2) {
            refuse("not an element", one);
        }
        given.elements.push_back(element);
    }
    given.record.UDF.count = static_cast<uint32_t>(given.elements.size());
    given.record.UDF.elements = given.elements.data();
}

void parse_member(Given &given, const std::string &word) {
    const size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
    if (name == "UDF") {
        return parse_elements(given, value);
    }
    for (const Member &row : member_rows) {
        if (name != row.name) {
            continue;
        }
        bool valid = true;
        if (row.kind == 's') {
            given.strings.push_back(value.substr(1, value.size() - 2));
            store(given.record, row, reinterpret_cast<uintptr_t>(given.strings.back().data()));
        } else {
            store(given.record, row,
                  row.kind == 'a' ? parse_address(value, valid)
                                  : std::strtoul(value.c_str(), nullptr, 0));
        }
        return valid ? void() : refuse("not an address", word);
    }
    refuse("not a member", word);
}

void print_bits(std::string &text, uint64_t mask, const char *prefix) {
    for (unsigned bit = 0; bit < 64; ++bit) {
        if ((mask >> bit & 1U) != 0) {
            text += ' ' + std::string(prefix) + std::to_string(bit);
        }
    }
}

} // namespace

const std::vector<Member> &members() {
    static const std::vector<Member> rows(std::begin(member_rows), std::end(member_rows));
    return rows;
}

Given parse_record(std::string_view text) {
    Given given{};
    bool bits = false;
    for (const std::string &word : words(text)) {
        if (word == "|") {
            bits = true;
        } else if (bits) {
            parse_bits(given.record, word);
        } else {
            parse_member(given, word);
        }
    }
    return given;
}

std::string record_text(const Record &record) {
    std::string text;
    for (const Member &row : member_rows) {
        const uint64_t value = load(record, row);
        if (value == 0) {
            continue;
        }
        text += std::string(row.name) + '=';
        if (row.kind == 's') {
            text += '\'' + std::string(reinterpret_cast<const char *>(value)) + '\'';
        } else if (row.kind == 'a') {
            text += address_text(static_cast<uint32_t>(value));
        } else {
            char number[24];
            std::snprintf(number, sizeof number, row.kind == 'x' ? "0x%lx" : "%lu", value);
            text += number;
        }
        text += ' ';
    }
    for (uint32_t i = 0; i < record.UDF.count; ++i) {
        char element[80] = "missing";
        if (record.UDF.elements != nullptr) {
            const ace_udf_element &one = record.UDF.elements[i];
            const auto *bytes = reinterpret_cast<const char *>(&one);
            const bool filled =
                std::all_of(bytes + strnlen(bytes, 17), bytes + 20, [](char c) { return c == 0; });
            std::snprintf(element, sizeof element, "%.17s%s:%x:%x", one.UDFName,
                          filled ? "" : "(not zero-filled)", one.UDFValue, one.UDFMask);
        }
        text += (i == 0 ? "UDF=" : ",") + std::string(element);
    }
    text += record.UDF.count != 0 ? " |" : "|";
    print_bits(text, record.ConfigurationMask, "");
    print_bits(text, record.ConfigurationMask2, "2:");
    for (const size_t byte : padding) {
        if (reinterpret_cast<const char *>(&record)[byte] != 0) {
            text += " padding:" + std::to_string(byte);
        }
    }
    return text;
}

std::string canonical(std::string_view text) {
    const Given given = parse_record(text);
    return record_text(given.record);
}

std::string address_text(uint32_t address) {
    char text[20];
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", address >> 24, address >> 16 & 0xFF,
                  address >> 8 & 0xFF, address & 0xFF);
    return text;
}

uint32_t parse_address(const std::string &text, bool &valid) {
    std::array<unsigned, 4> part{};
    char rest = 0;
    valid = std::sscanf(text.c_str(), "%3u.%3u.%3u.%3u%c", &part[0], &part[1], &part[2], &part[3],
                        &rest) == 4;
    uint32_t address = 0;
    for (const unsigned byte : part) {
        valid = valid && byte < 256;
        address = address << 8 | byte;
    }
    return address;
}

} // namespace aceconv::test
