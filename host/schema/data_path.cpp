#include "host/data_path.h"

namespace aceconv {

std::string key_predicate(std::string_view name, std::string_view value) {
    const char quote = value.find('\'') == std::string_view::npos ? '\'' : '"';
    std::string text = "[";
    text += name;
    text += '=';
    text += quote;
    text += value;
    text += quote;
    text += ']';
    return text;
}

std::string entry_path(Schema schema, const EntryKey &key) {
    std::string path = "/";
    path += module_name(schema);
    path += ":acls/acl";
    if (key.acl) {
        path += key_predicate("name", *key.acl);
    }
    path += "/entry";
    if (key.sequence) {
        path += key_predicate("sequence-number", std::to_string(*key.sequence));
    }
    return path;
}

} // namespace aceconv
