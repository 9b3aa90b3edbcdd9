// ACE records as text: "protocol=6 daddr=192.0.2.1 remark='a b' | 1 7 31 2:24".
//
// Members that are not zero, then the presence bits; "2:n" is bit n of
// ConfigurationMask2 and "4-6" a run of bits. UDF elements are
// "UDF=name:value:mask,..." in hexadecimal. Padding that is not zero shows.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "aceconv/ace_record.h"

namespace aceconv::test {

using Record = ipv4_acl_config_ace;

// A record and what it points at.
struct Given {
    Record record;
    std::list<std::string> strings;
    std::vector<ace_udf_element> elements;
};

// One member: kind u number, x hexadecimal, a address, s string.
struct Member {
    const char *name;
    size_t offset;
    size_t width;
    char kind;
};
const std::vector<Member> &members();

Given parse_record(std::string_view text);
std::string record_text(const Record &record);
// The same text with members and bits in the record's order.
std::string canonical(std::string_view text);
std::string address_text(uint32_t address);
uint32_t parse_address(const std::string &text, bool &valid);

} // namespace aceconv::test
