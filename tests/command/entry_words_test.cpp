// Entries in words: how they read, and that none reads like another one.
#include <cstring>
#include <gtest/gtest.h>
#include <map>

#include "compare/entry_words.h"
#include "compare/translation.h"
#include "host/plugin_loader.h"
#include "stream/codec.h"
#include "testing/generator/rule.h"

namespace aceconv {
namespace {

using Record = ipv4_acl_config_ace;

class Words : public ::testing::Test {
  protected:
    Bytes encode(Schema schema, const std::string &text) {
        Entry entry{.schema = schema, .format = Format::json, .text = text};
        const Encoding encoding = codec_.encode(entry);
        return {encoding.begin(), encoding.end()};
    }
    std::string words(const Record &record, Schema schema) const {
        return entry_words(view_, record, schema, 10);
    }

    Codec codec_{{load_plugin(ACECONV_PLUGIN), ACECONV_MODULES, Backend::bulk}};
    RecordView view_{codec_.descriptor()};
};

TEST_F(Words, Examples) {
    const struct {
        std::string base, um; // members; empty where the schema has no such entry
        const char *line;
    } rows[] = {
        {"", "", "no-action any any"},
        {R"("remark":"say \"no\" \\ \u202e")", R"("remark":"say \"no\" \\ \u202e")",
         R"(remark "say \"no\" \\ \xe2\x80\xae")"},
        {R"("grant":"permit","protocol":"tcp","destination-port":{"destination-operator":"equal",
            "first-destination-port":22},"source-network":{"source-address":"192.0.2.0",
            "source-prefix-length":24},"log-option":"log")",
         R"("permit":{"protocol":"tcp","source":{"address":"192.0.2.0","prefix-length":24},
            "destination":{"port":{"eq":"SSH"}},"log":{}})",
         "permit tcp 192.0.2.0/24 any eq 22 log"},
        {R"("grant":"deny","protocol":"ip","source-prefix-group":"web","source-port-group":"p",
            "destination-network":{"destination-address":"10.0.0.0","destination-wild-card-bits":"0.0.0.255"},
            "fragment-type":"dont-fragment first-fragment","icmp-off":[null])",
         R"("deny":{"protocol":"ipv4","source":{"net-group":"web","port-group":"p"},
            "destination":{"address":"10.0.0.0","wildcard-mask":"0.0.0.255"},
            "fragment-type":"dont-fragment first-fragment","icmp-off":{}})",
         R"(deny ip group "web" port-group "p" 10.0.0.0 wildcard 0.0.0.255 fragment-type dont-fragment first-fragment icmp-off)"},
        {R"("grant":"permit","protocol-operator":"range","protocol":"ip","protocol2":"tcp",
            "dscp":{"dscp-operator":"not-equal","dscp-min":"af11"},
            "time-to-live":{"time-to-live-operator":"range","time-to-live-min":1,"time-to-live-max":9},
            "tcp":{"tcp-bits-match-operator":"match-any","tcp-bits":"syn","tcp-bits-mask":"syn ack"})",
         R"("permit":{"range":{"start-protocol":0,"end-protocol":"tcp"},"dscp":{"neq":"af11"},
            "ttl":{"range":{"start-value":1,"end-value":9}},
            "tcp-flags":{"match-any":{"tcp-bits":"-ack +syn"}}})",
         "permit protocol range 0 6 any any tcp-flags match-any +syn -ack dscp neq af11 ttl range "
         "1 9"},
        {R"("grant":"permit","icmp":{"icmp-type-code":"unreachable"},"capture":false,"set-ttl":9,
            "next-hop":{"next-hop-type":"regular-next-hop","next-hop-1":{"next-hop":"10.0.0.1"},
                        "next-hop-2":{"vrf-name":"red"}})",
         "",
         R"(permit any any icmp unreachable regular-next-hop next-hop-1 10.0.0.1 vrf-2 "red" set-ttl 9 no-capture)"},
        {"", R"("deny":{"icmp":{"message-type":77,"message-code":3},"icmp-on":{},
             "udf-entries":{"udf":[{"udf-name":"a b","udf-value":"0x7","udf-mask":"ff"}]},
             "police":{"value":9,"unit":"kbps","priority":"low"}})",
         R"(deny any any icmp type 77 code 3 udf "a b" 0x7/0xff police 9 police-unit kbps police-priority low icmp-on)"},
        {"", R"("permit":{"protocol":0})", "permit any any [protocol=0]"}, // "ip" is another
        {R"("destination-port":{"second-destination-port":9},"packet-length":{"packet-length-min":3})",
         "", "no-action any any [dport2=9] [plen1=3]"},
    };
    for (const auto &row : rows) {
        for (const Schema schema : {Schema::base, Schema::um}) {
            const std::string &members = schema == Schema::base ? row.base : row.um;
            if (!members.empty() || row.base == row.um) {
                const DecodedRecord record(codec_.descriptor(),
                                           encode(schema, "{" + members + "}"));
                EXPECT_EQ(words(record.get(), schema), "10 " + std::string(row.line));
            }
        }
    }
}

/// Takes records, each of which must have a line of its own.
class Lines {
  public:
    Lines(const bag_descriptor &descriptor, const RecordView &view)
        : descriptor_(descriptor), view_(view) {}

    void add(Record record) {
        for (const Schema schema : {Schema::base, Schema::um}) {
            const std::string line = entry_words(view_, record, schema, std::nullopt);
            clear_derived_bits(record);
            const Bytes encoding = encode_record(descriptor_, record);
            EXPECT_EQ(lines_[static_cast<int>(schema)].emplace(line, encoding).first->second,
                      encoding)
                << line;
        }
    }

    /// The record, and what it becomes by each bit and by each byte of its members.
    void add_changed(Record record) {
        add(record);
        for (int bit = 0; bit < second_mask; ++bit) {
            for (std::uint64_t *mask : {&record.ConfigurationMask, &record.ConfigurationMask2}) {
                *mask ^= std::uint64_t{1} << bit;
                add(record);
                *mask ^= std::uint64_t{1} << bit;
            }
        }
        static char texts[][4] = {"", "a", "\\\"", "\"", "\\", "b \"", "\x1b", "\\x1"};
        static ace_udf_element fields[9] = {{"a", 1, 2}, {"a\0b", 1, 2}, {"a\" 0", 2, 1}};
        for (const BagMember &member : bag_members(descriptor_)) {
            auto *at = reinterpret_cast<std::uint8_t *>(&record) + member.offset;
            const Record before = record;
            for (unsigned value = 0; value < std::size(texts) && member.type != "H"; ++value) {
                if (member.type == "s") {
                    char *const text = texts[value];
                    std::memcpy(at, &text, sizeof text);
                } else if (member.type.front() == 'a') {
                    record.UDF = {value, value == 1   ? &fields[1]
                                         : value == 2 ? &fields[2]
                                                      : fields};
                    record.UDF.count = value == 2 ? 1 : value == 7 ? 9 : value;
                } else {
                    at[value % member.width] ^= static_cast<std::uint8_t>(1U << value);
                }
                add(record);
            }
            record = before;
        }
    }

    [[nodiscard]] std::size_t count() const { return lines_[0].size(); }

  private:
    const bag_descriptor &descriptor_;
    const RecordView &view_;
    std::map<std::string, Bytes> lines_[2]; // of a schema
};

TEST_F(Words, NoRecordReadsLikeAnother) {
    Lines lines(codec_.descriptor(), view_);
    lines.add_changed({});
    for (const RecordField &field : record_fields()) { // alone, and marked
        for (int bit = std::max(field.first_bit, 0);
             bit <= std::min(field.last_bit, field.first_bit + 1); ++bit) {
            Record record{};
            (bit < second_mask ? record.ConfigurationMask : record.ConfigurationMask2) =
                std::uint64_t{1} << (bit % second_mask);
            lines.add_changed(record);
        }
    }
    bench::Random random(11);
    for (int i = 0; i < 4 && !HasFailure(); ++i) {
        std::string text;
        bench::append_um(text, bench::random_rule(random, 1));
        lines.add_changed(DecodedRecord(codec_.descriptor(), encode(Schema::um, text)).get());
    }
    EXPECT_GT(lines.count(), 10000U);
}

} // namespace
} // namespace aceconv
