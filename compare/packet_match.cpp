#include "compare/packet_match.h"

#include <algorithm>
#include <arpa/inet.h>

#include "compare/translation.h"

namespace aceconv {
namespace {

using Record = ipv4_acl_config_ace;

constexpr Mask bit(int n) {
    return Mask{1} << n;
}

// ---- Fields that operators compare -----------------------------------------------------

template <auto First, auto Last>
Interval values(const Record &record) {
    return {record.*First, record.*Last};
}

const Comparison *marks_of(Group group) {
    const auto &all = record_marks().comparisons;
    return std::find_if(std::begin(all), std::end(all),
                        [&](const Comparison &row) { return row.group == group; });
}

constexpr std::uint8_t greater_code = 2;
constexpr std::uint8_t less_code = 3;

/// What the operator compares with, of the numbers that packets can have.
Numbers numbers_of(std::uint8_t operation, Interval values, std::uint32_t highest) {
    const std::uint32_t value = values.first;
    const auto below = [&] { return value == 0 ? Interval() : Interval{0, value - 1}; };
    const Interval above{value + 1, highest};
    Numbers numbers;
    switch (operation) {
    case equal_code:
        numbers = {Interval{value, value}};
        break;
    case greater_code:
        numbers = {above};
        break;
    case less_code:
        numbers = {below()};
        break;
    case not_equal_code:
        numbers = {below(), above};
        break;
    default:
        numbers = {values};
    }
    for (Interval &run : numbers) {
        run.last = std::min(run.last, highest);
    }
    if (numbers[0].empty()) {
        std::swap(numbers[0], numbers[1]);
    }
    return numbers;
}

// ---- Limits ----------------------------------------------------------------------------

/// A group, and what it stands for: where both are given, either may replace the other.
struct GroupField {
    Dimension dimension;
    Mask mark;
    char *Record::*name;
    Mask replaced;
};
constexpr GroupField group_fields[] = {
    {Dimension::source_group, bit(47), &Record::net_src_obj, bit(2)},
    {Dimension::destination_group, bit(48), &Record::net_dst_obj, bit(7)},
    {Dimension::source_port_group, bit(49), &Record::port_src_obj, bit(4) | bit(5) | bit(6)},
    {Dimension::destination_port_group, bit(50), &Record::port_dst_obj, bit(9) | bit(10) | bit(11)},
};

/// The address of one side: the marks and members that hold it.
struct AddressFields {
    Mask address_mark, wildcard_mark, length_mark, group_mark;
    std::uint32_t Record::*address, Record::*wildcard, Record::*length;
};
constexpr AddressFields source_fields = {bit(2),         bit(3),         bit(36),          bit(47),
                                         &Record::saddr, &Record::smask, &Record::spfx_len};
constexpr AddressFields destination_fields = {
    bit(7), bit(8), bit(37), bit(48), &Record::daddr, &Record::dmask, &Record::dpfx_len};

SideAddress side_of(const Record &record, const AddressFields &fields) {
    return {.has_address = has(record, fields.address_mark),
            .has_wildcard = has(record, fields.wildcard_mark),
            .has_length = has(record, fields.length_mark),
            .has_group = has(record, fields.group_mark),
            .address = ntohl(record.*fields.address),
            .wildcard = ntohl(record.*fields.wildcard),
            .length = record.*fields.length};
}

/// The match of one record as it is put together.
class Builder {
  public:
    Builder(const Record &record, Schema schema, TextNumbers &texts)
        : record_(record), schema_(schema), texts_(texts) {}

    void address(Dimension side, const SideAddress &compared);
    void numbers(const ComparedField &field);
    void precedence();
    void icmp_message();
    void igmp_type();
    void group(const GroupField &group);
    void tcp_flags();
    void fragments();
    void user_fields();
    void unknown_bits();

    PacketMatch match;

  private:
    template <class What>
    void limit(Dimension dimension, const What &what) {
        match.limits.push_back({dimension, what});
    }
    void same(Dimension dimension, const std::string &text) { limit(dimension, texts_.of(text)); }

    const Record &record_;
    const Schema schema_;
    TextNumbers &texts_;
};

void Builder::address(Dimension side, const SideAddress &compared) {
    const bool bad_length = compared.has_length && compared.length > 32;
    const std::uint32_t by_length = bad_length ? 0 : prefix_bits(compared.length);
    if (!compared.has_address) {
        match.certain = match.certain && !compared.has_length && !compared.has_wildcard;
    } else if (bad_length || compared.has_group ||
               (compared.has_length && compared.has_wildcard && by_length != ~compared.wildcard)) {
        match.certain = false;
    } else {
        const std::uint32_t mask = compared.has_length     ? by_length
                                   : compared.has_wildcard ? ~compared.wildcard
                                                           : ~std::uint32_t{0};
        if (mask != 0) {
            limit(side, AddressBits{compared.address & mask, mask});
        }
    }
}

void Builder::numbers(const ComparedField &field) {
    const Compared found = compared(record_, field, schema_);
    if (found.as != Compared::As::nothing && has(record_, field.group)) {
        match.certain = false;
        return;
    }
    switch (found.as) {
    case Compared::As::nothing:
        break;
    case Compared::As::numbers:
        limit(field.dimension, found.numbers);
        break;
    case Compared::As::no_number:
        match.nothing = true;
        break;
    default:
        match.certain = false;
    }
}

void Builder::precedence() {
    if (has(record_, bit(17))) {
        match.nothing = match.nothing || impossible_precedence(record_);
        limit(Dimension::precedence, Numbers{Interval{record_.tos_byte, record_.tos_byte}});
    }
}

void Builder::icmp_message() {
    match.nothing = match.nothing || impossible_message(record_);
    const bool any_code = has(record_, record_marks().any_code);
    const std::uint32_t message = record_.icmp_type_code;
    const std::uint32_t last = message | 0xFFFF;
    if (any_code && has(record_, bit(18)) && message != last) {
        match.certain = false; // this code, or any
    } else if (any_code || (has(record_, bit(18)) && message == last)) {
        limit(Dimension::icmp_message, Numbers{Interval{message & ~0xFFFFU, last}});
    } else if (has(record_, bit(18))) {
        limit(Dimension::icmp_message, Numbers{Interval{message, message}});
    }
}

void Builder::igmp_type() {
    if (has(record_, bit(12))) {
        limit(Dimension::igmp_type, Numbers{Interval{record_.igmp_type, record_.igmp_type}});
    }
}

void Builder::group(const GroupField &group) {
    if (has(record_, group.mark) && !has(record_, group.replaced)) {
        const char *name = record_.*group.name;
        same(group.dimension, name == nullptr ? "" : name);
    }
}

/// Flags, mask and operator together, as they are.
void Builder::tcp_flags() {
    const RecordMarks &marks = record_marks();
    const auto part = [&](Mask mark, std::uint8_t value) {
        return has(record_, mark) ? std::to_string(value) + " " : "- ";
    };
    if (has(record_, marks.flag_match | marks.flags | marks.flag_mask)) {
        same(Dimension::tcp_flags, part(marks.flag_match, record_.tcpflagsopr) +
                                       part(marks.flags, record_.tcpflags) +
                                       part(marks.flag_mask, record_.tcpflags_mask));
    }
}

void Builder::fragments() {
    if (has(record_, bit(23)) && record_.frags != 0) {
        same(Dimension::fragments, "");
    }
    if (has(record_, bit(60))) { // each schema has numbers of its own
        same(Dimension::fragment_type,
             std::to_string(record_.FragmentFlags) + (schema_ == Schema::base ? " base" : " um"));
    }
}

void Builder::user_fields() {
    const Mask marked = record_.ConfigurationMask2 & record_marks().user_fields;
    const std::uint32_t count = record_.UDF.count;
    if (marked == 0 && count == 0) {
        return;
    }
    const Mask one = count <= 8 ? bit(static_cast<int>(count)) - 1 : 0; // a bit an element
    if (marked == 0 || marked != (one | one << 8 | one << 16)) {
        match.certain = false;
        return;
    }
    std::string text;
    for (std::uint32_t i = 0; i < count; ++i) {
        const ace_udf_element &element = record_.UDF.elements[i];
        text.append(element.UDFName, sizeof element.UDFName);
        text += std::to_string(element.UDFValue) + "/" + std::to_string(element.UDFMask) + ",";
    }
    same(Dimension::user_fields, text);
}

/// What they may compare nobody knows.
void Builder::unknown_bits() {
    static const Marks known = [] {
        Marks marks{bit(42) | bit(43), 0};
        for (const RecordField &field : record_fields()) {
            for (int n = field.first_bit; n >= 0 && n <= field.last_bit; ++n) {
                (n < second_mask ? marks.first : marks.second) |= bit(n % second_mask);
            }
        }
        return marks;
    }();
    match.certain = match.certain && (record_.ConfigurationMask & ~known.first) == 0 &&
                    (record_.ConfigurationMask2 & ~known.second) == 0;
}

} // namespace

std::span<const ComparedField> compared_fields() {
    // clang-format off
    static const std::array fields = {
        ComparedField{Dimension::protocol, "protocol", 255, true, values<&Record::protocol, &Record::protocol2>, "protocol", marks_of(Group::protocol), 0},
        ComparedField{Dimension::source_port, "source port", 65535, false, values<&Record::sport1, &Record::sport2>, "sport1", marks_of(Group::source_port), bit(49)},
        ComparedField{Dimension::destination_port, "destination port", 65535, false, values<&Record::dport1, &Record::dport2>, "dport1", marks_of(Group::destination_port), bit(50)},
        ComparedField{Dimension::dscp, "DSCP", 63, true, values<&Record::dscp, &Record::dscp2>, "dscp", marks_of(Group::dscp), 0},
        ComparedField{Dimension::packet_length, "packet length", 65535, true, values<&Record::plen1, &Record::plen2>, "plen1", marks_of(Group::packet_length), 0},
        ComparedField{Dimension::ttl, "time to live", 255, true, values<&Record::ttl1, &Record::ttl2>, "ttl1", marks_of(Group::ttl), 0},
        ComparedField{Dimension::fragment_offset, "fragment offset", 65535, true, values<&Record::frag_offset1, &Record::frag_offset2>, "frag_offset1", marks_of(Group::fragment_offset), 0},
    };
    // clang-format on
    return fields;
}

Compared compared(const Record &record, const ComparedField &field, Schema schema) {
    using As = Compared::As;
    const Comparison &marks = *field.marks;
    if (!has(record, marks.operation | marks.first | marks.second)) {
        return {};
    }
    const bool with_operator = has(record, marks.operation);
    const std::uint8_t operation = with_operator ? record.*marks.code : equal_code;
    if ((!with_operator && !marks.without_operator) || !has(record, marks.first) ||
        operation < equal_code || operation > range_code ||
        (operation == range_code && !has(record, marks.second))) {
        return {As::unclear};
    }
    const Interval values = field.values(record);
    if (field.dimension == Dimension::protocol && operation == equal_code &&
        values.first == every_protocol(schema)) {
        return {};
    }
    if (operation == range_code && values.empty()) {
        return {As::backwards};
    }
    const Numbers numbers = numbers_of(operation, values, field.highest);
    if (numbers[0].empty()) {
        return {As::no_number};
    }
    if (field.everywhere && numbers[0].contains({0, field.highest})) {
        return {};
    }
    return {As::numbers, numbers};
}

Compared compared_protocol(const Record &record, Schema schema) {
    return compared(record, compared_fields().front(), schema);
}

SideAddress source_of(const Record &record) {
    return side_of(record, source_fields);
}

SideAddress destination_of(const Record &record) {
    return side_of(record, destination_fields);
}

bool impossible_precedence(const Record &record) {
    return has(record, bit(17)) && record.tos_byte > 7;
}

bool impossible_message(const Record &record) {
    const std::uint32_t code = record.icmp_type_code & 0xFFFF;
    return has(record, record_marks().icmp) &&
           (record.icmp_type_code >> 16 > 255 ||
            (code > 255 && code != 0xFFFF && !has(record, record_marks().any_code)));
}

bool Limit::contains(const Limit &other) const {
    if (const auto *bits = std::get_if<AddressBits>(&what)) {
        return bits->contains(std::get<AddressBits>(other.what));
    }
    if (const auto *numbers = std::get_if<Numbers>(&what)) {
        const Numbers &inner = std::get<Numbers>(other.what);
        return std::all_of(inner.begin(), inner.end(), [&](Interval run) {
            return (*numbers)[0].contains(run) || (*numbers)[1].contains(run);
        });
    }
    return std::get<std::uint32_t>(what) == std::get<std::uint32_t>(other.what);
}

PacketMatch packet_match(const Record &record, Schema schema, TextNumbers &texts) {
    Builder builder(record, schema, texts);
    builder.address(Dimension::source, source_of(record));
    builder.address(Dimension::destination, destination_of(record));
    for (const ComparedField &field : compared_fields()) {
        builder.numbers(field);
    }
    builder.precedence();
    builder.icmp_message();
    builder.igmp_type();
    for (const GroupField &group : group_fields) {
        builder.group(group);
    }
    builder.tcp_flags();
    builder.fragments();
    builder.user_fields();
    builder.unknown_bits();
    return std::move(builder.match);
}

bool surely_contains(const PacketMatch &outer, const PacketMatch &inner) {
    if (!outer.certain || outer.nothing) {
        return false;
    }
    auto at = inner.limits.begin();
    return std::all_of(outer.limits.begin(), outer.limits.end(), [&](const Limit &limit) {
        at = std::find_if(at, inner.limits.end(),
                          [&](const Limit &other) { return other.dimension >= limit.dimension; });
        return at != inner.limits.end() && at->dimension == limit.dimension && limit.contains(*at);
    });
}

} // namespace aceconv
