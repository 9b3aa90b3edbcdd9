// What stands behind aceconv/converter.h.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "aceconv/converter.h"
#include "converter/work.h"
#include "stream/codec.h"
#include "stream/errors.h"

namespace aceconv {

/// A callback's wish.
class Cancelled : public std::exception {};

/// The C form of what was made of an entry. Its texts are those of what it was made of,
/// which has to stay as it is.
class ShownResult {
  public:
    void set(const Entry &entry, const Product &product, const Inspected *inspected);
    [[nodiscard]] const aceconv_result &get() const { return result_; }

  private:
    aceconv_result result_{};
    std::vector<aceconv_change> changes_;
    std::vector<aceconv_field> fields_;
    std::vector<std::string> texts_; // of the fields
};

/// An error with the texts that it has.
class ShownError {
  public:
    /// Of the exception that is being handled, met at `entry` if not null.
    void set(const Entry *entry) noexcept;
    void clear() { error_ = {}; }
    [[nodiscard]] const aceconv_error &get() const { return error_; }

  private:
    aceconv_error error_{};
    std::string text_, path_;
    std::optional<std::string> list_;
};

// Of enumerators that callers give. Throw UsageError for numbers that are none.
std::optional<Schema> schema_of(aceconv_schema schema);
std::optional<InputFormat> input_format(aceconv_format format);
/// Of one entry's text.
Format text_format(aceconv_format format);

/// The struct that a caller filled in, as far as it knows it, and zero beyond.
template <class Struct>
Struct taken(const Struct *given) {
    Struct whole{};
    if (given == nullptr || given->size < sizeof given->size || given->size > sizeof whole) {
        throw UsageError("a struct whose size is not that of its type, or of an earlier version");
    }
    std::copy_n(reinterpret_cast<const unsigned char *>(given), given->size,
                reinterpret_cast<unsigned char *>(&whole));
    return whole;
}

} // namespace aceconv

struct aceconv_converter {
    std::optional<aceconv::CodecSetup> setup; // none if it could not be opened
    std::optional<aceconv::Schema> schema;    // of inputs
    bool losses = true;
    std::optional<aceconv::RecordView> view;
    std::unique_ptr<aceconv::Codec> codec;

    // Of the last call.
    aceconv::ShownError error;
    aceconv::Entry entry, other;
    aceconv::Product product;
    std::optional<aceconv::Inspected> inspected;
    aceconv::ShownResult result;
    bool busy = false; // inside a call

    [[nodiscard]] aceconv::Workshop shop() const { return {*codec, *view, losses}; }

    /// Runs a call; what it throws becomes the error and the code.
    template <class Call>
    aceconv_code run(Call call) noexcept {
        if (busy) { // a callback's call
            return ACECONV_BAD_CALL;
        }
        busy = true;
        error.clear();
        entry.position = {};
        entry.key = {};
        try {
            if (!codec) {
                throw aceconv::UsageError("a converter that could not be opened");
            }
            call();
        } catch (...) {
            error.set(&entry);
        }
        busy = false;
        return error.get().code;
    }
};
