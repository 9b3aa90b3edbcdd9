// The emitters.
#include "tools/hostcheck/emission.h"

namespace aceconv::hostcheck {
namespace {

const ccv_yang_keyword words[] = {{1, "one"}, {3, "three"}, {0, nullptr}};

/// Calls that are failures, whatever they return.
struct Failing {
    const char *what;
    void (*write)(Check &check, ccv_yang_output *output);
};

const Failing failing[] = {
    {"a value that no row holds",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_enum)(output, "grant", words, 2);
     }},
    {"a bit that no row holds",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_bits)(output, "tcp-bits", words, 1U << 2 | 1U << 1);
     }},
    {"the bit 31, which no row holds",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_bits)(output, "tcp-bits", words, 1U << 31);
     }},
    {"a null text",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_string)(output, "remark", nullptr);
     }},
    {"a control character, which YANG does not allow",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_string)(output, "remark", "a\x01z");
     }},
    {"text that is not UTF-8",
     [](Check &check, ccv_yang_output *output) {
         CALL(check, ccv_yang_string)(output, "remark", "a\xC3");
     }},
};

} // namespace

void emit_entries(Check &check) {
    for (const Entry &entry : entries) {
        const Tree tree(check, entry);
        Output output(check, entry.schema), other(check, entries[0].schema);
        const Overwritten texts = emit(check, output.handle(), entry, tree.node());
        CALL(check, ccv_yang_bool)(other.handle(), "capture", 7);
        check.expect(output.status() == 0, "keeps a failure where none was");
        output.expect(entry);
        check.at("any number other than 0 as a boolean");
        const Row capture[] = {{0, Kind::boolean, "capture", "true"}};
        other.expect({"", entries[0].schema, capture});
    }
}

void emit_failures(Check &check) {
    for (const Failing &failure : failing) {
        check.at(failure.what);
        Output output(check, HOSTCHECK_BASE);
        failure.write(check, output.handle());
        // Asked for without CALL, since the words are about the emitter.
        const std::uint32_t status = check.host.hostcheck_output_status(output.handle());
        check.expect(status != 0, "takes what it cannot write, and keeps no failure");
        const auto kept = [&] {
            check.expect(check.host.hostcheck_output_status(output.handle()) == status,
                         "changes the failure that the output keeps: the first one stays");
        };
        CALL(check, ccv_yang_uint32)(output.handle(), "qos-group", 1);
        kept();
        CALL(check, ccv_yang_string)(output.handle(), "remark", "text");
        kept();
    }
}

} // namespace aceconv::hostcheck
