#include "compare/entry_words.h"

#include <array>

#include "compare/translation.h"
#include "compare/words_line.h"

namespace aceconv {
namespace {

// clang-format off
/// In the order of the line.
constexpr WordRow rows[] = {
    {"grant",        "",           Form::action},
    {"proto_oper",   "protocol",   Form::comparison},
    {"protocol",     "",           Form::name},
    {"protocol2",    "",           Form::said_before},
    {"saddr",        "",           Form::side},
    {"spfx_len",     "",           Form::said_before},
    {"smask",        "",           Form::said_before},
    {"net_src_obj",  "group",      Form::text},
    {"sopr",         "",           Form::comparison},
    {"sport1",       "",           Form::said_before},
    {"sport2",       "",           Form::said_before},
    {"port_src_obj", "port-group", Form::text},
    {"daddr",        "",           Form::side},
    {"dpfx_len",     "",           Form::said_before},
    {"dmask",        "",           Form::said_before},
    {"net_dst_obj",  "group",      Form::text},
    {"dopr",         "",           Form::comparison},
    {"dport1",       "",           Form::said_before},
    {"dport2",       "",           Form::said_before},
    {"port_dst_obj", "port-group", Form::text},
    {"icmp_type_code",   "icmp",            Form::icmp_message},
    {"igmp_type",        "igmp",            Form::name},
    {"tcpflagsopr",      "tcp-flags",       Form::flag_match},
    {"tcpflags",         "",                Form::said_before},
    {"tcpflags_mask",    "",                Form::said_before},
    {"dscp_op",          "dscp",            Form::comparison},
    {"dscp",             "dscp",            Form::name},
    {"dscp2",            "",                Form::said_before},
    {"tos_byte",         "precedence",      Form::name},
    {"prec",             "",                Form::said_before}, // no bit marks it
    {"plenopr",          "length",          Form::comparison},
    {"plen1",            "",                Form::said_before},
    {"plen2",            "",                Form::said_before},
    {"ttloper",          "ttl",             Form::comparison},
    {"ttl1",             "",                Form::said_before},
    {"ttl2",             "",                Form::said_before},
    {"frag_offset_oper", "fragment-offset", Form::comparison},
    {"frag_offset1",     "",                Form::said_before},
    {"frag_offset2",     "",                Form::said_before},
    {"frags",            "fragments",       Form::on},
    {"FragmentFlags",    "fragment-type",   Form::name},
    {"UDF",              "udf",             Form::user_fields},
    {"Police.PoliceValue",     "police",          Form::number},
    {"Police.PoliceUnit",      "police-unit",     Form::name},
    {"Police.PolicePeakValue", "police-peak",     Form::number},
    {"Police.PolicePeakUnit",  "police-peak-unit", Form::name},
    {"Priority",               "police-priority", Form::name},
    {"nexthop",      "",              Form::keyword},
    {"nexthop1",     "next-hop-1",    Form::address},
    {"vrf1",         "vrf-1",         Form::text},
    {"track1",       "track-1",       Form::text},
    {"nexthop2",     "next-hop-2",    Form::address},
    {"vrf2",         "vrf-2",         Form::text},
    {"track2",       "track-2",       Form::text},
    {"nexthop3",     "next-hop-3",    Form::address},
    {"vrf3",         "vrf-3",         Form::text},
    {"track3",       "track-3",       Form::text},
    {"qos_group",    "set-qos-group", Form::number},
    {"SetTTL",       "set-ttl",       Form::number},
    {"counter_name", "counter",       Form::text},
    {"capture",      "capture",       Form::on_or_off},
    {"log",          "",              Form::keyword},
    {"icmp_off",     "icmp-off",      Form::on},
    {"icmp_on",      "icmp-on",       Form::on},
    {"SequenceStr",  "sequence-text", Form::text},
    {"remark",       "remark",        Form::text},
};
// clang-format on

/// The number of each row's field; a few more, since a row may look at those behind it.
const std::array<std::size_t, std::size(rows) + 3> &fields_of_rows() {
    static const auto fields = [] {
        std::array<std::size_t, std::size(rows) + 3> numbers{};
        for (std::size_t i = 0; i < std::size(rows); ++i) {
            numbers[i] = number_of(*find_field(rows[i].member));
        }
        return numbers;
    }();
    return fields;
}

} // namespace

std::string entry_words(const RecordView &view, const ipv4_acl_config_ace &record, Schema schema,
                        std::optional<std::uint32_t> sequence) {
    ipv4_acl_config_ace same = record; // which goes on owning the strings
    const Translation translation = translate(same, schema, Schema::base);
    clear_derived_bits(same);
    std::vector<FieldValue> values = view.describe(same, Schema::base);
    std::string strange;
    if (!translation.untranslated.empty()) {
        const auto originals = view.describe(record, schema);
        for (const Untranslated &number : translation.untranslated) {
            std::erase_if(values,
                          [&](const FieldValue &value) { return value.name == number.field; });
            const FieldValue *own = find_value(originals, number.field);
            strange += " [" + own->name + "=" + std::to_string(own->number) + "]";
        }
    }
    WordsLine line(values);
    line.add(sequence ? std::to_string(*sequence) : "");
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        line.say(rows[i], &fields_of_rows()[i]);
    }
    line.say_rest();
    return std::move(line.text()) + strange;
}

} // namespace aceconv
