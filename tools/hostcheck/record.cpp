#include "tools/hostcheck/record.h"

#include <cstdlib>
#include <cstring>

namespace aceconv::hostcheck {
namespace {

std::size_t size_of(char type) {
    switch (type) {
    case 'C':
        return 1;
    case 'I':
        return 2;
    case 'H':
        return 8;
    case 's':
    case 'a':
        return 0;
    default: // D N b e
        return 4;
    }
}

/// The member's pointer, of whatever type.
void *block(const Record &record, const Member &member) {
    if (member.type == 'a') {
        return record.UDF.elements;
    }
    void *pointer = nullptr;
    std::memcpy(&pointer, reinterpret_cast<const char *>(&record) + member.offset, sizeof pointer);
    return pointer;
}

bool same_text(const char *left, const char *right) {
    return left == nullptr || right == nullptr ? left == right : std::strcmp(left, right) == 0;
}

bool same_elements(const ace_udf_array &left, const ace_udf_array &right) {
    if (left.count != right.count || (left.count != 0 && right.elements == nullptr)) {
        return false;
    }
    for (std::uint32_t i = 0; i < left.count; ++i) {
        const ace_udf_element &one = left.elements[i], &other = right.elements[i];
        if (std::memcmp(one.UDFName, other.UDFName, sizeof one.UDFName) != 0 ||
            one.UDFValue != other.UDFValue || one.UDFMask != other.UDFMask) {
            return false;
        }
    }
    return true;
}

} // namespace

// "$14={ConfigurationMask}H...{UDF}a($12){SetTTL}I...{Police}$13...;", offsets beside it.
std::vector<Member> members(const bag_descriptor &descriptor) {
    std::vector<Member> all;
    const std::uint64_t *offset = descriptor.layouts[0].offsets;
    const std::string text = descriptor.long_description;
    const std::string record = text.substr(0, text.find(';'));
    for (std::size_t at = record.find('{'); at != std::string::npos; at = record.find('{', at)) {
        const std::size_t end = record.find('}', at);
        const std::string name = record.substr(at + 1, end - at - 1);
        char type = record[end + 1];
        type = type == '[' ? 'e' : type;
        at = end;
        if (type == '$') { // the one sub-record
            for (std::size_t i = 0; i < 4; ++i) {
                all.push_back({name, 'D', *offset + 4 * i, 4});
            }
        } else {
            all.push_back({name, type, *offset, size_of(type)});
        }
        offset += type == 'a' ? 2 : 1;
    }
    return all;
}

Record make_record(const std::vector<Member> &all, std::uint32_t elements, bool empty_texts) {
    Record record;
    std::memset(static_cast<void *>(&record), 0, sizeof record);
    char *const bytes = reinterpret_cast<char *>(&record);
    unsigned char next = 1;
    for (const Member &member : all) {
        if (member.type == 's') {
            char *const text = strdup(empty_texts ? "" : ("text of " + member.name).c_str());
            std::memcpy(bytes + member.offset, &text, sizeof text);
        } else if (member.type == 'b') {
            record.capture = 1;
        } else {
            for (std::size_t i = 0; i < member.size; ++i) {
                bytes[member.offset + i] = static_cast<char>(next++ | 0x80);
            }
        }
    }
    record.Police.PoliceUnit = 4;
    record.Police.PolicePeakUnit = 3;
    record.UDF.count = elements;
    if (elements != 0) {
        record.UDF.elements =
            static_cast<ace_udf_element *>(std::calloc(elements, sizeof(ace_udf_element)));
    }
    for (std::uint32_t i = 0; i < elements; ++i) {
        ace_udf_element &element = record.UDF.elements[i];
        std::memcpy(element.UDFName, "sixteen-letters!", 16);
        element.UDFName[0] = static_cast<char>('z' - i);
        element.UDFValue = 0x80000000U + i;
        element.UDFMask = ~i;
    }
    return record;
}

void release(const std::vector<Member> &all, Record &record) {
    for (const Member &member : all) {
        if (member.size == 0) {
            std::free(block(record, member));
        }
    }
}

std::string difference(const std::vector<Member> &all, const Record &left, const Record &right) {
    for (const Member &member : all) {
        const bool same = member.type == 'a' ? same_elements(left.UDF, right.UDF)
                          : member.type == 's'
                              ? same_text(static_cast<const char *>(block(left, member)),
                                          static_cast<const char *>(block(right, member)))
                              : std::memcmp(reinterpret_cast<const char *>(&left) + member.offset,
                                            reinterpret_cast<const char *>(&right) + member.offset,
                                            member.size) == 0;
        if (!same) {
            return member.name;
        }
    }
    return "";
}

std::string shared_block(const std::vector<Member> &all, const Record &left, const Record &right) {
    for (const Member &member : all) {
        if (member.size == 0 && block(left, member) != nullptr &&
            block(left, member) == block(right, member)) {
            return member.name;
        }
    }
    return "";
}

} // namespace aceconv::hostcheck
