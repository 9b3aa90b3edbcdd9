// Every platform call, allocation and bounded string call of representative
// conversions made to fail in turn: once, and from there on.
#include <gtest/gtest.h>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

constexpr uint32_t no_memory = 0x46B08200;

const char *const um_lists =
    "deny{udf-entries{udf[{udf-name=a udf-value=1 udf-mask=2}] udf[{udf-name=b}{udf-mask=3}]} "
    "counter=a counter=b tcp-flags{match-all{tcp-bits='+syn -ack'} match-any{tcp-bits=-fin}} "
    "police{value=1 unit=pps peak-rate=2 peak-unit=bps priority=low}} remark=a remark=b";

// What a converter returns when `call` is the first that failed: a code of its
// own, or nothing for results that are not taken over.
bool is_reader(const std::string &call) {
    return call.starts_with("get_") || call == "next" || call.starts_with("count") ||
           call.starts_with("first") || call.starts_with("finished") || call == "create" ||
           call == "init" || call == "encode" || call == "decode" || call == "memset_s" ||
           call == "strncpy_s";
}

uint32_t expected_status(const std::vector<std::string> &fired, uint32_t code) {
    for (const std::string &call : fired) {
        const bool ignored = call == "get_uint32:value" || call == "get_uint32:peak-rate" ||
                             call == "get_enum:priority" || call == "stored";
        if (call == "calloc" || call == "malloc" || call == "realloc" || call == "strdup") {
            return no_memory;
        }
        if (!ignored && is_reader(call)) {
            return code;
        }
        ++code;
    }
    return 0;
}

// Runs `convert` until no call is left to fail. The persistent run leaves handles
// set on failure as well.
template <typename Convert>
void sweep(const char *what, Convert convert) {
    for (const bool persistent : {false, true}) {
        for (int skip = 0;; ++skip) {
            Host host;
            host.event = skip % 2 == 0 ? Event::on : Event::none;
            host.handle_on_failure = persistent;
            host.failures = {{"", skip, 0xF100, persistent}};
            const uint32_t status = convert(host);
            const std::string failing = host.fired.empty() ? "nothing" : host.fired.front();
            SCOPED_TRACE(std::string(what) + ", call " + std::to_string(skip) + ", " + failing);
            ASSERT_EQ(status, expected_status(host.fired, 0xF100));
            ASSERT_EQ(host.leaks(), 0U);
            ASSERT_TRUE(host.faults.empty()) << host.faults.front();
            if (host.fired.empty()) {
                ASSERT_GT(skip, 0);
                break;
            }
        }
    }
}

TEST(FaultSweep, Encoders) {
    const char *stored = "UDF=a:1:2,b:3:4 remark='r' vrf1='v' | 2:0-1 2:8-9 2:16-17 31 39";
    const std::string base = base_entry().tree;
    const std::string um = um_entry().tree + " ";
    struct {
        const char *what;
        Schema schema;
        std::string tree;
        const char *stored;
    } const entries[] = {
        {"base smallest", Schema::base, "", nullptr},
        {"base typical", Schema::base,
         "grant=permit protocol=tcp destination-port{destination-operator=equal "
         "first-destination-port=www} remark='a b'",
         stored},
        {"base largest", Schema::base, base + base, stored},
        {"UM smallest", Schema::um, "", nullptr},
        {"UM typical", Schema::um, um_typical.tree, nullptr},
        {"UM largest", Schema::um, um + um, nullptr},
        {"UM lists", Schema::um, um_lists, nullptr},
    };
    for (const auto &entry : entries) {
        sweep(entry.what, [&entry](Host &host) {
            host.stored = entry.stored;
            return host.encode(entry.schema, entry.tree);
        });
    }
}

TEST(FaultSweep, Decoders) {
    for (const Schema schema : {Schema::base, Schema::um}) {
        for (const std::string &record :
             {std::string("|"), um_typical.record, base_entry().record, um_entry().record}) {
            sweep(record.c_str(), [&](Host &host) { return host.decode(schema, record); });
        }
    }
}

TEST(FaultSweep, Emitters) {
    using Status = uint32_t (*)(ccv_yang_output *, Record);
    using Silent = void (*)(ccv_yang_output *, Record);
    const Silent silent[] = {
        acl_yang_protocol_common, acl_yang_nexthops,      acl_yang_match_option_common,
        acl_yang_source_addr,     acl_yang_dest_addr,     acl_yang_icmp,
        acl_yang_dscp_fields,     acl_yang_packet_length, acl_yang_ttl,
        acl_yang_fragment_offset};
    const Status status[] = {acl_yang_ace_common, acl_yang_tcp_flags, acl_yang_udf,
                             acl_yang_police};
    for (const Silent emitter : silent) {
        sweep("emitter", [emitter](Host &host) { return host.emit(emitter, um_entry().record); });
    }
    for (const Status emitter : status) {
        sweep("emitter", [emitter](Host &host) { return host.emit(emitter, um_entry().record); });
    }
}

// A name test that fails is no match, so that an entry may lose leaves; which
// status that gives is told in fault_test.cpp. Nothing may leak or break.
TEST(FaultSweep, NameTests) {
    for (const std::string &tree : {um_entry().tree, std::string(um_lists)}) {
        for (const bool persistent : {false, true}) {
            for (int skip = 0;; ++skip) {
                Host host;
                host.failures = {{"strcmp_s", skip, 403, persistent}};
                const uint32_t status = host.encode(Schema::um, tree);
                ASSERT_TRUE(status == 0 || status == 0x46B08400 || status == 0x4DCB9200 ||
                            status == 0x4F96C600 || status - 403 < host.fired.size())
                    << skip << " " << status;
                ASSERT_EQ(host.leaks(), 0U) << skip;
                ASSERT_TRUE(host.faults.empty()) << skip;
                if (host.fired.empty()) {
                    ASSERT_GT(skip, 0);
                    break;
                }
            }
        }
    }
}

} // namespace
} // namespace aceconv::test
