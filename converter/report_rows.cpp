#include "converter/report_rows.h"

#include <nlohmann/json.hpp>

namespace aceconv {
namespace {

using Json = nlohmann::ordered_json;

std::string text_of(const Json &row) {
    return row.dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <class Value>
Json or_null(const std::optional<Value> &value) {
    return value ? Json(*value) : Json();
}

/// "" is unknown.
Json or_null(const std::string &text) {
    return text.empty() ? Json() : Json(text);
}

/// The value as people read it, and by its type.
Json value_json(const std::optional<std::string> &shown, const TypedValue &value) {
    using Type = TypedValue::Type;
    if (!shown) {
        return {};
    }
    Json row = {{"text", *shown}};
    switch (value.type) {
    case Type::number:
        row["number"] = value.number;
        break;
    case Type::keyword:
        row["number"] = value.number;
        row["keyword"] = value.text;
        break;
    case Type::boolean:
        row["boolean"] = value.number != 0;
        break;
    case Type::address:
        row["address"] = value.text;
        break;
    case Type::text:
        row["string"] = value.text;
        break;
    case Type::user_fields:
    case Type::present:
    case Type::absent:
        break;
    }
    return row;
}

void add_change(Json &row, const Change &change) {
    if (!change.field.empty()) {
        row["field"] = change.field;
    }
    if (!change.leaf.empty()) {
        row["leaf"] = change.leaf;
    }
    row["before"] = value_json(change.before, change.before_value);
    row["after"] = value_json(change.after, change.after_value);
    if (!change.reason.empty()) {
        row["reason"] = change.reason;
    }
    row["widens"] = change.widens;
}

Json changes_json(const std::vector<Change> &changes) {
    Json rows = Json::array();
    for (const Change &change : changes) {
        add_change(rows.emplace_back(Json::object()), change);
    }
    return rows;
}

void add_position(Json &row, const Position &position) {
    if (position.line != 0) {
        row["line"] = position.line;
    } else if (position.ordinal != 0) {
        row["item"] = position.ordinal;
    }
}

Json place_json(const EntryPlace &place) {
    Json row = Json::object();
    if (!place.file.empty()) {
        row["file"] = place.file;
    }
    row["acl"] = or_null(place.key.acl);
    row["sequence"] = or_null(place.key.sequence);
    add_position(row, place.position);
    return row;
}

void add_words(Json &row, const Product &product) {
    row["words"] = or_null(product.words);
    row["words-after"] = or_null(product.words_after);
}

Json side_json(const ReportedEntry *side) {
    if (side == nullptr) {
        return {};
    }
    Json row = {{"acl", or_null(side->key.acl)}, {"sequence", or_null(side->key.sequence)}};
    add_position(row, side->position);
    row["words"] = side->words;
    return row;
}

} // namespace

std::string loss_row(const EntryPlace &place, const Product &product, const Change &loss) {
    Json row = place_json(place);
    add_change(row, loss);
    add_words(row, product);
    return text_of(row);
}

std::string losses_row(const EntryPlace &place, const Product &product) {
    Json row = place_json(place);
    add_words(row, product);
    row["changes"] = changes_json(product.changes);
    return text_of(row);
}

std::string difference_row(const FoundDifference &found) {
    const EntryKey &key = (found.a != nullptr ? found.a : found.b)->key;
    Json row = {{"acl", or_null(key.acl)}, {"sequence", or_null(key.sequence)}};
    row["a"] = side_json(found.a);
    row["b"] = side_json(found.b);
    if (found.a == nullptr || found.b == nullptr) {
        row["may-be-bad"] = found.may_be_bad;
    }
    if (found.moved != nullptr) {
        Json &other = row["moved"] = {{"sequence", or_null(found.moved->key.sequence)}};
        add_position(other, found.moved->position);
    }
    row["changes"] = changes_json(found.changes);
    return text_of(row);
}

std::string fault_row(const EntryPlace &place, const DataError &fault, const std::string &words) {
    Json row = place_json(place);
    row["path"] = or_null(fault.path());
    row["text"] = fault.what();
    row["words"] = or_null(words);
    return text_of(row);
}

std::string warning_row(const EntryPlace &place, const LintWarning &warning,
                        const std::string &words) {
    Json row = place_json(place);
    row["rule"] = warning.rule->name;
    if (!warning.leaf.empty()) {
        row["leaf"] = warning.leaf;
    }
    row["text"] = warning.text;
    if (const auto &earlier = warning.earlier) {
        Json &other = row["earlier"] = {{"sequence", or_null(earlier->sequence)}};
        add_position(other, {earlier->line, earlier->ordinal});
    }
    row["words"] = or_null(words);
    return text_of(row);
}

std::string uncompared_row(const std::string &file, const std::string &acl, std::uint64_t entries) {
    return text_of({{"file", file}, {"acl", acl}, {"entries", entries}});
}

std::string json_member(const std::string &name, const std::string &text) {
    return text_of(name) + ":" + text_of(text);
}

std::string json_member(const std::string &name, std::uint64_t number) {
    return text_of(name) + ":" + std::to_string(number);
}

} // namespace aceconv
