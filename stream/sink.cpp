#include "stream/sink.h"

#include <libxml/tree.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>

#include "stream/errors.h"
#include "stream/label.h"
#include "stream/text.h"

namespace aceconv {
namespace {

std::string json_quoted(const std::string &text) {
    return nlohmann::json(text).dump();
}

std::string xml_escaped(const std::string &text) {
    const std::unique_ptr<xmlChar, void (*)(xmlChar *)> escaped(
        xmlEncodeSpecialChars(nullptr, reinterpret_cast<const xmlChar *>(text.c_str())),
        [](xmlChar *p) { xmlFree(p); });
    return escaped ? reinterpret_cast<const char *>(escaped.get()) : "";
}

/// The pieces of a document around its entries; `%` stands for the list's name.
struct Frame {
    std::string open, close, empty;
    std::string begin_list, end_list, between_lists, between_entries;
    std::string (*quoted)(const std::string &);
    bool one_bare_entry; // there is no room for more than one outside a document
};

Frame frame(Format format, Schema schema) {
    const std::string module(module_name(schema));
    const std::string ns(module_namespace(schema));
    if (format == Format::json) {
        return {"{\"" + module + ":acls\":{\"acl\":[\n",
                "]}}\n",
                "{\"" + module + ":acls\":{}}\n",
                "{\"name\":%,\"entry\":[\n",
                "\n]}",
                ",\n",
                ",\n",
                json_quoted,
                false};
    }
    return {"<acls xmlns=\"" + ns + "\">\n",
            "</acls>\n",
            "<acls xmlns=\"" + ns + "\"/>\n",
            "<acl><name>%</name>\n",
            "\n</acl>\n",
            "",
            "\n",
            xml_escaped,
            true};
}

class DocumentSink : public Sink {
  public:
    DocumentSink(Frame frame, Output &output) : frame_(std::move(frame)), output_(output) {}

    void write(const EntryKey &key, std::string_view entry) override {
        if (!key.acl) {
            return write_bare(entry);
        }
        if (bare_ > 0) {
            throw DataError("", "a document cannot hold entries with and without an access list; "
                                "write ndjson instead");
        }
        if (!key.sequence) {
            throw DataError("", "a document has no place for an entry without a sequence number; "
                                "write ndjson instead");
        }
        if (key.acl != list_) {
            if (!lists_.insert(*key.acl).second) {
                throw DataError("", "the entries of this access list do not stand together, as a "
                                    "document needs; write ndjson instead");
            }
            output_.write(!list_ ? frame_.open : frame_.end_list + frame_.between_lists);
            std::string begin = frame_.begin_list;
            begin.replace(begin.find('%'), 1, frame_.quoted(*key.acl));
            output_.write(begin);
            list_ = key.acl;
        } else {
            output_.write(frame_.between_entries);
        }
        output_.write(entry);
    }

    void close() override {
        if (list_) {
            output_.write(frame_.end_list + (frame_.between_lists.empty() ? "" : "\n") +
                          frame_.close);
        } else if (bare_ == 0) {
            output_.write(frame_.empty);
        }
    }

  private:
    void write_bare(std::string_view entry) {
        if (list_) {
            throw DataError("", "a document cannot hold entries with and without an access list; "
                                "write ndjson instead");
        }
        if (frame_.one_bare_entry && bare_ > 0) {
            throw DataError("", "XML has no place for a second entry without an access list; "
                                "write ndjson instead");
        }
        ++bare_;
        output_.write(entry);
        output_.write("\n");
    }

    Frame frame_;
    Output &output_;
    std::optional<std::string> list_;
    std::set<std::string, std::less<>> lists_;
    std::uint64_t bare_ = 0;
};

class LineSink : public Sink {
  public:
    explicit LineSink(Output &output) : output_(output) {}
    void write(const EntryKey &key, std::string_view entry) override {
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
    Output &output_;
    std::optional<std::string> list_;
    std::string opening_; // what stands before its entries
};

class EncodingSink : public Sink {
  public:
    explicit EncodingSink(Output &output) : output_(output) {}
    void write(const EntryKey &key, std::string_view entry) override {
        label_.clear();
        append_label(label_, key);
        output_.write(label_);
        output_.write(entry);
    }
    void close() override {}

  private:
    Output &output_;
    std::string label_;
};

} // namespace

std::unique_ptr<Sink> make_sink(OutputFormat format, Schema schema, Output &output) {
    switch (format) {
    case OutputFormat::json:
    case OutputFormat::xml:
        return std::make_unique<DocumentSink>(frame(text_format(format), schema), output);
    case OutputFormat::ndjson:
        return std::make_unique<LineSink>(output);
    case OutputFormat::cbor:
        break;
    }
    return std::make_unique<EncodingSink>(output);
}

bool finish(Output &output, Sink &sink, bool stopped) {
    if (!stopped) {
        sink.close();
        output.commit();
    } else if (output.visible() && !output.empty()) {
        sink.close();
        output.flush();
    }
    return !stopped;
}

} // namespace aceconv
