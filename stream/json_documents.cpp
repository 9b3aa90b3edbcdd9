#include "stream/json_documents.h"

#include <utility>

#include "stream/errors.h"
#include "stream/text.h"

namespace aceconv {

// The characters that must follow before a value can be taken, and what they begin.
constexpr JsonDocuments::Due before_value[] = {{':', "':'"}};
constexpr JsonDocuments::Due before_lists[] = {{':', "':'"}, {'[', "an array"}};
constexpr JsonDocuments::Due before_list[] = {{'{', "an access list"}};
constexpr JsonDocuments::Due before_entries[] = {{':', "':'"}, {'[', "an array of entries"}};
constexpr JsonDocuments::Due after_acls[] = {{'}', "'}', the end of \"acls\""}};

JsonDocuments::JsonDocuments(Window window, std::optional<Schema> wanted, OtherModules others)
    : window_(std::move(window)), cursor_(window_), wanted_(wanted), others_(others),
      schema_(wanted) {
    begin_document();
}

std::string JsonDocuments::list_path() const {
    return schema_ ? "/" + std::string(module_name(*schema_)) + ":acls/acl" +
                         (name_ ? "[name='" + *name_ + "']" : "[" + std::to_string(lists_) + "]")
                   : "";
}

/// A member's name; it may carry the document's own prefix.
std::string JsonDocuments::member_name(std::string_view what) {
    const std::string name = cursor_.string(what);
    const auto split = split_name(name);
    return split && (!split->schema || split->schema == schema_) ? std::string(split->local) : name;
}

void JsonDocuments::take_acls() {
    if (cursor_.peek() == '}') {
        end_acls();
        return;
    }
    const std::string lists = member_name("the member \"acl\"");
    if (lists != "acl") {
        throw StreamError("/" + std::string(module_name(*schema_)) + ":acls",
                          "unknown member \"" + printable(lists) + "\"; expected \"acl\"");
    }
    due_ = before_lists;
    state_ = State::lists;
}

void JsonDocuments::begin_list() {
    ++lists_;
    name_.reset();
    before_list_ = ordinal_;
    seen_entries_ = false;
    first_ = true;
    due_ = before_list;
    state_ = State::members;
}

/// What comes before a member of a list, or the list's end.
void JsonDocuments::next_member() {
    if (cursor_.accept('}')) {
        if (!name_) {
            throw StreamError(list_path(), "an access list without \"name\"");
        }
        if (ordinal_ == before_list_) {
            empty_lists_.push_back({*name_, {name_line_, ordinal_}});
        }
        state_ = held_.empty() ? State::after_list : State::held;
        return;
    }
    if (!first_) {
        cursor_.expect(',', "',' or '}'");
    }
    first_ = false;
    state_ = State::member;
}

void JsonDocuments::take_member() {
    const std::string member = member_name("\"name\" or \"entry\"");
    if (member != "name" && member != "entry") {
        throw StreamError(list_path(), "unknown member \"" + printable(member) +
                                           "\"; expected \"name\" or \"entry\"");
    }
    const bool entries = member == "entry";
    if (entries ? seen_entries_ : name_.has_value()) {
        throw StreamError(list_path(), "\"" + member + "\" is given twice");
    }
    seen_entries_ = seen_entries_ || entries;
    first_ = entries;
    due_ = entries ? std::span<const Due>(before_entries) : before_value;
    state_ = entries ? State::entries : State::name;
}

void JsonDocuments::take_name() {
    std::string name = cursor_.string("the access list's name");
    name_line_ = cursor_.line();
    if (const std::string fault = list_name_fault(name); !fault.empty()) {
        throw StreamError(list_path(), fault);
    }
    if (!names_.insert(name).second) {
        throw StreamError(list_path(), "a second access list of the name '" + name + "'");
    }
    if (names_.size() > max_lists) {
        throw StreamError("", too_many_lists());
    }
    name_ = std::move(name);
    state_ = State::members;
}

/// What is known of every entry of the current list.
void JsonDocuments::describe(Entry &entry) const {
    entry.key = {name_, std::nullopt};
    entry.schema = *schema_;
    entry.format = Format::json;
    entry.in_document = lists_ > 0;
}

/// What comes before an element of an "entry" array, or the array's end.
void JsonDocuments::next_entry() {
    if (cursor_.accept(']')) {
        first_ = false;
        state_ = lists_ > 0 ? State::members : State::document;
        return;
    }
    if (!first_) {
        cursor_.expect(',', "',' or ']'");
    }
    first_ = false;
    state_ = State::entry;
}

/// The next element of an "entry" array; false for one that has been put aside.
bool JsonDocuments::take_entry(Entry &entry) {
    describe(entry);
    const bool fits = cursor_.object(entry.text, max_entry_bytes, "an entry");
    entry.position = {cursor_.object_line(), ++ordinal_};
    entry.position.before_list = before_list_;
    state_ = State::entries;
    std::optional<DataError> fault;
    if (!fits) {
        fault.emplace(list_path(),
                      "an entry longer than " + std::to_string(max_entry_bytes) + " bytes");
    }
    if (lists_ > 0 && !name_) {
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
    entry.position.before_list = before_list_;
    return true;
}

void JsonDocuments::after_list() {
    if (cursor_.accept(',')) {
        begin_list();
        return;
    }
    cursor_.expect(']', "',' or ']'");
    end_acls();
}

void JsonDocuments::end_acls() {
    lists_ = 0; // what follows stands in no list
    name_.reset();
    if (in_acls_) {
        due_ = after_acls;
    }
    first_ = false;
    state_ = State::document;
}

/// One step through the document; true when it was an entry that can be given out.
bool JsonDocuments::step(Entry &entry) {
    switch (state_) {
    case State::document:
        next_module();
        break;
    case State::module:
        take_module();
        break;
    case State::other:
        cursor_.skip("a value");
        state_ = State::document;
        break;
    case State::errors:
        refuse_errors();
        break;
    case State::acls:
        take_acls();
        break;
    case State::lists:
        cursor_.accept(']') ? end_acls() : begin_list();
        break;
    case State::members:
        next_member();
        break;
    case State::member:
        take_member();
        break;
    case State::name:
        take_name();
        break;
    case State::entries:
        next_entry();
        break;
    case State::entry:
        return take_entry(entry);
    case State::held:
        return release(entry);
    case State::after_list:
        after_list();
        break;
    case State::tail:
        if (const int next = cursor_.peek(); next == '{') {
            begin_document();
        } else if (next != -1) {
            cursor_.unexpected("another document or nothing");
        } else {
            state_ = State::end;
        }
        break;
    case State::end:
        break;
    }
    return false;
}

bool JsonDocuments::next(Entry &entry) {
    try {
        while (state_ != State::end) {
            for (; !due_.empty(); due_ = due_.subspan(1)) {
                cursor_.expect(due_.front().mark, due_.front().what);
            }
            if (step(entry)) {
                return true;
            }
        }
        return false;
    } catch (const StreamError &fault) {
        entry.position = {cursor_.line(), ordinal_};
        entry.key = {name_, std::nullopt};
        state_ = State::end;
        throw StreamError(fault.path().empty() && lists_ > 0 ? list_path() : fault.path(),
                          fault.what());
    }
}

std::unique_ptr<Source> make_json_source(Window window, std::optional<Schema> schema,
                                         OtherModules others) {
    return std::make_unique<JsonDocuments>(std::move(window), schema, others);
}

} // namespace aceconv
