// The plug-in over the host: entries to encodings and back.
#include <cstdio>
#include <vector>

#include "aceconv/keywords.h"
#include "tools/hostcheck/emission.h"

namespace aceconv::hostcheck {
namespace {

struct Converters {
    decltype(&ccv_custom_encoder_ipv4_acl_ace) encode;
    decltype(&ccv_custom_decoder_ipv4_acl_ace) decode;
};

Converters of(const Check &check, hostcheck_schema schema) {
    const Functions &host = check.host;
    return schema == HOSTCHECK_BASE ? Converters{host.ccv_custom_encoder_ipv4_acl_ace,
                                                 host.ccv_custom_decoder_ipv4_acl_ace}
                                    : Converters{host.ccv_custom_encoder_ipv4_acl_ace_um,
                                                 host.ccv_custom_decoder_ipv4_acl_ace_um};
}

std::string hexadecimal(std::uint32_t status) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", status);
    return text;
}

/// Where an encoder's bytes come to.
class Encoding {
  public:
    explicit Encoding(Check &check) : check_(check) {
        check.expect_success(CALL(check, hostcheck_encoding_create)(&a_, &b_));
    }
    ~Encoding() { CALL(check_, hostcheck_encoding_free)(a_, b_); }
    Encoding(const Encoding &) = delete;
    Encoding &operator=(const Encoding &) = delete;

    std::uint32_t encode(const Entry &entry, const Encoding *stored = nullptr) {
        const Tree tree(check_, entry);
        std::uint32_t length = 0;
        const std::uint8_t *const bytes = stored != nullptr ? stored->bytes(length) : nullptr;
        return of(check_, entry.schema).encode(tree.node(), bytes, length, a_, b_);
    }
    const std::uint8_t *bytes(std::uint32_t &length) const {
        return CALL(check_, hostcheck_encoding_bytes)(a_, b_, &length);
    }
    void expect_decoded(const Entry &entry) {
        Output output(check_, entry.schema);
        std::uint32_t length = 0;
        const std::uint8_t *const encoded = bytes(length);
        check_.calling("the decoder over this host");
        check_.expect_success(of(check_, entry.schema).decode(output.handle(), encoded, length));
        check_.expect(output.status() == 0, "keeps a failure where none was");
        output.expect(entry);
    }

  private:
    Check &check_;
    void *a_ = nullptr, *b_ = nullptr;
};

void encode_all_of(Check &check, Encoding &encoding, const Entry &entry,
                   const Encoding *stored = nullptr) {
    const std::uint32_t status = encoding.encode(entry, stored);
    check.calling("the encoder over this host");
    check.expect_success(status);
}

} // namespace

void convert_entries(Check &check) {
    check.calling("bag_register");
    check.expect_success(check.host.bag_register_all_ipv4_acl_bags());
    for (const Entry &entry : entries) {
        Encoding encoding(check);
        encode_all_of(check, encoding, entry);
        check.at(entry.name);
        encoding.expect_decoded(entry);
    }
    // The base schema has no leaves for user-defined fields; they come from what is stored.
    const Row plain[] = {sequence_number,
                         {0, Kind::keyword, "grant", "permit", acl_yang_acl_grant}};
    const Row fields[] = {
        sequence_number,
        {0, Kind::presence, "permit"},
        {1, Kind::container, "source"},
        {2, Kind::presence, "any"},
        {1, Kind::container, "destination"},
        {2, Kind::presence, "any"},
        {1, Kind::presence, "udf-entries"},
        {2, Kind::list, "udf"},
        {3, Kind::list_entry, "udf"},
        {4, Kind::string, "udf-name", "first"},
        {4, Kind::string, "udf-value", "1"},
        {4, Kind::string, "udf-mask", "ff"},
    };
    const Entry um{"an entry with a user-defined field", HOSTCHECK_UM, fields};
    Encoding stored(check), merged(check);
    encode_all_of(check, stored, um);
    encode_all_of(check, merged, {"a base entry over a stored encoding", HOSTCHECK_BASE, plain},
                  &stored);
    merged.expect_decoded(um);
}

void convert_with_failures(Check &check) {
    check.calling("bag_register");
    check.expect_success(check.host.bag_register_all_ipv4_acl_bags());
    // A node that the schema does not have: a host may refuse it on the way in.
    const Row unknown[] = {sequence_number,
                           {0, Kind::presence, "permit"},
                           {1, Kind::container, "source"},
                           {2, Kind::string, "no-such-leaf", "x"},
                           {0, Kind::string, "remark", "behind it"}};
    const Row value[] = {sequence_number,
                         {0, Kind::presence, "permit"},
                         {1, Kind::container, "source"},
                         {2, Kind::address, "address", "not an address"},
                         {0, Kind::string, "remark", "behind it"}};
    for (const Rows rows : {Rows(unknown), Rows(value)}) {
        const std::vector<hostcheck_row> given = for_host(rows);
        ccv_yang_node *const node = CALL(check, hostcheck_tree_create)(HOSTCHECK_UM, given.data());
        if (node == nullptr) {
            continue;
        }
        std::uint32_t expected = ACE_STATUS_UNKNOWN_LEAF, address = 0;
        walk(check, node, {"", HOSTCHECK_UM, rows}, [&](const Row &row, ccv_yang_node *at) {
            if (row.kind == Kind::address) {
                expected = CALL(check, ccv_yang_get_ipv4)(at, &address);
            }
        });
        check.at("the node " + quoted(rows[3]) + " of a um entry");
        void *out_a = nullptr, *out_b = nullptr;
        check.expect_success(CALL(check, hostcheck_encoding_create)(&out_a, &out_b));
        const std::uint32_t status =
            check.host.ccv_custom_encoder_ipv4_acl_ace_um(node, nullptr, 0, out_a, out_b);
        check.calling("the encoder over this host");
        check.expect(status == expected, "returns " + hexadecimal(status) + " for the failure " +
                                             hexadecimal(expected));
        CALL(check, hostcheck_encoding_free)(out_a, out_b);
        CALL(check, hostcheck_tree_free)(node);
    }
    check.at("bytes that are no encoding");
    Output output(check, HOSTCHECK_UM);
    const std::uint8_t bytes[] = {1, 2, 3};
    const std::uint32_t status =
        check.host.ccv_custom_decoder_ipv4_acl_ace_um(output.handle(), bytes, sizeof bytes);
    check.calling("bag_decode_v3");
    check.expect(status != 0, "accepts bytes that are no encoding");
    output.expect({"", HOSTCHECK_UM, {}});
}

} // namespace aceconv::hostcheck
