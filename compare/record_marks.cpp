#include "compare/record_marks.h"

namespace aceconv {
namespace {

using Record = ipv4_acl_config_ace;

void add(Marks &marks, const RecordField &field) {
    for (int bit = field.first_bit; bit >= 0 && bit <= field.last_bit; ++bit) {
        (bit < second_mask ? marks.first : marks.second) |= Mask{1} << (bit % second_mask);
    }
}

template <class Chosen>
Marks all_of(Chosen chosen) {
    Marks marks;
    for (const RecordField &field : record_fields()) {
        if (chosen(field)) {
            add(marks, field);
        }
    }
    return marks;
}

/// Groups lie in the first mask.
Mask of(Group group, Part part) {
    const auto chosen = [&](const RecordField &field) {
        return field.group == group && field.part == part;
    };
    return all_of(chosen).first;
}

Marks of(const char *name) {
    Marks marks;
    add(marks, *find_field(name));
    return marks;
}

Comparison comparison(Group group, std::uint8_t Record::*code,
                      std::uint8_t last_single = not_equal_code, bool without_operator = false) {
    return {group,
            code,
            last_single,
            without_operator,
            of(group, Part::operation),
            of(group, Part::first),
            of(group, Part::second)};
}

Side side(Group group) {
    return {of(group, Part::address), of(group, Part::address_mask)};
}

bool is_single(const RecordField &field) {
    switch (field.part) {
    case Part::whole:
        return field.group == Group::none && field.first_bit == field.last_bit;
    case Part::operation:
    case Part::flags:
    case Part::flag_mask:
    case Part::hop_type:
        return false;
    default:
        return true;
    }
}

RecordMarks make() {
    return {
        .comparisons = {comparison(Group::protocol, &Record::proto_oper, equal_code, true),
                        comparison(Group::source_port, &Record::sopr),
                        comparison(Group::destination_port, &Record::dopr),
                        comparison(Group::dscp, &Record::dscp_op, not_equal_code, true),
                        comparison(Group::packet_length, &Record::plenopr),
                        comparison(Group::ttl, &Record::ttloper),
                        comparison(Group::fragment_offset, &Record::frag_offset_oper)},
        .sides = {side(Group::source_address), side(Group::destination_address)},
        .switches = {{&Record::frags, of("frags")},
                     {&Record::icmp_off, of("icmp_off")},
                     {&Record::icmp_on, of("icmp_on")}},
        .action = of("grant").first,
        .capture = of("capture").first,
        .remark = of("remark").first,
        .log = of("log").first,
        .icmp = of("icmp_type_code").first,
        .any_code = Mask{1} << find_field("icmp_type_code")->last_bit,
        .flag_match = of(Group::tcp, Part::operation),
        .flags = of(Group::tcp, Part::flags),
        .flag_mask = of(Group::tcp, Part::flag_mask),
        .hop_type = of(Group::next_hop, Part::hop_type),
        .first_hop = of(Group::next_hop, Part::first_hop),
        .other_hop = of(Group::next_hop, Part::other_hop),
        .user_fields = of("UDF").second,
        .said = {all_of([](const RecordField &field) { return field.base_leaf != nullptr; }),
                 all_of([](const RecordField &field) { return field.um_leaf != nullptr; })},
        .single = all_of(is_single),
    };
}

} // namespace

Marks marks_of(const RecordField &field) {
    Marks marks;
    add(marks, field);
    return marks;
}

const RecordMarks &record_marks() {
    static const RecordMarks marks = make();
    return marks;
}

} // namespace aceconv
