#include <algorithm>

#include "host/error.h"
#include "host/schema/entry_text.h"

namespace aceconv {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view local_name(std::string_view name) {
    return name.substr(name.find(':') + 1); // npos + 1 is 0
}

/// Goes once over the tags of one element. What they hold is libyang's matter.
class XmlLook {
  public:
    XmlLook(std::string_view text, SequenceText &found) : text_(text), found_(found) {}

    void look() {
        for (at_ = text_.find('<'); at_ != std::string_view::npos; at_ = text_.find('<', at_)) {
            if (starts("<!--")) {
                skip("-->");
            } else if (starts("<![CDATA[")) {
                skip("]]>");
            } else if (starts("<?")) {
                skip("?>");
            } else if (starts("<!")) {
                throw DataError("", "document types are not accepted");
            } else if (starts("</")) {
                end_tag();
            } else {
                start_tag();
            }
        }
        if (elements_ == 0 || depth_ != 0) {
            throw DataError("", "expected one whole <entry> element");
        }
    }

    std::string_view name;   // the entry's, with its prefix
    std::size_t content = 0; // behind the entry's start tag
    bool closed = false;     // the start tag is an empty-element tag

  private:
    [[nodiscard]] bool starts(std::string_view mark) const {
        return text_.substr(at_, mark.size()) == mark;
    }

    void skip(std::string_view end) {
        const std::size_t found = text_.find(end, at_);
        if (found == std::string_view::npos) {
            throw DataError("", "the XML text ends early");
        }
        at_ = found + end.size();
    }

    void end_tag() {
        if (depth_ == 0) {
            throw DataError("", "an end tag without its start tag");
        }
        --depth_;
        skip(">");
    }

    /// Behind the tag that starts here; attribute values may hold '>'.
    [[nodiscard]] std::size_t tag_end() const {
        std::size_t at = at_;
        for (;;) {
            at = text_.find_first_of("\"'>", at);
            if (at != std::string_view::npos && text_[at] != '>') {
                at = text_.find(text_[at], at + 1);
            } else if (at != std::string_view::npos) {
                return at + 1;
            }
            if (at == std::string_view::npos) {
                throw DataError("", "the XML text ends early");
            }
            ++at;
        }
    }

    void start_tag() {
        if (++elements_ > max_entry_nodes) {
            throw DataError("", "more than " + std::to_string(max_entry_nodes) + " elements");
        }
        const std::size_t end = tag_end();
        const bool empty = text_[end - 2] == '/';
        const std::string_view tag =
            text_.substr(at_ + 1, text_.find_first_of(" \t\r\n/>", at_) - at_ - 1);
        if (depth_ == 0) {
            if (elements_ > 1 || local_name(tag) != "entry") {
                throw DataError("", "expected one <entry> element");
            }
            name = tag;
            content = end;
            closed = empty;
        } else if (depth_ == 1 && local_name(tag) == "sequence-number") {
            found_.given = true;
            found_.first = elements_ == 2;
            found_.text = text_.substr(end, text_.find('<', end) - end);
            found_.text.remove_prefix(
                std::min(found_.text.find_first_not_of(blanks), found_.text.size()));
            found_.text = found_.text.substr(0, found_.text.find_last_not_of(blanks) + 1);
        }
        depth_ += empty ? 0 : 1;
        at_ = end;
    }

    const std::string_view text_;
    SequenceText &found_;
    std::size_t at_ = 0;
    std::size_t depth_ = 0;
    std::size_t elements_ = 0;
};

} // namespace

void wrap_xml(std::string_view text, Schema schema, const std::string &sequence,
              std::string &document, SequenceText &found) {
    XmlLook look(text, found);
    look.look();
    const std::string space(module_namespace(schema));
    document = "<acls xmlns=\"" + space + "\"><acl><name>-</name>";
    if (found.given) {
        document += text;
    } else {
        document += text.substr(0, look.closed ? look.content - 2 : look.content);
        document += look.closed ? ">" : "";
        document += "<sequence-number xmlns=\"" + space + "\">" + sequence + "</sequence-number>";
        if (look.closed) {
            document.append("</").append(look.name).append(">");
        }
        document += text.substr(look.content);
    }
    document += "</acl></acls>";
}

} // namespace aceconv
