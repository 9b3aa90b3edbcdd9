// What stands around the access lists in JSON documents.
#include <utility>

#include "stream/errors.h"
#include "stream/json_documents.h"

namespace aceconv {

// The characters that must follow before a value can be taken, and what they begin.
constexpr JsonDocuments::Due before_document[] = {{'{', "a document"}};
constexpr JsonDocuments::Due before_value[] = {{':', "':'"}};
constexpr JsonDocuments::Due before_object[] = {{':', "':'"}, {'{', "an object"}};
constexpr JsonDocuments::Due before_lists[] = {{':', "':'"}, {'[', "an array"}};
constexpr JsonDocuments::Due before_entries[] = {{':', "':'"}, {'[', "an array of entries"}};

constexpr std::string_view restconf_data = "ietf-restconf:data";
constexpr std::string_view restconf_errors = "ietf-restconf:errors";

void JsonDocuments::begin_document() {
    names_.clear();
    first_ = true;
    due_ = before_document;
    state_ = State::document;
}

/// What comes before a member of the document or of its data, or their end.
void JsonDocuments::next_module() {
    if ((in_data_ || !first_) && cursor_.accept('}')) {
        first_ = false;
        state_ = std::exchange(in_data_, false) ? State::document : State::tail;
        return;
    }
    if (!first_) {
        cursor_.expect(',', "',' or '}', the end of the document");
    }
    first_ = false;
    state_ = State::module;
}

void JsonDocuments::take_module() {
    const std::string name = cursor_.string("the member \"acls\"");
    const auto split = split_name(name);
    if (split && split->schema &&
        (split->local == "acls" ||
         (!in_data_ && (split->local == "acl" || split->local == "entry")))) {
        begin_container(name, *split);
    } else if (name == restconf_data && !in_data_) {
        surroundings_.unwrapped(name);
        in_data_ = true;
        first_ = true;
        due_ = before_object;
        state_ = State::document;
    } else if (name == restconf_errors) {
        due_ = before_value;
        state_ = State::errors;
    } else if (!split && name != restconf_data && others_ == OtherModules::stepped_over) {
        surroundings_.stepped_over(name);
        due_ = before_value;
        state_ = State::other;
    } else {
        refuse_module(name);
    }
}

void JsonDocuments::refuse_module(std::string_view name) const {
    const Schema expected = wanted_.value_or(Schema::base);
    throw StreamError("", "unknown member \"" + printable(name) + "\"; expected \"" +
                              std::string(module_name(expected)) + ":acls\"" +
                              (wanted_ ? "" : " or \"aceconv-um:acls\"") +
                              (split_name(name) ? "" : step_over_hint));
}

/// "acls", or the part of it that a member by itself holds.
void JsonDocuments::begin_container(std::string_view name, const QualifiedName &split) {
    if (wanted_ && wanted_ != split.schema) {
        throw StreamError("", "the document is of the " + std::string(schema_name(*split.schema)) +
                                  " schema; expected the " + std::string(schema_name(*wanted_)) +
                                  " schema");
    }
    if (schema_ != split.schema) { // whose lists are others
        names_.clear();
    }
    schema_ = split.schema;
    in_acls_ = split.local == "acls";
    if (in_acls_) {
        due_ = before_object;
        state_ = State::acls;
    } else if (split.local == "acl") {
        surroundings_.unwrapped(name);
        due_ = before_lists;
        state_ = State::lists;
    } else {
        surroundings_.unwrapped(std::string(name) + ", which names no list");
        first_ = true;
        due_ = before_entries;
        state_ = State::entries;
    }
}

void JsonDocuments::refuse_errors() {
    std::string text;
    cursor_.object(text, max_entry_bytes, "an object");
    std::string said;
    bool wanted = false;
    JsonWalk walk(text);
    for (auto step = walk.next(); step != JsonWalk::Step::end; step = walk.next()) {
        if (step == JsonWalk::Step::string && wanted) {
            said += ": " + printable(json_string(walk.token()).value_or(""));
        }
        wanted = step == JsonWalk::Step::name && is_error_text(walk.content());
    }
    throw StreamError("", error_reply + said);
}

} // namespace aceconv
