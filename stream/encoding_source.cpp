// Encodings that follow each other as a CBOR sequence, with or without labels.
#include <string>

#include "host/bag_library.h"
#include "stream/errors.h"
#include "stream/label.h"
#include "stream/source.h"
#include "stream/text.h"

namespace aceconv {
namespace {

class EncodingSource : public Source {
  public:
    EncodingSource(Window window, std::optional<Schema> schema, std::shared_ptr<DigitLines> lines)
        : window_(std::move(window)), schema_(schema), lines_(std::move(lines)) {}

    bool next(Entry &entry) override {
        try {
            return take_entry(entry);
        } catch (const StreamError &fault) {
            if (fault.line() != 0) { // a digit's
                entry.position.line = fault.line();
            }
            throw;
        }
    }

    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }

  private:
    bool take_entry(Entry &entry) {
        entry.position = {line_, ordinal_ + 1};
        if (lines_ && label_.empty()) {
            window_.want(1);
            entry.position.line = line_ = lines_->line_of(offset_);
        }
        entry.key = {};
        entry.schema = schema_.value_or(Schema::base);
        entry.schema_known = schema_.has_value();
        entry.format.reset();
        if (label_.empty()) {
            if (!take_item(entry.encoding)) {
                return false;
            }
            if (!is_label(entry.encoding)) {
                ++ordinal_;
                return true;
            }
            label_.swap(entry.encoding);
        }
        std::optional<DataError> fault; // of the entry, whose encoding follows
        try {
            apply(parse_label(label_), entry);
        } catch (const DataError &e) {
            fault = e;
        }
        if (!take_item(entry.encoding) || is_label(entry.encoding)) {
            throw StreamError("", "a label without an encoding behind it");
        }
        label_.clear();
        ++ordinal_;
        if (fault) {
            entry.encoding.clear(); // nobody knows how to read it
            throw DataError(*fault);
        }
        return true;
    }

    void apply(const Label &label, Entry &entry) const {
        entry.key = label.key;
        if (!label.schema) {
            return;
        }
        if (schema_ && *label.schema != *schema_) {
            const std::string said(schema_name(*label.schema));
            const std::string wanted(schema_name(*schema_));
            throw DataError("", "labelled as of the " + said + " schema, not the " + wanted +
                                    " schema as asked for; what converts it is: convert --to " +
                                    wanted);
        }
        entry.schema = *label.schema;
        entry.schema_known = true;
    }

    /// The next item of the sequence; false at the end.
    bool take_item(Bytes &item) {
        for (;;) {
            const std::string_view view = window_.view();
            const std::span bytes(reinterpret_cast<const std::uint8_t *>(view.data()), view.size());
            const auto length = bytes.empty() ? std::nullopt
                                : end_        ? end_->length(bytes)
                                              : cbor_item_length(bytes);
            if (length && *length <= max_entry_bytes) {
                end_.reset();
                const auto taken = bytes.first(*length);
                item.assign(taken.begin(), taken.end());
                window_.take(*length);
                offset_ += *length;
                return true;
            }
            if (length || view.size() > max_entry_bytes) {
                fail(" is malformed or longer than " + std::to_string(max_entry_bytes) + " bytes");
            }
            if (!bytes.empty() && !end_) {
                end_.emplace();
            }
            if (window_.more()) {
                continue;
            }
            if (window_.view().empty()) {
                return false;
            }
            fail(" is cut off or malformed");
        }
    }

    [[noreturn]] void fail(const std::string &what) const {
        throw StreamError("", "the encoding at byte " + std::to_string(offset_) + what);
    }

    Window window_;
    std::optional<Schema> schema_;   // the only one that labels may name
    std::optional<CborItemEnd> end_; // of an item that was not there as a whole
    Bytes label_;                    // of the next encoding, once it has been read
    std::uint64_t ordinal_ = 0;
    std::uint64_t offset_ = 0;
    const std::shared_ptr<DigitLines> lines_; // null: there are none
    std::uint64_t line_ = 0;                  // of the label or encoding last begun
};

} // namespace

std::unique_ptr<Source> make_encoding_source(Window window, std::optional<Schema> schema,
                                             std::shared_ptr<DigitLines> lines) {
    return std::make_unique<EncodingSource>(std::move(window), schema, std::move(lines));
}

} // namespace aceconv
