// Entries of an XML document, or one <entry> element, read as a stream: no
// network, no document type, no entities.
#include <algorithm>
#include <deque>
#include <libxml/xmlreader.h>
#include <memory>
#include <set>

#include "stream/errors.h"
#include "stream/source.h"
#include "stream/text.h"

namespace aceconv {
namespace {

constexpr std::size_t xml_chunk = 4096;

std::string_view view_of(const xmlChar *text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char *>(text);
}

class XmlSource : public Source {
  public:
    XmlSource(Window window, std::optional<Schema> wanted)
        : window_(std::move(window)), schema_(wanted) {
        constexpr int options = XML_PARSE_NONET | XML_PARSE_COMPACT;
        reader_.reset(
            xmlReaderForIO(&XmlSource::read_chunk, nullptr, this, nullptr, nullptr, options));
        if (!reader_) {
            throw IoError("out of memory");
        }
        xmlTextReaderSetStructuredErrorHandler(reader_.get(), &XmlSource::take_error, this);
    }

    bool next(Entry &entry) override {
        try {
            for (;;) {
                if (releasing_ && !held_.empty()) {
                    entry = std::move(held_.front());
                    held_.pop_front();
                    entry.key.acl = name_;
                    return true;
                }
                releasing_ = false;
                if (!step()) {
                    return false;
                }
                if (node(entry)) {
                    return true;
                }
            }
        } catch (const StreamError &) {
            entry.position = {line(), ordinal_};
            entry.key = {name_, std::nullopt};
            throw;
        }
    }

    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }

  private:
    static int read_chunk(void *self, char *buffer, int size) {
        auto *source = static_cast<XmlSource *>(self);
        try {
            // Between two entries nothing is long, so this bounds what one may take.
            if (source->unmarked_ > max_entry_bytes + 4 * xml_chunk) {
                source->error_ =
                    "an entry longer than " + std::to_string(max_entry_bytes) + " bytes";
                return -1;
            }
            source->window_.want(1);
            const std::string_view view = source->window_.view();
            const std::size_t count =
                std::min({view.size(), static_cast<std::size_t>(size), xml_chunk});
            view.copy(buffer, count);
            source->window_.take(count);
            source->unmarked_ += count;
            return static_cast<int>(count);
        } catch (...) {
            source->failure_ = std::current_exception(); // not through the C library
            return -1;
        }
    }

    static void take_error(void *self, xmlError *error) {
        auto *source = static_cast<XmlSource *>(self);
        if (source->error_.empty() && error->message != nullptr) {
            source->error_ = error->message;
            while (!source->error_.empty() && source->error_.back() == '\n') {
                source->error_.pop_back();
            }
        }
    }

    [[nodiscard]] std::uint64_t line() const {
        const int at = xmlTextReaderGetParserLineNumber(reader_.get());
        return at > 0 ? static_cast<std::uint64_t>(at) : 1;
    }

    /// Moves to the next node; false at the end of the document.
    bool step() {
        const int status =
            skip_ ? xmlTextReaderNext(reader_.get()) : xmlTextReaderRead(reader_.get());
        skip_ = false;
        check(status);
        return status == 1;
    }

    void check(int status) {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (status < 0 || !error_.empty()) {
            throw StreamError("", "not well-formed XML: " + printable(error_));
        }
    }

    [[nodiscard]] bool named(std::string_view name) const {
        return view_of(xmlTextReaderConstLocalName(reader_.get())) == name;
    }

    [[noreturn]] void refuse(const std::string &what) const {
        throw StreamError(
            path_, what + " '" + printable(view_of(xmlTextReaderConstName(reader_.get()))) + "'");
    }

    /// Handles the current node; true when it was an entry that can be given out.
    bool node(Entry &entry) {
        switch (xmlTextReaderNodeType(reader_.get())) {
        case XML_READER_TYPE_ELEMENT:
            return element(entry);
        case XML_READER_TYPE_END_ELEMENT:
            if (named("acl")) {
                end_list();
            }
            return false;
        case XML_READER_TYPE_COMMENT:
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
        case XML_READER_TYPE_XML_DECLARATION:
            unmarked_ = 0;
            return false;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
            refuse("unexpected text");
        default: // document types, entities, processing instructions
            refuse("not allowed here:");
        }
    }

    void check_namespace() {
        const auto found =
            schema_of_namespace(view_of(xmlTextReaderConstNamespaceUri(reader_.get())));
        if (!found) {
            throw StreamError(
                "", "<" + printable(view_of(xmlTextReaderConstName(reader_.get()))) +
                        "> in an unknown namespace; expected \"" +
                        std::string(module_namespace(schema_.value_or(Schema::base))) + "\"");
        }
        if (schema_ && schema_ != found) {
            throw StreamError("", "<" + printable(view_of(xmlTextReaderConstName(reader_.get()))) +
                                      "> is of the " + std::string(schema_name(*found)) +
                                      " schema; expected the " +
                                      std::string(schema_name(*schema_)) + " schema");
        }
        schema_ = found;
    }

    bool element(Entry &entry) {
        check_namespace();
        const int depth = xmlTextReaderDepth(reader_.get());
        for (int more = xmlTextReaderMoveToFirstAttribute(reader_.get()); more == 1;
             more = xmlTextReaderMoveToNextAttribute(reader_.get())) {
            if (xmlTextReaderIsNamespaceDecl(reader_.get()) != 1) {
                refuse("unknown attribute");
            }
        }
        xmlTextReaderMoveToElement(reader_.get());
        unmarked_ = 0;
        if ((depth == 0 || depth == 2) && named("entry")) {
            return take_entry(entry, depth == 2);
        }
        if (depth == 0 && named("acls")) {
            path_ = "/" + std::string(module_name(*schema_)) + ":acls";
        } else if (depth == 1 && named("acl")) {
            ++lists_;
            name_.reset();
            path_ = "/" + std::string(module_name(*schema_)) + ":acls/acl[" +
                    std::to_string(lists_) + "]";
            if (xmlTextReaderIsEmptyElement(reader_.get()) == 1) {
                end_list();
            }
        } else if (depth == 2 && named("name")) {
            take_name();
        } else {
            refuse("unknown element");
        }
        return false;
    }

    void take_name() {
        if (name_) {
            throw StreamError(path_, "\"name\" is given twice");
        }
        const std::unique_ptr<xmlChar, void (*)(xmlChar *)> text(
            xmlTextReaderReadString(reader_.get()), [](xmlChar *p) { xmlFree(p); });
        std::string name(view_of(text.get()));
        if (const std::string fault = list_name_fault(name); !fault.empty()) {
            throw StreamError(path_, fault);
        }
        if (!names_.insert(name).second) {
            throw StreamError(path_, "a second access list of the name '" + name + "'");
        }
        name_ = std::move(name);
        path_.erase(path_.rfind('['));
        path_ += "[name='" + *name_ + "']";
        skip_ = true;
    }

    bool take_entry(Entry &entry, bool in_document) {
        entry.position = {line(), ++ordinal_};
        entry.key = {name_, std::nullopt};
        entry.schema = *schema_;
        entry.format = Format::xml;
        entry.in_document = in_document;
        const std::unique_ptr<xmlChar, void (*)(xmlChar *)> text(
            xmlTextReaderReadOuterXml(reader_.get()), [](xmlChar *p) { xmlFree(p); });
        check(text ? 0 : -1);
        entry.text = view_of(text.get());
        skip_ = true;
        unmarked_ = 0;
        if (entry.text.size() > 2 * max_entry_bytes) {
            throw DataError(path_,
                            "an entry longer than " + std::to_string(max_entry_bytes) + " bytes");
        }
        if (in_document && !name_) {
            held_.push_back(entry);
            return false;
        }
        return true;
    }

    void end_list() {
        if (!name_) {
            throw StreamError(path_, "an access list without \"name\"");
        }
        releasing_ = true;
    }

    Window window_;
    std::optional<Schema> schema_;
    std::unique_ptr<xmlTextReader, void (*)(xmlTextReader *)> reader_{nullptr, xmlFreeTextReader};
    std::exception_ptr failure_;
    std::string error_;
    std::size_t unmarked_ = 0; // bytes read since the last node that was handled
    bool skip_ = false;        // the current node's content has been dealt with
    std::string path_;
    std::uint64_t ordinal_ = 0;
    std::uint64_t lists_ = 0;
    std::optional<std::string> name_;
    std::set<std::string, std::less<>> names_;
    bool releasing_ = false;
    std::deque<Entry> held_;
};

} // namespace

std::unique_ptr<Source> make_xml_source(Window window, std::optional<Schema> schema) {
    return std::make_unique<XmlSource>(std::move(window), schema);
}

} // namespace aceconv
