#include "stream/sink.h"

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "host/json_scan.h"
#include "host/xml_parser.h"
#include "stream/errors.h"
#include "stream/label.h"
#include "stream/text.h"

namespace aceconv {
namespace {

/// The pieces of a document around its entries; `%` stands for the list's name,
/// in `open` and `empty` for the schema's.
struct Frame {
    std::string_view open, close, empty;
    std::string_view begin_list, end_list, between_lists, between_entries;
    std::string_view (*schema_text)(Schema);
    std::string (*quoted)(std::string_view);
    bool one_bare_entry; // there is no room for more than one outside a document
};

constexpr Frame json_frame = {"{\"%:acls\":{\"acl\":[\n",
                              "\n]}}\n",
                              "{\"%:acls\":{}}\n",
                              "{\"name\":%,\"entry\":[\n",
                              "\n]}",
                              ",\n",
                              ",\n",
                              module_name,
                              json_quoted,
                              false};
constexpr Frame xml_frame = {"<acls xmlns=\"%\">\n",
                             "</acls>\n",
                             "<acls xmlns=\"%\"/>\n",
                             "<acl><name>%</name>\n",
                             "\n</acl>\n",
                             "",
                             "\n",
                             module_namespace,
                             xml_escaped,
                             true};

std::string filled(std::string_view piece, std::string_view text) {
    std::string whole(piece);
    return whole.replace(whole.find('%'), 1, text);
}

/// The schema of an output of texts.
class TextSchema {
  public:
    explicit TextSchema(Schema of_none) : schema_(of_none) {}
    void require(Schema schema) {
        if (std::exchange(decided_, true) && schema != schema_) {
            throw DataError("", "an entry of the " + std::string(schema_name(schema)) +
                                    " schema; the output is of the " +
                                    std::string(schema_name(schema_)) + " schema");
        }
        schema_ = schema;
    }
    [[nodiscard]] Schema get() const { return schema_; }

  private:
    Schema schema_;
    bool decided_ = false; // by an entry
};

class DocumentSink : public Sink {
  public:
    DocumentSink(const Frame &frame, Schema schema, Taker &output)
        : frame_(frame), schema_(schema), output_(output) {}

    void write(const EntryKey &key, Schema schema, std::string_view entry) override {
        if (!key.acl) {
            return write_bare(schema, entry);
        }
        if (bare_ > 0) {
            throw DataError("", "a document cannot hold entries with and without an access list; "
                                "write ndjson instead");
        }
        if (!key.sequence) {
            throw DataError("", "a document has no place for an entry without a sequence number; "
                                "write ndjson instead");
        }
        schema_.require(schema);
        if (key.acl != list_) {
            if (!lists_.insert(*key.acl).second) {
                throw DataError("", "the entries of this access list do not stand together, as a "
                                    "document needs; write ndjson instead");
            }
            if (list_) {
                output_.write(frame_.end_list);
                output_.write(frame_.between_lists);
            } else {
                output_.write(filled(frame_.open, frame_.schema_text(schema)));
            }
            output_.write(filled(frame_.begin_list, frame_.quoted(*key.acl)));
            list_ = key.acl;
        } else {
            output_.write(frame_.between_entries);
        }
        output_.write(entry);
    }

    void close() override {
        if (list_) {
            output_.write(frame_.end_list);
            output_.write(frame_.close);
        } else if (bare_ == 0) {
            output_.write(filled(frame_.empty, frame_.schema_text(schema_.get())));
        }
    }

  private:
    void write_bare(Schema schema, std::string_view entry) {
        if (list_) {
            throw DataError("", "a document cannot hold entries with and without an access list; "
                                "write ndjson instead");
        }
        if (frame_.one_bare_entry && bare_ > 0) {
            throw DataError("", "XML has no place for a second entry without an access list; "
                                "write ndjson instead");
        }
        schema_.require(schema);
        ++bare_;
        output_.write(entry);
        output_.write("\n");
    }

    const Frame &frame_;
    TextSchema schema_;
    Taker &output_;
    std::optional<std::string> list_;
    std::set<std::string, std::less<>> lists_;
    std::uint64_t bare_ = 0;
};

class LineSink : public Sink {
  public:
    LineSink(Schema schema, Taker &output) : schema_(schema), output_(output) {}
    void write(const EntryKey &key, Schema schema, std::string_view entry) override {
        schema_.require(schema);
        if (key.acl != list_) {
            list_ = key.acl;
            opening_ = key.acl ? "{\"acl\":" + json_quoted(*key.acl) + ",\"entry\":" : "";
        }
        output_.write(opening_);
        output_.write(entry);
        output_.write(key.acl ? "}\n" : "\n");
    }
    void close() override {}

  private:
    TextSchema schema_;
    Taker &output_;
    std::optional<std::string> list_;
    std::string opening_; // what stands before its entries
};

class EncodingSink : public Sink {
  public:
    EncodingSink(bool labels, Taker &output) : labels_(labels), output_(output) {}
    void write(const EntryKey &key, Schema schema, std::string_view entry) override {
        if (labels_) {
            label_.clear();
            append_label(label_, key, schema);
            output_.write(label_);
        }
        output_.write(entry);
    }
    void close() override {}

  private:
    const bool labels_;
    Taker &output_;
    std::string label_;
};

/// Entries of a list stand below its name, each behind two blanks; those of none without.
class WordSink : public Sink {
  public:
    explicit WordSink(Taker &output) : output_(output) {}
    void write(const EntryKey &key, Schema /*schema*/, std::string_view entry) override {
        if (key.acl && key.acl != list_) {
            output_.write("acl " + in_quotes(*key.acl) + "\n");
        }
        list_ = key.acl;
        output_.write(list_ ? "  " : "");
        output_.write(entry);
        output_.write("\n");
    }
    void close() override {}

  private:
    Taker &output_;
    std::optional<std::string> list_;
};

} // namespace

std::unique_ptr<Sink> make_sink(OutputFormat format, Schema schema, Taker &output) {
    switch (format) {
    case OutputFormat::json:
        return std::make_unique<DocumentSink>(json_frame, schema, output);
    case OutputFormat::xml:
        return std::make_unique<DocumentSink>(xml_frame, schema, output);
    case OutputFormat::ndjson:
        return std::make_unique<LineSink>(schema, output);
    case OutputFormat::text:
        return std::make_unique<WordSink>(output);
    case OutputFormat::cbor:
    case OutputFormat::bare_cbor:
        break;
    }
    return std::make_unique<EncodingSink>(format == OutputFormat::cbor, output);
}

} // namespace aceconv
