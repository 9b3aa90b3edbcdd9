// Emitters: what is written, what is refused, and the way there and back.
#include "yang_testing.h"

#include <arpa/inet.h>

#include <cstdlib>
#include <functional>
#include <sstream>

#include "aceconv/keywords.h"
#include "host/schema/modules.h"

namespace aceconv::testing {
namespace {

using Output = ccv_yang_output *;
using Calls = std::function<void(Output)>;

constexpr Schema base = Schema::base;
constexpr Schema um = Schema::um;

std::uint32_t network(const char *text) {
    in_addr address{};
    EXPECT_EQ(inet_pton(AF_INET, text, &address), 1);
    return address.s_addr;
}

void within(Output out, std::initializer_list<const char *> names, const Calls &calls) {
    for (const char *name : names) {
        ccv_yang_container_begin(out, name);
    }
    calls(out);
    for (std::size_t i = 0; i < names.size(); ++i) {
        ccv_yang_container_end(out);
    }
}

void udf(Output out, const char *name) {
    ccv_yang_list_entry_begin(out, "udf", 1);
    ccv_yang_string(out, "udf-name", name);
    ccv_yang_string(out, "udf-mask", "ff");
    ccv_yang_list_entry_end(out);
}

std::string written_by(EntryWriter &writer, const EntryKey &key, const Calls &calls) {
    std::string text;
    EXPECT_THROW(writer.finish(text), std::logic_error); // without begin
    // Twice through one writer: nothing of an entry reaches the next one.
    for (int i = 0; i < 2; ++i) {
        text.clear();
        calls(writer.begin(key));
        writer.finish(text);
    }
    return text;
}

std::string write(Schema schema, Format format, const EntryKey &key, const Calls &calls) {
    const std::string text =
        written_by(*make_validating_writer(modules(), schema, format), key, calls);
    if (format == Format::json) {
        EXPECT_EQ(written_by(*make_bulk_writer(modules(), schema), key, calls), text);
    }
    return text;
}

struct Written {
    Schema schema;
    Calls calls;
    const char *json;
    const char *xml; // inside <entry>
};

const Written written[] = {
    {base, [](Output) {}, "{}", ""},
    {base,
     [](Output out) {
         ccv_yang_enum(out, "grant", acl_yang_acl_grant, 0);
         ccv_yang_enum_or_uint32(out, "protocol", acl_yang_acl_protocol, 6);
         ccv_yang_enum_or_uint32(out, "protocol2", acl_yang_acl_protocol, 7);
         within(out, {"source-network"},
                [](Output o) { ccv_yang_ipv4(o, "source-address", network("192.0.2.1")); });
         within(out, {"tcp"}, [](Output o) {
             ccv_yang_bits(o, "tcp-bits", acl_yang_acl_tcp_bits, 0x12);
             ccv_yang_bits(o, "tcp-bits-mask", acl_yang_acl_tcp_bits, 0);
         });
         ccv_yang_bool(out, "capture", 2);
         ccv_yang_empty(out, "icmp-off");
         ccv_yang_uint32(out, "qos-group", 65535);
         ccv_yang_string(out, "remark", "a<b \"c\" \xC3\xA9");
     },
     R"({"grant":"deny","protocol":"tcp","protocol2":7,"source-network":{"source-address":)"
     R"("192.0.2.1"},"tcp":{"tcp-bits":"syn ack","tcp-bits-mask":""},"capture":true,)"
     R"("icmp-off":[null],"qos-group":65535,"remark":"a<b \"c\" é"})",
     "<grant>deny</grant><protocol>tcp</protocol><protocol2>7</protocol2><source-network>"
     "<source-address>192.0.2.1</source-address></source-network><tcp><tcp-bits>syn ack</tcp-bits>"
     "<tcp-bits-mask/></tcp><capture>true</capture><icmp-off/><qos-group>65535</qos-group>"
     "<remark>a&lt;b \"c\" é</remark>"},
    {base,
     [](Output out) {
         static constexpr ccv_yang_keyword table[] = {{32, "fin"}, {31, "syn"}, {0, nullptr}};
         within(out, {"tcp"}, [](Output o) { ccv_yang_bits(o, "tcp-bits", table, 1U << 31); });
     },
     R"({"tcp":{"tcp-bits":"syn"}})", "<tcp><tcp-bits>syn</tcp-bits></tcp>"},
    {base,
     [](Output out) {
         ccv_yang_bool(out, "capture", 0);
         ccv_yang_string(out, "remark", "\"\x7F\\ /");
     },
     R"({"capture":false,"remark":"\"\\ /"})",
     "<capture>false</capture><remark>\"\x7F\\ /</remark>"},
    {base, [](Output out) { ccv_yang_string(out, "remark", "\r\n\t\r"); },
     R"({"remark":"\u000D\u000A\u0009\u000D"})", "<remark>&#13;\n\t&#13;</remark>"},
    // The base schema's empty containers say nothing, also one in another.
    {base,
     [](Output out) {
         within(out, {"next-hop", "next-hop-1"}, [](Output) {});
         within(out, {"tcp"}, [](Output o) { ccv_yang_presence(o); });
         within(out, {"dscp"}, [](Output o) { ccv_yang_uint32(o, "dscp-min", 0); });
     },
     R"({"tcp":{},"dscp":{"dscp-min":0}})", "<tcp/><dscp><dscp-min>0</dscp-min></dscp>"},
    // UM's do: operators without a value.
    {um,
     [](Output out) {
         within(out, {"permit"}, [](Output o) {
             ccv_yang_presence(o);
             within(o, {"source", "any"}, [](Output p) { ccv_yang_presence(p); });
             within(o, {"ttl", "range"}, [](Output) {});
             within(o, {"udf-entries"}, [](Output p) {
                 ccv_yang_list_begin(p, "udf");
                 udf(p, "z");
                 udf(p, "a'b");
                 ccv_yang_list_end(p);
             });
             within(o, {"police"}, [](Output p) { ccv_yang_string(p, "unit", "gbps"); });
         });
     },
     R"({"permit":{"source":{"any":{}},"ttl":{"range":{}},"udf-entries":{"udf":[{"udf-name":"z",)"
     R"("udf-mask":"ff"},{"udf-name":"a'b","udf-mask":"ff"}]},"police":{"unit":"gbps"}}})",
     "<permit><source><any/></source><ttl><range/></ttl><udf-entries><udf><udf-name>z</udf-name>"
     "<udf-mask>ff</udf-mask></udf><udf><udf-name>a'b</udf-name><udf-mask>ff</udf-mask></udf>"
     "</udf-entries><police><unit>gbps</unit></police></permit>"},
    {um,
     [](Output out) {
         within(out, {"deny", "udf-entries"}, [](Output o) {
             ccv_yang_list_begin(o, "udf");
             ccv_yang_list_end(o);
         });
     },
     R"({"deny":{"udf-entries":{}}})", "<deny><udf-entries/></deny>"},
};

TEST(YangEmitters, WriteOneLineInBothNotations) {
    for (const Written &row : written) {
        SCOPED_TRACE(row.json);
        const std::string space(module_namespace(row.schema));
        EXPECT_EQ(write(row.schema, Format::json, {}, row.calls), row.json);
        const std::string start = "<entry xmlns=\"" + space + "\"";
        EXPECT_EQ(write(row.schema, Format::xml, {}, row.calls),
                  *row.xml == '\0' ? start + "></entry>" : start + ">" + row.xml + "</entry>");
        const std::string members = std::string(row.json).substr(1);
        EXPECT_EQ(write(row.schema, Format::json, {"L", 1}, row.calls),
                  "{\"sequence-number\":1" + (members == "}" ? members : "," + members));
    }
}

struct Failing {
    Schema schema;
    const char *around; // containers, and a list after '*', that are open before the calls
    Calls calls;
    YangStatus status;
    const char *error;
};

void open(Output out, const std::string &around) {
    std::istringstream names(around);
    for (std::string name; names >> name;) {
        if (name[0] == '*') {
            ccv_yang_list_begin(out, name.c_str() + 1);
        } else {
            ccv_yang_container_begin(out, name.c_str());
        }
    }
}

using S = YangStatus;
const Failing failing[] = {
    {base, "", [](Output out) { ccv_yang_enum(out, "grant", acl_yang_acl_grant, 2); },
     S::no_keyword, "/grant: no name stands for 2; expected one of: deny, permit"},
    {base, "", [](Output out) { ccv_yang_enum(out, "grant", acl_yang_acl_log, 1); }, S::refused,
     "/grant: \"log\"; expected one of: deny, permit"},
    {base, "tcp", [](Output out) { ccv_yang_bits(out, "tcp-bits", acl_yang_acl_tcp_bits, 0x42); },
     S::no_keyword,
     "/tcp/tcp-bits: no name stands for 66; expected a set of: fin, syn, rst, psh, ack, urg"},
    {base, "", [](Output out) { ccv_yang_string(out, "remark", nullptr); }, S::bad_text,
     "/remark: the entry marks a text that it does not hold"},
    {base, "", [](Output out) { ccv_yang_string(out, "remark", "a\x01"); }, S::bad_text,
     "/remark: the text holds a character that YANG does not allow"},
    {base, "", [](Output out) { ccv_yang_string(out, "remark", "a\xFF"); }, S::bad_text,
     "/remark: the text is not valid UTF-8"},
    {base, "", [](Output out) { ccv_yang_uint32(out, "bogus", 1); }, S::unknown_node,
     "/bogus: unknown node"},
    {base, "", [](Output out) { ccv_yang_container_begin(out, "bogus"); }, S::unknown_node,
     "/bogus: unknown node"},
    {base, "", [](Output out) { ccv_yang_container_begin(out, "grant"); }, S::wrong_type,
     "/grant: expected one of: deny, permit"},
    {base, "", [](Output out) { ccv_yang_uint32(out, "tcp", 1); }, S::wrong_type,
     "/tcp: expected a container"},
    {base, "", [](Output out) { ccv_yang_uint32(out, "remark", 1); }, S::wrong_type,
     "/remark: expected a string"},
    {base, "", [](Output out) { ccv_yang_string(out, "protocol", "tcp"); }, S::wrong_type,
     "/protocol: expected a number 0 to 65535 or one of: ip, icmp, igmp, ip-in-ip, tcp, igrp, udp, "
     "gre, esp, ahp, eigrp, ospf, ... (16 names)"},
    {base, "", [](Output out) { ccv_yang_uint32(out, "qos-group", 65536); }, S::out_of_range,
     "/qos-group: 65536; expected a number 0 to 65535"},
    {base, "", [](Output out) { ccv_yang_bool(out, "capture", ccv_yang_bool(out, "capture", 0)); },
     S::repeated, "/capture: the node is given more than once"},
    {base, "tcp", [](Output) {}, S::ok, "/tcp: left open"},
    {base, "", [](Output out) { ccv_yang_container_end(out); }, S::misplaced,
     ": an end without its begin"},
    {base, "", [](Output out) { ccv_yang_presence(out); }, S::misplaced,
     ": presence of something else than a container"},
    {um, "deny police", [](Output out) { ccv_yang_string(out, "unit", "tbps"); }, S::refused,
     "/deny/police/unit: \"tbps\"; expected one of: pps, bps, kbps, "
     "mbps, gbps"},
    {um, "deny udf-entries *udf", [](Output out) { udf(out, "a"), udf(out, "b"), udf(out, "a"); },
     S::repeated, "/deny/udf-entries/udf[udf-name='a']: a second entry with the same key"},
    {um, "deny udf-entries *udf", [](Output out) { udf(out, ""); }, S::refused,
     "/deny/udf-entries/udf/udf-name: \"\"; "
     "expected a string of 1 to 16 characters of the form [ -~]*"},
    {um, "deny udf-entries *udf",
     [](Output out) {
         ccv_yang_list_entry_begin(out, "udf", 1);
         ccv_yang_string(out, "udf-mask", "1");
     },
     S::misplaced, "/deny/udf-entries/udf: an entry starts with its key, udf-name"},
    {um, "deny udf-entries *udf",
     [](Output out) {
         ccv_yang_list_entry_begin(out, "udf", 1);
         ccv_yang_list_entry_end(out);
     },
     S::misplaced, "/deny/udf-entries/udf: an entry without its key"},
    {um, "deny udf-entries *udf", [](Output out) { ccv_yang_string(out, "udf-name", "1"); },
     S::misplaced, "/deny/udf-entries/udf/udf-name: a node between the entries of a list"},
    {um, "deny udf-entries", [](Output out) { ccv_yang_list_entry_begin(out, "udf", 1); },
     S::misplaced, "/deny/udf-entries: an entry outside its list"},
    {um, "deny udf-entries *udf", [](Output out) { ccv_yang_list_entry_begin(out, "udf", 2); },
     S::misplaced, "/deny/udf-entries/udf: an entry outside its list"},
};

/// Nodes in place of text, of which it writes the outermost braces alone.
class NodeWriter final : public EntryWriter {
  public:
    explicit NodeWriter(Schema schema) : mirror_(make_mirror(modules(), schema)) {}
    Output begin(const EntryKey &where) override { return mirror_->begin(where); }
    void finish(std::string &text) override {
        mirror_->finish();
        text += "{}";
    }

  private:
    std::unique_ptr<EntryMirror> mirror_;
};

void expect_failure(const Failing &row, EntryWriter &writer) {
    Output out = writer.begin({"L", 10});
    open(out, row.around);
    row.calls(out);
    // Whatever follows reports it again and changes nothing.
    if (row.status != YangStatus::ok) {
        EXPECT_EQ(ccv_yang_uint32(out, "nonsense", 1), code(row.status));
        EXPECT_EQ(ccv_yang_container_end(out), code(row.status));
    }
    std::string text = "kept";
    EXPECT_EQ(error_of([&] { writer.finish(text); }),
              std::string("/")
                  .append(module_name(row.schema))
                  .append(":acls/acl[name='L']/entry[sequence-number='10']")
                  .append(row.error));
    EXPECT_EQ(text, "kept");
    writer.begin({});
    writer.finish(text);
    EXPECT_EQ(text, "kept{}");
}

TEST(YangEmitters, TheFirstFailureIsKeptWithItsPath) {
    for (const Failing &row : failing) {
        SCOPED_TRACE(row.error);
        expect_failure(row, *make_validating_writer(modules(), row.schema, Format::json));
        expect_failure(row, *make_bulk_writer(modules(), row.schema));
        NodeWriter nodes(row.schema);
        expect_failure(row, nodes);
    }
    for (const auto &writer : {make_validating_writer(modules(), base, Format::json),
                               make_bulk_writer(modules(), base)}) {
        std::string text;
        writer->begin({std::nullopt, 0});
        EXPECT_EQ(error_of([&] { writer->finish(text); }),
                  "/aceconv-base:acls/acl/entry[sequence-number='0']/sequence-number: 0; expected "
                  "a number 1 to 4294967295");
    }
    NodeWriter writer(um); // nodes are of what can be read
    for (const int count : {8, 9}) {
        std::string text;
        Output out = writer.begin({});
        within(out, {"deny", "udf-entries"}, [&](Output o) {
            ccv_yang_list_begin(o, "udf");
            for (int i = 0; i < count; ++i) {
                udf(o, std::to_string(i).c_str());
            }
            ccv_yang_list_end(o);
        });
        EXPECT_EQ(error_of([&] { writer.finish(text); }),
                  count == 8 ? "nothing was thrown"
                             : "/aceconv-um:acls/acl/entry/deny/udf-entries/udf[udf-name='8']"
                               "/udf-name: more than 8 entries");
    }
}

/// Emits what a walk shows, as a pair of converters would.
class Copy {
  public:
    Copy(ccv_yang_node *entry, Output out) : walk_(entry), out_(out) {}
    void children(std::uint32_t step) {
        walk_.first(step);
        while (!walk_.finished(step)) {
            node(walk_.current);
            walk_.next();
        }
    }

  private:
    void node(ccv_yang_node *node) {
        const char *name = ccv_yang_get_node_name(node);
        if (node->form == NodeForm::container) {
            ccv_yang_container_begin(out_, name);
            ccv_yang_presence(out_);
            children(CCV_YANG_STEP_CONTAINER);
            ccv_yang_container_end(out_);
        } else if (node->form == NodeForm::list) {
            ccv_yang_list_begin(out_, name);
            children(CCV_YANG_STEP_LIST);
            ccv_yang_list_end(out_);
        } else if (node->form == NodeForm::list_entry) {
            ccv_yang_list_entry_begin(out_, name, 1);
            children(CCV_YANG_STEP_LIST_ENTRY);
            ccv_yang_list_entry_end(out_);
        } else if (std::string(name) != "sequence-number") {
            leaf(node, name);
        }
    }

    void leaf(ccv_yang_node *node, const char *name) {
        std::vector<ccv_yang_keyword> table;
        for (const SchemaNode::Name &row : node->schema->names) {
            table.push_back({row.value, row.text.data()});
        }
        table.push_back({0, nullptr});
        std::uint32_t value = 0;
        char *text = nullptr;
        switch (node->schema->type) {
        case LeafType::enumeration:
            EXPECT_EQ(ccv_yang_get_enum(node, table.data(), &value), 0U);
            ccv_yang_enum(out_, name, table.data(), value);
            break;
        case LeafType::name_or_number:
            EXPECT_EQ(ccv_yang_get_enum_or_uint32(node, table.data(), &value), 0U);
            ccv_yang_enum_or_uint32(out_, name, table.data(), value);
            break;
        case LeafType::bits:
            EXPECT_EQ(ccv_yang_get_bits(node, table.data(), &value), 0U);
            ccv_yang_bits(out_, name, table.data(), value);
            break;
        case LeafType::number:
            EXPECT_EQ(ccv_yang_get_uint32(node, &value), 0U);
            ccv_yang_uint32(out_, name, value);
            break;
        case LeafType::boolean:
            EXPECT_EQ(ccv_yang_get_bool(node, &value), 0U);
            ccv_yang_bool(out_, name, value);
            break;
        case LeafType::ipv4:
            EXPECT_EQ(ccv_yang_get_ipv4(node, &value), 0U);
            ccv_yang_ipv4(out_, name, value);
            break;
        case LeafType::string:
            EXPECT_EQ(ccv_yang_get_string(node, &text), 0U);
            ccv_yang_string(out_, name, text);
            std::free(text);
            break;
        default:
            ccv_yang_empty(out_, name);
        }
    }

    Walk walk_;
    Output out_;
};

/// An object with a member for every node below `node`: a name or the largest number.
std::string everything(const SchemaNode &node) {
    static const char *const samples[] = {"",       "\"1\"",           "", "", "", "\"\"", "false",
                                          "[null]", "\"198.51.100.7\""}; // by LeafType
    std::string text;
    for (const SchemaNode &child : node.children) {
        text.append(text.empty() ? "{\"" : ",\"").append(child.name).append("\":");
        const bool number = child.type == LeafType::number ||
                            (child.type == LeafType::name_or_number && child.place % 2 == 0);
        if (child.kind == NodeKind::container) {
            text.append(everything(child));
        } else if (child.kind == NodeKind::list) {
            text.append("[").append(everything(child)).append("]");
        } else if (number) {
            text.append(std::to_string(child.largest));
        } else if (!child.names.empty()) {
            const char *name = child.names[child.names.size() / 2].text.data();
            text.append("\"").append(name).append("\"");
        } else {
            text.append(samples[static_cast<std::size_t>(child.type)]);
        }
    }
    return text.empty() ? "{}" : text.append("}");
}

TEST(YangRoundTrip, EveryNodeOfBothModulesComesBack) {
    for (const Schema schema : {base, um}) {
        const std::string whole = everything(modules().context().entry(schema));
        std::string text = whole;
        for (const Format format : {Format::xml, Format::json}) {
            // JSON to XML, and that back to JSON.
            const auto reader = make_validating_reader(
                modules(), schema, format == Format::xml ? Format::json : Format::xml);
            const auto writer = make_validating_writer(modules(), schema, format);
            ccv_yang_node *entry = reader->read(text, {});
            Copy copy(entry, writer->begin({"L", reader->sequence()}));
            copy.children(CCV_YANG_STEP_ENTRY);
            text.clear();
            writer->finish(text);
        }
        EXPECT_EQ(text, whole);
    }
}

} // namespace
} // namespace aceconv::testing
