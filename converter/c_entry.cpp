// The calls for one entry: an input of one entry, and the verbs' work on it.
#include <algorithm>

#include "converter/c_converter.h"
#include "converter/inspection.h"
#include "stream/text.h"

namespace aceconv {
namespace {

/// Reads the one entry of an input.
void read_one(const aceconv_converter &converter, const aceconv_input &input, Entry &entry) {
    const auto schema = schema_of(input.schema);
    const std::string_view text(static_cast<const char *>(input.data), input.length);
    if (std::all_of(text.begin(), text.end(), is_json_blank)) {
        throw DataError("", "the input is empty");
    }
    const auto source =
        make_source(Window(text), input_format(input.format), schema ? schema : converter.schema);
    if (!source->next(entry)) {
        throw DataError("", "an input without an entry");
    }
    if (Entry second; source->next(second)) {
        entry.position = second.position;
        throw DataError("", "an input of more than one entry");
    }
    if (input.list != nullptr && !entry.key.acl) {
        if (const std::string fault = list_name_fault(input.list); !fault.empty()) {
            throw UsageError(fault);
        }
        entry.key.acl = input.list;
    }
    if (input.sequence != 0 && !entry.key.sequence) {
        entry.key.sequence = input.sequence;
    }
}

/// Has `work` make the product of the entry and gives the result.
template <class Work>
aceconv_code with_entry(aceconv_converter *converter, const aceconv_input *given,
                        const aceconv_result **result, Work work) {
    if (result != nullptr) {
        *result = nullptr;
    }
    if (converter == nullptr || result == nullptr) {
        return ACECONV_BAD_CALL;
    }
    return converter->run([&] {
        Product &product = converter->product;
        product.bytes.clear();
        product.changes.clear();
        product.words.clear();
        product.words_after.clear();
        converter->inspected.reset();
        const aceconv_input input = taken(given);
        Entry &entry = converter->entry;
        read_one(*converter, input, entry);
        work(input, entry, product);
        converter->result.set(entry, product,
                              converter->inspected ? &*converter->inspected : nullptr);
        *result = &converter->result.get();
    });
}

} // namespace
} // namespace aceconv

using namespace aceconv;

aceconv_code aceconv_encode(aceconv_converter *converter, const aceconv_input *entry,
                            const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(
        // cppcheck-suppress throwInNoexceptFunction ; the converter's run catches it
        converter, entry, result, [&](const aceconv_input &input, Entry &read, Product &product) {
            if (input.stored != nullptr && read.schema == Schema::um) {
                throw UsageError("an earlier encoding has no effect on entries of the UM schema");
            }
            encode_entry(converter->shop(), read,
                         {static_cast<const std::uint8_t *>(input.stored),
                          input.stored == nullptr ? 0 : input.stored_length},
                         product);
        });
}

aceconv_code aceconv_decode(aceconv_converter *converter, const aceconv_input *encoding,
                            aceconv_format format, const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(converter, encoding, result,
                      [&](const aceconv_input &, Entry &read, Product &product) {
                          if (format == ACECONV_FORMAT_TEXT) {
                              say_entry(converter->shop(), read, product);
                          } else {
                              decode_entry(converter->shop(), read, text_format(format), product);
                          }
                      });
}

aceconv_code aceconv_convert(aceconv_converter *converter, const aceconv_input *entry,
                             aceconv_schema to, aceconv_format format,
                             const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(
        // cppcheck-suppress throwInNoexceptFunction ; the converter's run catches it
        converter, entry, result, [&](const aceconv_input &, Entry &read, Product &product) {
            const auto schema = schema_of(to);
            if (!schema) {
                throw UsageError("no schema to convert to");
            }
            convert_entry(converter->shop(), read, *schema, text_format(format), product);
            read.schema = *schema;
        });
}

aceconv_code aceconv_inspect(aceconv_converter *converter, const aceconv_input *entry,
                             const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(converter, entry, result,
                      [&](const aceconv_input &, Entry &read, Product &product) {
                          converter->inspected = inspect_entry(converter->shop(), read, product);
                          product.bytes = inspection_json("", read, *converter->inspected);
                      });
}

aceconv_code aceconv_check(aceconv_converter *converter, const aceconv_input *entry,
                           const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(converter, entry, result,
                      [&](const aceconv_input &, Entry &read, Product &product) {
                          check_entry(converter->shop(), read, product);
                      });
}

aceconv_code aceconv_diff(aceconv_converter *converter, const aceconv_input *before,
                          const aceconv_input *after,
                          const aceconv_result **result) ACECONV_NOEXCEPT {
    return with_entry(
        // cppcheck-suppress throwInNoexceptFunction ; the converter's run catches it
        converter, before, result, [&](const aceconv_input &, Entry &read, Product &product) {
            const Workshop plain{*converter->codec, *converter->view, false};
            encode_to_compare(plain, read, product);
            const Bytes left(product.bytes.begin(), product.bytes.end());
            product.bytes.clear();
            Entry &other = converter->other;
            const aceconv_input input = taken(after);
            other.key = {};
            other.position = {};
            try {
                read_one(*converter, input, other);
                encode_to_compare(plain, other, product);
            } catch (...) {
                read.position = other.position; // for the error
                read.key = other.key;
                throw;
            }
            const Bytes right(product.bytes.begin(), product.bytes.end());
            product.bytes.clear();
            product.changes = differences(*converter->view, *converter->setup->plugin.descriptor,
                                          left, read.schema, right, other.schema);
        });
}
