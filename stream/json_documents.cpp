#include "stream/json_documents.h"

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {

JsonDocuments::JsonDocuments(Window window, std::optional<Schema> wanted)
    : window_(std::move(window)), cursor_(window_), schema_(wanted) {}

std::string JsonDocuments::list_path() const {
    return schema_ ? "/" + std::string(module_name(*schema_)) + ":acls/acl" +
                         (name_ ? "[name='" + *name_ + "']" : "[" + std::to_string(lists_) + "]")
                   : "";
}

/// A member's name; it may carry the document's own prefix.
std::string JsonDocuments::member_name(std::string_view what) {
    const std::string name = cursor_.string(what);
    cursor_.expect(':', "':'");
    const auto split = split_name(name);
    return split && (!split->schema || split->schema == schema_) ? std::string(split->local) : name;
}

void JsonDocuments::begin_document() {
    cursor_.expect('{', "a document");
    const std::string name = cursor_.string("the member \"acls\"");
    const auto split = split_name(name);
    if (!split || !split->schema || split->local != "acls") {
        throw StreamError("", "unknown member \"" + printable(name) + "\"; expected \"" +
                                  std::string(module_name(schema_.value_or(Schema::base))) +
                                  ":acls\"" + (schema_ ? "" : " or \"aceconv-um:acls\""));
    }
    if (schema_ && schema_ != split->schema) {
        throw StreamError("", "the document is of the " + std::string(schema_name(*split->schema)) +
                                  " schema; expected the " + std::string(schema_name(*schema_)) +
                                  " schema");
    }
    schema_ = split->schema;
    cursor_.expect(':', "':'");
    cursor_.expect('{', "an object");
    if (cursor_.peek() == '}') {
        state_ = end_document();
        return;
    }
    const std::string lists = member_name("the member \"acl\"");
    if (lists != "acl") {
        throw StreamError("/" + name,
                          "unknown member \"" + printable(lists) + "\"; expected \"acl\"");
    }
    cursor_.expect('[', "an array");
    state_ = cursor_.accept(']') ? end_document() : State::list;
}

void JsonDocuments::begin_list() {
    ++lists_;
    name_.reset();
    seen_entries_ = false;
    cursor_.expect('{', "an access list");
    first_ = true;
    state_ = State::members;
}

/// One member of a list, or the list's end.
JsonDocuments::State JsonDocuments::member() {
    if (cursor_.accept('}')) {
        if (!name_) {
            throw StreamError(list_path(), "an access list without \"name\"");
        }
        return held_.empty() ? State::after_list : State::held;
    }
    if (!first_) {
        cursor_.expect(',', "',' or '}'");
    }
    first_ = false;
    const std::string member = member_name("\"name\" or \"entry\"");
    if (member == "name") {
        if (name_) {
            throw StreamError(list_path(), "\"name\" is given twice");
        }
        std::string name = cursor_.string("the access list's name");
        if (const std::string fault = list_name_fault(name); !fault.empty()) {
            throw StreamError(list_path(), fault);
        }
        if (!names_.insert(name).second) {
            throw StreamError(list_path(), "a second access list of the name '" + name + "'");
        }
        name_ = std::move(name);
        return State::members;
    }
    if (member != "entry") {
        throw StreamError(list_path(), "unknown member \"" + printable(member) +
                                           "\"; expected \"name\" or \"entry\"");
    }
    if (seen_entries_) {
        throw StreamError(list_path(), "\"entry\" is given twice");
    }
    seen_entries_ = true;
    cursor_.expect('[', "an array of entries");
    first_ = true;
    return State::entries;
}

/// What is known of every entry of the current list.
void JsonDocuments::describe(Entry &entry) const {
    entry.key = {name_, std::nullopt};
    entry.schema = *schema_;
    entry.format = Format::json;
    entry.in_document = true;
}

/// The next element of an "entry" array; false at its end, and for one that has
/// been put aside.
bool JsonDocuments::take_entry(Entry &entry) {
    if (cursor_.accept(']')) {
        first_ = false;
        state_ = State::members;
        return false;
    }
    if (!first_) {
        cursor_.expect(',', "',' or ']'");
    }
    first_ = false;
    cursor_.peek();
    entry.position = {cursor_.line(), ++ordinal_};
    describe(entry);
    entry.text.clear();
    std::optional<DataError> fault;
    if (!cursor_.object(entry.text, max_entry_bytes, "an entry")) {
        fault.emplace(list_path(),
                      "an entry longer than " + std::to_string(max_entry_bytes) + " bytes");
    }
    if (!name_) {
        held_.push(entry, fault ? &*fault : nullptr);
        return false;
    }
    if (fault) {
        throw DataError(*fault);
    }
    return true;
}

/// The next entry that was put aside.
bool JsonDocuments::release(Entry &entry) {
    describe(entry);
    if (!held_.pop(entry)) {
        state_ = State::after_list;
        return false;
    }
    entry.key.acl = name_;
    return true;
}

JsonDocuments::State JsonDocuments::after_list() {
    if (cursor_.accept(',')) {
        return State::list;
    }
    cursor_.expect(']', "',' or ']'");
    return end_document();
}

JsonDocuments::State JsonDocuments::end_document() {
    lists_ = 0; // what follows stands in no list
    name_.reset();
    cursor_.expect('}', "'}', the end of \"acls\"");
    cursor_.expect('}', "'}', the end of the document");
    if (cursor_.peek() != -1) {
        cursor_.unexpected("nothing behind the document");
    }
    return State::end;
}

bool JsonDocuments::next(Entry &entry) {
    try {
        for (;;) {
            switch (state_) {
            case State::start:
                begin_document();
                break;
            case State::list:
                begin_list();
                break;
            case State::members:
                state_ = member();
                break;
            case State::entries:
                if (take_entry(entry)) {
                    return true;
                }
                break;
            case State::held:
                if (release(entry)) {
                    return true;
                }
                break;
            case State::after_list:
                state_ = after_list();
                break;
            case State::end:
                return false;
            }
        }
    } catch (const StreamError &fault) {
        entry.position = {cursor_.line(), ordinal_};
        entry.key = {name_, std::nullopt};
        state_ = State::end;
        throw StreamError(fault.path().empty() && lists_ > 0 ? list_path() : fault.path(),
                          fault.what());
    }
}

std::unique_ptr<Source> make_json_source(Window window, std::optional<Schema> schema) {
    return std::make_unique<JsonDocuments>(std::move(window), schema);
}

} // namespace aceconv
