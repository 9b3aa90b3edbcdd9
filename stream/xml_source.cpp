// Entries of XML documents that follow each other, each one <acls>, a part of it or what NETCONF
// and RESTCONF put around it, read as a stream. Only what stands around the entries is looked at
// here; an entry is handed on as it is written, with the namespaces that are declared around it.
#include <algorithm>
#include <set>
#include <vector>

#include "host/data_path.h"
#include "stream/errors.h"
#include "stream/source.h"
#include "stream/spool.h"
#include "stream/text.h"
#include "stream/xml_input.h"
#include "stream/xml_namespaces.h"
#include "stream/xml_places.h"

namespace aceconv {
namespace {

constexpr std::size_t max_namespace_bytes = 4096; // declared for any one element

constexpr std::size_t longest_error = 1000; // bytes of a server's words

class XmlSource : public Source, private XmlInput {
  public:
    XmlSource(Window window, std::optional<Schema> wanted, OtherModules others)
        : XmlInput(std::move(window)), wanted_(wanted), others_(others), schema_(wanted) {}

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
    [[nodiscard]] Surroundings surroundings() const override { return surroundings_; }

  private:
    // ---- On through the input ---------------------------------------------------------

    /// Goes on to the end of the next entry, or to the name that some wait for; false at the end of
    /// the input.
    bool advance() {
        try {
            return XmlInput::advance();
        } catch (const DataError &fault) {
            const bool cut_off = is_cut_off() && !open_.empty();
            fault_line_ = cut_off ? open_.back().line : fault.line();
            throw StreamError(path(), !cut_off     ? fault.what()
                                      : in_entry() ? "the input ends inside an entry"
                                                   : "the input ends inside the document");
        }
    }

    void begin_document() override {
        names_.clear();
        lists_ = 0;
    }

    [[nodiscard]] std::optional<std::uint64_t> needed() const override {
        return in_entry() ? std::optional(entry_begin_) : std::nullopt;
    }

    [[noreturn]] void refuse(const std::string &what) const { refuse(what, line()); }
    [[noreturn]] static void refuse(const std::string &what, std::uint64_t line) {
        throw DataError("", what, line);
    }

    /// Of the innermost list that is open.
    [[nodiscard]] std::string path() const {
        const Place place = around();
        if (!schema_ || (place != Place::acls && place != Place::acl && place != Place::name)) {
            return "";
        }
        std::string path = "/" + std::string(module_name(*schema_)) + ":acls";
        if (place != Place::acls) {
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
        XmlNamespaces::Prefixes declared = namespaces_.take_opened();
        if (++depth_ > max_levels) {
            refuse("more than " + std::to_string(max_levels) + " levels of elements");
        }
        if (opaque_depth_ != 0) {
            return;
        }
        const Place place = place_of(element);
        if (!attribute.empty() && !takes_attributes(place)) {
            refuse(attribute_fault(printable(attribute)));
        }
        if (place == Place::name && name_) {
            refuse("\"name\" is given twice");
        }
        open_.push_back({place, line()});
        takes_text_ =
            place == Place::name || (place == Place::error_part && is_error_text(element.local));
        if (place == Place::acl) {
            ++lists_;
            before_list_ = ordinal_;
        }
        if (place == Place::entry) {
            begin_entry(std::move(declared));
        } else if (place == Place::other) {
            opaque_depth_ = depth_;
        }
    }

    void end() override {
        if (depth_ == opaque_depth_) {
            end_opaque();
        } else if (opaque_depth_ == 0) {
            end_known();
        }
        open_.resize(std::min(open_.size(), --depth_), {});
    }

    void text(std::string_view part) override {
        if (takes_text_) {
            text_.append(part.substr(0, max_list_name_bytes + 1 - text_.size()));
        } else if (opaque_depth_ == 0 && around() != Place::error_part &&
                   !std::all_of(part.begin(), part.end(), is_json_blank)) {
            refuse("unexpected text");
        }
    }

    void instruction(std::string_view target) override {
        if (opaque_depth_ == 0) {
            refuse("unexpected processing instruction '" + printable(target) + "'");
        }
    }

    // ---- What stands around the entries -----------------------------------------------

    [[nodiscard]] Place around() const { return open_.empty() ? Place::input : open_.back().place; }

    Place place_of(const Name &element) {
        const auto schema = schema_of_namespace(element.space);
        if (schema) {
            expect_schema(element, *schema);
        }
        const Found found = find_place(element.space, element.local, around());
        if (found.place == Place::other && others_ == OtherModules::stepped_over) {
            surroundings_.stepped_over(std::string(element.space) + ":" +
                                       std::string(element.local));
        } else if (found.place == Place::other || (!found.place && !found.known_space)) {
            refuse("<" + printable(element.local) + "> in an unknown namespace; expected \"" +
                   std::string(module_namespace(schema_.value_or(Schema::base))) + "\"" +
                   (found.place ? step_over_hint : ""));
        } else if (!found.place) {
            refuse("unknown element '" + printable(element.local) + "'");
        }
        if (found.wraps) {
            surroundings_.unwrapped(element.local);
        }
        return *found.place;
    }

    /// Beside each other may stand what is of different schemas.
    void expect_schema(const Name &element, Schema schema) {
        const auto expected = modules_stand_in(around()) ? wanted_ : schema_;
        if (expected && expected != schema) {
            refuse("<" + printable(element.local) + "> is of the " +
                   std::string(schema_name(schema)) + " schema; expected the " +
                   std::string(schema_name(*expected)) + " schema");
        }
        if (schema_ != schema) { // whose lists are others
            names_.clear();
        }
        schema_ = schema;
    }

    void end_known() {
        const std::uint64_t line = open_.back().line;
        switch (around()) {
        case Place::name:
            end_name();
            break;
        case Place::acl:
            end_list();
            break;
        case Place::acls:
            lists_ = 0;
            break;
        case Place::error_part:
            if (takes_text_) {
                error_ += error_.size() < longest_error ? ": " + printable(text_) : "";
                text_.clear();
                takes_text_ = false;
            }
            break;
        case Place::error:
            refuse(error_reply + error_, line);
        case Place::ok:
            refuse("the reply says <ok/>, and holds no data", line);
        default:
            break;
        }
    }

    void end_opaque() {
        if (in_entry()) {
            end_entry();
        }
        opaque_depth_ = 0;
    }

    // ---- Lists ------------------------------------------------------------------------

    void end_name() {
        takes_text_ = false;
        std::string name = std::exchange(text_, {});
        if (const std::string fault = list_name_fault(name); !fault.empty()) {
            refuse(fault, open_.back().line);
        }
        if (!names_.insert(name).second) {
            refuse("a second access list of the name '" + name + "'", open_.back().line);
        }
        if (names_.size() > max_lists) {
            refuse(too_many_lists(), open_.back().line);
        }
        name_ = std::move(name);
        name_line_ = open_.back().line;
        releasing_ = !held_.empty();
        if (releasing_) {
            pause();
        }
    }

    void end_list() {
        if (!name_) {
            refuse("an access list without \"name\"", open_.back().line);
        }
        if (ordinal_ == before_list_) {
            empty_lists_.push_back({*name_, {name_line_, ordinal_}});
        }
        name_.reset();
    }

    // ---- Entries ----------------------------------------------------------------------

    [[nodiscard]] bool in_entry() const { return opaque_depth_ != 0 && around() == Place::entry; }

    void begin_entry(XmlNamespaces::Prefixes declared) {
        opaque_depth_ = depth_;
        entry_begin_ = piece_begin();
        own_prefixes_ = std::move(declared);
    }

    void end_entry() {
        entry_end_ = piece_end();
        entry_line_ = open_.back().line;
        in_document_ = open_.size() > 1;
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
        entry.position.before_list = before_list_;
        entry.text.clear();
        const auto text = bytes(entry_begin_, entry_end_);
        if (text) {
            const std::size_t name = std::min(text->find_first_of(" \t\r\n/>"), text->size());
            // What the entry declares itself is no longer in force.
            entry.text.append(*text, 0, name)
                .append(namespaces_.used_in(*text, own_prefixes_))
                .append(*text, name);
        }
        std::optional<DataError> fault;
        if (!text || entry.text.size() > max_entry_bytes) {
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
        entry.position.before_list = before_list_;
        return releasing_;
    }

    struct Open {
        Place place = Place::input;
        std::uint64_t line = 0;
    };

    const std::optional<Schema> wanted_;
    const OtherModules others_;
    Surroundings surroundings_;
    std::optional<Schema> schema_;
    std::uint64_t fault_line_ = 0;

    std::size_t depth_ = 0;
    std::vector<Open> open_;       // elements, no deeper than entries
    std::size_t opaque_depth_ = 0; // of the open element into which nobody looks here
    XmlNamespaces namespaces_;

    std::uint64_t lists_ = 0;
    std::optional<std::string> name_; // of the current list
    std::uint64_t name_line_ = 0;
    std::uint64_t before_list_ = 0; // entries
    bool takes_text_ = false;       // of a name, or of an error
    std::string text_;
    std::string error_;
    std::set<std::string, std::less<>> names_;
    Spool held_;
    bool releasing_ = false;

    std::uint64_t ordinal_ = 0;
    std::uint64_t entry_begin_ = 0;
    std::uint64_t entry_end_ = 0;
    std::uint64_t entry_line_ = 0;
    bool in_document_ = false;
    XmlNamespaces::Prefixes own_prefixes_; // which the entry declares itself
};

} // namespace

std::unique_ptr<Source> make_xml_source(Window window, std::optional<Schema> schema,
                                        OtherModules others) {
    return std::make_unique<XmlSource>(std::move(window), schema, others);
}

} // namespace aceconv
