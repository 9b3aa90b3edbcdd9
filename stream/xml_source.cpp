// Entries of an XML document, or one <entry> element, read as a stream. Only what
// stands around the entries is looked at here; an entry is handed on as it is
// written, with the namespaces that are declared around it.
#include <algorithm>
#include <set>
#include <vector>

#include "host/data_path.h"
#include "host/xml_parser.h"
#include "stream/errors.h"
#include "stream/source.h"
#include "stream/spool.h"
#include "stream/text.h"
#include "stream/xml_namespaces.h"

namespace aceconv {
namespace {

constexpr std::size_t max_depth = 256;            // levels of elements
constexpr std::size_t max_namespace_bytes = 4096; // declared for any one element

std::string longer_than(std::size_t bytes) {
    return "longer than " + std::to_string(bytes) + " bytes";
}

class XmlSource : public Source, private XmlParser {
  public:
    XmlSource(Window window, std::optional<Schema> wanted)
        : window_(std::move(window)), schema_(wanted) {}

    bool next(Entry &entry) override {
        try {
            while (releasing_ || advance()) {
                if (releasing_ ? release(entry) : take_entry(entry)) {
                    return true;
                }
            }
            return false;
        } catch (const StreamError &) {
            entry.position = {fault_line_, ordinal_};
            entry.key = {name_, std::nullopt};
            throw;
        }
    }

    [[nodiscard]] std::optional<Schema> schema() const override { return schema_; }

  private:
    // ---- On through the input ---------------------------------------------------------

    /// Goes on to the end of the next entry, or to the name that some wait for; false at the end of
    /// the input.
    bool advance() {
        try {
            while (!ended_) {
                paused_ = !(paused_ ? resume() : feed());
                if (paused_) {
                    return true;
                }
                ended_ = last_;
            }
            return false;
        } catch (const DataError &fault) {
            ended_ = true;
            const bool cut_off = last_ && !lines_.empty();
            fault_line_ = cut_off ? lines_.back() : fault.line();
            throw StreamError(path(), !cut_off     ? fault.what()
                                      : in_entry() ? "the input ends inside an entry"
                                                   : "the input ends inside the document");
        }
    }

    bool feed() {
        // Of what has been read, the parser keeps a piece that is not complete, and
        // this the entry from its begin on.
        const std::uint64_t read = first_ + bytes_.size();
        if (read - piece_begin() > max_entry_bytes) {
            refuse(in_entry() ? "an entry " + longer_than(max_entry_bytes)
                              : "a tag, a comment or blanks " + longer_than(max_entry_bytes));
        }
        fits_ = fits_ && (!in_entry() || read - entry_begin_ <= max_entry_bytes);
        const std::uint64_t needed = in_entry() && fits_ ? entry_begin_ : piece_begin();
        bytes_.erase(0, needed - first_);
        first_ = needed;
        window_.want(1);
        const std::string_view view = window_.view();
        last_ = view.empty();
        bytes_ += view;
        window_.take(view.size()); // which leaves it where it is
        return parse(view, last_);
    }

    [[noreturn]] void refuse(const std::string &what) const { refuse(what, line()); }
    [[noreturn]] static void refuse(const std::string &what, std::uint64_t line) {
        throw DataError("", what, line);
    }

    /// Of the innermost list that is open.
    [[nodiscard]] std::string path() const {
        if (!schema_ || lines_.empty() || in_entry()) {
            return "";
        }
        std::string path = "/" + std::string(module_name(*schema_)) + ":acls";
        if (lines_.size() > 1) {
            path += "/acl";
            path += name_ ? key_predicate("name", *name_) : "[" + std::to_string(lists_) + "]";
        }
        return path;
    }

    // ---- The pieces of the document ---------------------------------------------------

    void open_namespace(std::string_view prefix, std::string_view space) override {
        namespaces_.open(prefix, space);
        if (namespaces_.bytes() > max_namespace_bytes) {
            refuse("namespace declarations " + longer_than(max_namespace_bytes));
        }
    }

    void close_namespace(std::string_view prefix) override { namespaces_.close(prefix); }

    void start(const Name &element, std::string_view attribute) override {
        namespaces_.begin_element();
        if (++depth_ > max_depth) {
            refuse("more than " + std::to_string(max_depth) + " levels of elements");
        }
        if (in_entry()) {
            return;
        }
        check_namespace(element);
        if (!attribute.empty()) {
            refuse("unknown attribute '" + printable(attribute) + "'");
        }
        const std::string_view name = element.local;
        if (!(depth_ == 1   ? name == "acls" || name == "entry"
              : depth_ == 2 ? name == "acl"
                            : depth_ == 3 && (name == "name" || name == "entry"))) {
            refuse("unknown element '" + printable(name) + "'");
        }
        if (name == "name" && name_) {
            refuse("\"name\" is given twice");
        }
        lines_.push_back(line());
        in_name_ = name == "name";
        lists_ += name == "acl" ? 1 : 0;
        if (name == "entry") {
            begin_entry();
        }
    }

    void end() override {
        if (depth_ == entry_depth_) {
            end_entry();
        } else if (!in_entry() && depth_ == 3) {
            end_name();
        } else if (!in_entry() && depth_ == 2) {
            end_list();
        }
        lines_.resize(std::min(lines_.size(), --depth_));
    }

    void text(std::string_view part) override {
        if (in_name_) {
            text_.append(part.substr(0, max_list_name_bytes + 1 - text_.size()));
        } else if (!in_entry() && !std::all_of(part.begin(), part.end(), is_json_blank)) {
            refuse("unexpected text");
        }
    }

    void instruction(std::string_view target) override {
        if (!in_entry()) {
            refuse("unexpected processing instruction '" + printable(target) + "'");
        }
    }

    void check_namespace(const Name &element) {
        const std::string shown = "<" + printable(element.local) + ">";
        const auto found = schema_of_namespace(element.space);
        if (!found) {
            refuse(shown + " in an unknown namespace; expected \"" +
                   std::string(module_namespace(schema_.value_or(Schema::base))) + "\"");
        }
        if (schema_ && schema_ != found) {
            refuse(shown + " is of the " + std::string(schema_name(*found)) +
                   " schema; expected the " + std::string(schema_name(*schema_)) + " schema");
        }
        schema_ = found;
    }

    // ---- Lists ------------------------------------------------------------------------

    void end_name() {
        in_name_ = false;
        std::string name = std::exchange(text_, {});
        if (const std::string fault = list_name_fault(name); !fault.empty()) {
            refuse(fault, lines_.back());
        }
        if (!names_.insert(name).second) {
            refuse("a second access list of the name '" + name + "'", lines_.back());
        }
        name_ = std::move(name);
        releasing_ = !held_.empty();
        if (releasing_) {
            pause();
        }
    }

    void end_list() {
        if (!name_) {
            refuse("an access list without \"name\"", lines_.back());
        }
        name_.reset();
    }

    // ---- Entries ----------------------------------------------------------------------

    [[nodiscard]] bool in_entry() const { return entry_depth_ != 0; }

    void begin_entry() {
        entry_depth_ = depth_;
        entry_begin_ = piece_begin();
        fits_ = true;
        declarations_ = namespaces_.inherited();
    }

    void end_entry() {
        entry_end_ = piece_end();
        entry_line_ = lines_.back();
        in_document_ = entry_depth_ > 1;
        entry_depth_ = 0;
        pause();
    }

    /// What is known of every entry.
    void describe(Entry &entry) const {
        entry.key = {name_, std::nullopt};
        entry.schema = *schema_;
        entry.format = Format::xml;
        entry.in_document = in_document_;
    }

    /// The entry that has just ended; false for one that has been put aside.
    bool take_entry(Entry &entry) {
        describe(entry);
        entry.position = {entry_line_, ++ordinal_};
        entry.text.clear();
        if (fits_) {
            entry.text.assign(bytes_, entry_begin_ - first_, entry_end_ - entry_begin_);
            entry.text.insert(entry.text.find_first_of(" \t\r\n/>"), declarations_);
        }
        std::optional<DataError> fault;
        if (!fits_ || entry.text.size() > max_entry_bytes) {
            fault.emplace("", "an entry " + longer_than(max_entry_bytes));
        }
        if (in_document_ && !name_) {
            held_.push(entry, fault ? &*fault : nullptr);
            return false;
        }
        if (fault) {
            throw DataError(*fault);
        }
        return true;
    }

    /// The next entry that was put aside, now that its list's name is known.
    bool release(Entry &entry) {
        describe(entry);
        releasing_ = held_.pop(entry);
        entry.key.acl = name_;
        return releasing_;
    }

    Window window_;
    std::optional<Schema> schema_;
    bool paused_ = false; // the parser
    bool last_ = false;   // the input has been read to its end
    bool ended_ = false;
    std::uint64_t fault_line_ = 0;
    std::string bytes_;       // of the input that may be needed yet,
    std::uint64_t first_ = 0; // and where they stand in it

    std::size_t depth_ = 0;
    std::vector<std::uint64_t> lines_; // of the open elements, no deeper than entries
    XmlNamespaces namespaces_;

    std::uint64_t lists_ = 0;
    std::optional<std::string> name_; // of the current list
    bool in_name_ = false;
    std::string text_;
    std::set<std::string, std::less<>> names_;
    Spool held_;
    bool releasing_ = false;

    std::uint64_t ordinal_ = 0;
    std::size_t entry_depth_ = 0; // of the open entry
    std::uint64_t entry_begin_ = 0;
    std::uint64_t entry_end_ = 0;
    std::uint64_t entry_line_ = 0;
    bool fits_ = true;
    bool in_document_ = false;
    std::string declarations_;
};

} // namespace

std::unique_ptr<Source> make_xml_source(Window window, std::optional<Schema> schema) {
    return std::make_unique<XmlSource>(std::move(window), schema);
}

} // namespace aceconv
