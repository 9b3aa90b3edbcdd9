// Records that no encoder makes, through the decoders of both schemas and each emitter.
#include "fuzz/records.h"

#include <cstring>
#include <deque>
#include <type_traits>

#include "aceconv/plugin.h"
#include "fuzz/promises.h"

namespace aceconv::fuzz {
namespace {

constexpr unsigned first_member_step = 129;
constexpr unsigned end_step = 128;
static_assert(end_step + 1 == first_member_step);

void mark(ipv4_acl_config_ace &record, unsigned bit) {
    (bit < 64 ? record.ConfigurationMask : record.ConfigurationMask2) |= std::uint64_t{1}
                                                                         << (bit % 64);
}

/// A text of up to 40 characters, mostly of YANG.
std::string any_text(Pieces &pieces) {
    std::string text;
    for (unsigned left = pieces.number() % 41; left > 0; --left) {
        const char c = pieces.number<char>();
        text += c == '\0' ? 'x' : c;
    }
    return text;
}

class Builder {
  public:
    explicit Builder(Pieces &pieces) : pieces_(pieces) {}

    Bytes build() {
        const bag_descriptor &descriptor = codec(Backend::bulk).descriptor();
        static const auto members = bag_members(descriptor);
        while (!pieces_.empty()) {
            const unsigned step = pieces_.number();
            if (step == end_step) {
                break;
            }
            if (step < end_step) {
                mark(record_, step);
            } else {
                fill(members[(step - first_member_step) % members.size()]);
            }
        }
        record_.UDF = {static_cast<std::uint32_t>(fields_.size()), fields_.data()};
        return encode_record(descriptor, record_);
    }

  private:
    void fill(const BagMember &member) {
        auto *at = reinterpret_cast<std::uint8_t *>(&record_) + member.offset;
        if (member.type == "s") {
            texts_.push_back(any_text(pieces_));
            char *text = texts_.back().data();
            std::memcpy(at, &text, sizeof text);
        } else if (member.type.front() == 'a') {
            ace_udf_element field{};
            any_text(pieces_).copy(field.UDFName, sizeof field.UDFName - 1);
            field.UDFValue = pieces_.number<std::uint32_t>();
            field.UDFMask = pieces_.number<std::uint32_t>();
            fields_.push_back(field);
        } else {
            const auto number = pieces_.number<std::uint32_t>();
            std::memcpy(at, &number, std::min(member.width, sizeof number));
        }
    }

    Pieces &pieces_;
    ipv4_acl_config_ace record_{};
    std::deque<std::string> texts_;
    std::vector<ace_udf_element> fields_;
};

template <auto Emit>
std::uint32_t status_of(ccv_yang_output *output, const ipv4_acl_config_ace &record) {
    if constexpr (std::is_void_v<decltype(Emit(output, record))>) {
        Emit(output, record);
        return 0;
    } else {
        return Emit(output, record);
    }
}

struct Emitter {
    const char *around; // the container that the caller opens, or null
    std::uint32_t (*emit)(ccv_yang_output *, const ipv4_acl_config_ace &);
};
constexpr Emitter emitters[] = {
    {nullptr, status_of<acl_yang_ace_common>},
    {nullptr, status_of<acl_yang_protocol_common>},
    {nullptr, status_of<acl_yang_nexthops>},
    {nullptr, status_of<acl_yang_match_option_common>},
    {nullptr, status_of<acl_yang_tcp_flags>},
    {nullptr, status_of<acl_yang_police>},
    {"source", status_of<acl_yang_source_addr>},
    {"destination", status_of<acl_yang_dest_addr>},
    {"icmp", status_of<acl_yang_icmp>},
    {"dscp", status_of<acl_yang_dscp_fields>},
    {"packet-length", status_of<acl_yang_packet_length>},
    {"ttl", status_of<acl_yang_ttl>},
    {"fragment-offset", status_of<acl_yang_fragment_offset>},
    {"udf-entries", status_of<acl_yang_udf>},
    {"permit", status_of<acl_yang_udf>}, // which is not its place
};

/// What one emitter alone writes, or why it cannot.
std::string emitted(const Emitter &emitter, const ipv4_acl_config_ace &record,
                    EntryWriter &writer) {
    std::string text;
    try {
        ccv_yang_output *output = writer.begin({});
        ccv_yang_container_begin(output, "permit");
        if (emitter.around != nullptr) {
            ccv_yang_container_begin(output, emitter.around);
        }
        if (const std::uint32_t status = emitter.emit(output, record); status != 0) {
            return std::to_string(status);
        }
        if (emitter.around != nullptr) {
            ccv_yang_container_end(output);
        }
        ccv_yang_container_end(output);
        writer.finish(text);
    } catch (const DataError &fault) {
        return fault.path() + ": " + fault.what();
    }
    return text;
}

void check_emitter(const Emitter &emitter, const ipv4_acl_config_ace &record) {
    static Modules modules(ACECONV_MODULES);
    static const auto bulk = make_bulk_writer(modules, Schema::um);
    static const auto validating = make_validating_writer(modules, Schema::um, Format::json);
    require_same(emitted(emitter, record, *bulk), emitted(emitter, record, *validating),
                 "both backends write the same");
}

} // namespace

Bytes any_record(Pieces &pieces) {
    return Builder(pieces).build();
}

void check_record(Input bytes) {
    Pieces pieces(bytes);
    const unsigned bits = pieces.number();
    Bytes encoding;
    try {
        encoding = any_record(pieces);
    } catch (const DataError &) { // what no encoding holds
        return;
    }
    const Entry entry{.key = {"LIST", bits},
                      .schema = (bits & 1U) != 0 ? Schema::um : Schema::base,
                      .encoding = encoding};
    check_encoding(entry);
    const DecodedRecord record(codec(Backend::bulk).descriptor(), encoding);
    check_emitter(emitters[(bits >> 1U) % std::size(emitters)], record.get());
}

} // namespace aceconv::fuzz
