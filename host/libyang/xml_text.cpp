#include "host/libyang/xml_text.h"

#include <algorithm>

#include "host/data_path.h"
#include "host/error.h"
#include "host/schema/suggestion.h"

namespace aceconv {

namespace {

constexpr std::string_view blanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1); // npos + 1 is 0
}

} // namespace

void XmlText::wrap(std::string_view text, const std::string &sequence, std::string &document,
                   SequenceText &found) {
    try {
        look(text);
    } catch (const DataError &) {
        found = found_;
        throw;
    }
    if (!found_.given) {
        document_.insert(content_, "<sequence-number>" + sequence + "</sequence-number>");
    }
    found = found_;
    document.swap(document_);
}

std::uint64_t XmlText::line_of(std::string_view text, std::uint64_t document_line,
                               std::size_t levels) {
    last_element_ = document_line - 1; // the first line is around the entry
    try {
        look(text);
    } catch (const DataError &) { // far enough
    }
    last_element_ = 0;
    return lines_[std::min(levels, max_depth - 1)];
}

void XmlText::look(std::string_view text) {
    restart();
    levels_.clear();
    elements_ = 0;
    found_ = {};
    text_.clear();
    const std::string space(module_namespace(schema_));
    document_ = "<acls xmlns=\"" + space + "\"><acl><name>-</name>";
    // What stands around the text declares the namespace for it, too.
    parse("<acls xmlns=\"" + space + "\">", false);
    parse(text, false);
    parse("</acls>", true);
    document_ += "</acl></acls>";
}

void XmlText::start(const Name &element, std::string_view attribute) {
    if (levels_.empty()) {
        levels_.push_back({nullptr});
        return;
    }
    if (++elements_ > max_entry_nodes) {
        throw DataError("", "more than " + std::to_string(max_entry_nodes) + " elements", line());
    }
    if (elements_ <= last_element_) {
        lines_[levels_.size() - 1] = line();
    }
    const SchemaNode &schema = child(element);
    if (!attribute.empty()) {
        refuse(levels_.size() == 1 ? "" : schema.name, attribute_fault(attribute));
    }
    levels_.back().parent = true;
    levels_.push_back({&schema});
    document_.append("\n<").append(schema.name).append(">");
    if (levels_.size() == 2) {
        content_ = document_.size();
    }
}

/// The schema of an element that may stand here.
const SchemaNode &XmlText::child(const Name &element) {
    Level &around = levels_.back();
    const bool is_entry = around.schema == nullptr;
    if (is_entry && (around.parent || element.local != entry_.name)) {
        refuse("", "expected one <entry> element");
    }
    if (element.space != module_namespace(schema_)) {
        refuse(is_entry ? "" : element.local, "unknown namespace \"" + std::string(element.space) +
                                                  "\"; expected \"" +
                                                  std::string(module_namespace(schema_)) + "\"");
    }
    if (is_entry) {
        return entry_;
    }
    const SchemaNode *found = around.schema->find(element.local);
    if (found == nullptr) {
        refuse(element.local, unknown_node(*around.schema, element.local));
    }
    const std::uint64_t bit = std::uint64_t{1} << found->place;
    if ((around.given & bit) != 0 && found->kind != NodeKind::list) {
        refuse(element.local, "the node is given more than once");
    }
    around.given |= bit;
    return *found;
}

void XmlText::end() {
    const Level &level = levels_.back();
    if (level.schema == nullptr) {
        if (!level.parent) {
            refuse("", "expected one <entry> element");
        }
    } else {
        if (level.schema->kind == NodeKind::leaf) {
            end_leaf(*level.schema);
        }
        document_.append("</").append(level.schema->name).append(">");
    }
    levels_.pop_back();
}

void XmlText::end_leaf(const SchemaNode &leaf) {
    document_ += xml_escaped(text_);
    Level &around = levels_[levels_.size() - 2];
    if (levels_.size() == 3 && leaf.key == "sequence-number") {
        found_.given = true;
        found_.first = elements_ == 2;
        found_.text = trimmed(text_);
    } else if (around.schema->kind == NodeKind::list && leaf.place == 0) {
        around.key = text_;
    }
    text_.clear();
}

void XmlText::text(std::string_view part) {
    const SchemaNode *schema = levels_.back().schema;
    if (schema != nullptr && schema->kind == NodeKind::leaf) {
        text_ += part;
    } else if (const std::string_view found = trimmed(part); !found.empty()) {
        refuse("", "unexpected text \"" + std::string(found) + "\"");
    }
}

/// At the element `child` of the innermost one, or at that itself for "".
void XmlText::refuse(std::string_view child, const std::string &why) const {
    std::string path;
    for (std::size_t i = 2; i < levels_.size(); ++i) {
        const Level &level = levels_[i];
        path.append("/").append(level.schema->name);
        if (!level.key.empty()) {
            path += key_predicate(level.schema->children.front().name, level.key);
        }
    }
    if (!child.empty()) {
        path.append("/").append(child);
    }
    throw DataError(path, why, line());
}

} // namespace aceconv
