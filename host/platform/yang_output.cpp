// What the emitters of aceconv/host/yang_access.h do, for any backend.
#include <new>
#include <span>

#include "host/data_path.h"
#include "host/error.h"
#include "host/platform/emitted_tree.h"

using aceconv::code;
using aceconv::LeafType;
using aceconv::NodeKind;
using aceconv::SchemaNode;
using aceconv::Value;
using aceconv::ValueKind;
using aceconv::YangStatus;

namespace {

template <class... Types>
constexpr unsigned set_of(Types... types) {
    return (0U | ... | (1U << static_cast<unsigned>(types)));
}

/// The leaves that take a value of a kind, by ValueKind.
constexpr unsigned takers[] = {
    set_of(),                                                // none
    set_of(LeafType::string, LeafType::enumeration),         // text: a name may be plain text
    set_of(LeafType::enumeration, LeafType::name_or_number), // name
    set_of(LeafType::number, LeafType::name_or_number),      // number
    set_of(LeafType::bits),
    set_of(LeafType::boolean),
    set_of(LeafType::empty),
    set_of(LeafType::ipv4),
};

bool takes(LeafType type, ValueKind kind) {
    return (takers[static_cast<std::size_t>(kind)] >> static_cast<unsigned>(type) & 1U) != 0;
}

} // namespace

ccv_yang_output::ccv_yang_output(aceconv::Schema schema, const SchemaNode &entry)
    : schema_(schema), entry_(entry), drop_empty_(schema == aceconv::Schema::base) {}

ccv_yang_output::~ccv_yang_output() = default;

void ccv_yang_output::keep_nodes() {
    if (!nodes_) {
        nodes_ = std::make_unique<aceconv::EmittedTree>();
    }
}

ccv_yang_node &ccv_yang_output::nodes() {
    return nodes_->root();
}

void ccv_yang_output::restart(const aceconv::EntryKey &where) {
    if (nodes_) {
        nodes_->start(entry_);
    }
    keys_.clear();
    innermost_ = levels_.data();
    *innermost_ = {.schema = &entry_, .form = NodeForm::entry, .opened = true};
    where_ = where;
    failure_ = YangStatus::ok;
}

void ccv_yang_output::check_complete() const {
    if (failure_ == YangStatus::no_memory) {
        throw std::bad_alloc();
    }
    if (failure_ != YangStatus::ok) {
        throw aceconv::DataError(failure_path_, failure_why_.empty()
                                                    ? aceconv::status_text(code(failure_))
                                                    : failure_why_);
    }
    if (innermost_ != levels_.data()) {
        throw aceconv::DataError(position(nullptr), "left open");
    }
}

std::string ccv_yang_output::position(const char *name) const {
    std::string path = aceconv::entry_path(schema_, where_);
    for (const Level &level : std::span(levels_.data(), innermost_ + 1)) {
        if (level.form == NodeForm::list_entry) {
            if (level.key != nullptr && !level.key->empty()) {
                path += aceconv::key_predicate(level.schema->children[0].name, *level.key);
            }
        } else if (level.form != NodeForm::entry) {
            path += '/';
            path += level.schema->name;
        }
    }
    return name == nullptr ? path : path + '/' + name;
}

std::uint32_t ccv_yang_output::fail(YangStatus status, const char *name, std::string_view why) {
    if (failure_ == YangStatus::ok) {
        failure_ = status;
        failure_path_.clear();
        try {
            failure_why_ = why;
            failure_path_ = position(name);
        } catch (const std::bad_alloc &) {
            failure_ = YangStatus::no_memory;
            failure_why_.clear();
        }
    }
    return code(failure_);
}

const SchemaNode *ccv_yang_output::peek(const char *name) const {
    return innermost_->schema->named(name, innermost_->hint);
}

/// The child that a call names, checked and noted as given; null after a failure.
inline const SchemaNode *ccv_yang_output::child(const char *name, NodeKind kind) {
    Level &level = *innermost_;
    if (failure_ == YangStatus::ok && level.form != NodeForm::list) {
        const SchemaNode *found = level.schema->named(name, level.hint);
        const std::uint64_t bit = found == nullptr ? 0 : std::uint64_t{1} << found->place;
        if (found != nullptr && found->kind == kind && (level.given & bit) == 0) {
            level.given |= bit;
            level.hint = static_cast<std::uint8_t>(found->place + 1);
            return found;
        }
    }
    refuse_child(name, kind);
    return nullptr;
}

/// Keeps why there can be no such child here.
void ccv_yang_output::refuse_child(const char *name, NodeKind kind) {
    if (failure_ != YangStatus::ok) {
        return;
    }
    if (innermost_->form == NodeForm::list) {
        fail(YangStatus::misplaced, name, "a node between the entries of a list");
        return;
    }
    const SchemaNode *found = peek(name);
    if (found == nullptr) {
        fail(YangStatus::unknown_node, name, {});
    } else if (found->kind != kind) {
        fail(YangStatus::wrong_type, name, "expected " + expected(*found));
    } else {
        fail(YangStatus::repeated, name, {});
    }
}

void ccv_yang_output::refuse_keyless(const SchemaNode &list) {
    fail(YangStatus::misplaced, nullptr,
         std::string("an entry starts with its key, ") + list.children[0].name);
}

/// Opens what was held back, up to the level `last`.
bool ccv_yang_output::open_pending(Level *last) {
    Level *pending = last + 1;
    while (!pending[-1].opened) { // what is around an open level is open
        --pending;
    }
    for (; pending <= last; ++pending) {
        Level &level = *pending;
        if (level.form == NodeForm::list) {
            continue;
        }
        if (level.form == NodeForm::list_entry) {
            refuse_keyless(*level.schema);
            return false;
        }
        if (!open(*level.schema, failure_why_) ||
            (nodes_ && !nodes_->open(*level.schema, failure_why_))) {
            fail(YangStatus::refused, nullptr, failure_why_);
            return false;
        }
        level.opened = true;
    }
    return true;
}

std::uint32_t ccv_yang_output::container_begin(const char *name) {
    const SchemaNode *container = child(name, NodeKind::container);
    if (container == nullptr) {
        return code(failure_);
    }
    *++innermost_ = {.schema = container, .form = NodeForm::container};
    if (!drop_empty_) {
        open_pending(innermost_);
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::presence() {
    if (failure_ == YangStatus::ok) {
        if (innermost_->form == NodeForm::container) {
            open_pending(innermost_);
        } else {
            fail(YangStatus::misplaced, nullptr, "presence of something else than a container");
        }
    }
    return code(failure_);
}

inline std::uint32_t ccv_yang_output::end(NodeForm form) {
    if (failure_ == YangStatus::ok) {
        if (innermost_->form != form) {
            fail(YangStatus::misplaced, nullptr, "an end without its begin");
        } else if (form == NodeForm::list_entry && !innermost_->opened) {
            fail(YangStatus::misplaced, nullptr, "an entry without its key");
        } else {
            if (innermost_->opened) {
                close();
                if (nodes_) {
                    nodes_->close();
                }
            }
            --innermost_;
            if (form == NodeForm::list) {
                keys_.pop_back();
            }
        }
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::container_end() {
    return end(NodeForm::container);
}
std::uint32_t ccv_yang_output::list_entry_end() {
    return end(NodeForm::list_entry);
}
std::uint32_t ccv_yang_output::list_end() {
    return end(NodeForm::list);
}

std::uint32_t ccv_yang_output::list_begin(const char *name) {
    const SchemaNode *list = child(name, NodeKind::list);
    if (list != nullptr) {
        keys_.emplace_back();
        *++innermost_ = {.schema = list, .form = NodeForm::list};
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::list_entry_begin(const char *name, std::uint32_t keys) {
    if (failure_ == YangStatus::ok) {
        const Level &list = *innermost_;
        if (list.form != NodeForm::list || std::string_view(name) != list.schema->name ||
            keys != 1) {
            fail(YangStatus::misplaced, nullptr, "an entry outside its list");
        } else {
            *++innermost_ = {.schema = list.schema, .form = NodeForm::list_entry};
        }
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::entry_key(const SchemaNode &leaf, std::string_view key) {
    Level &entry = *innermost_;
    const auto [place, is_new] = keys_.back().emplace(key);
    entry.key = &*place;
    if (!is_new) {
        return fail(YangStatus::repeated, nullptr, "a second entry with the same key");
    }
    if (open_pending(innermost_ - 1)) { // what is around the list
        if (!open_entry(*entry.schema, key, failure_why_) ||
            (nodes_ && !nodes_->open_entry(*entry.schema, key, failure_why_))) {
            fail(YangStatus::refused, leaf.name, failure_why_);
        }
        entry.opened = true;
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::leaf(const char *name, const Value &value) {
    const SchemaNode *found = child(name, NodeKind::leaf);
    if (found == nullptr) {
        return code(failure_);
    }
    if (!takes(found->type, value.kind) ||
        (value.kind == ValueKind::number &&
         (value.number < found->smallest || value.number > found->largest))) {
        return refuse_value(*found, value);
    }
    if (innermost_->form == NodeForm::list_entry && found->place == 0) {
        return entry_key(*found, value.text);
    }
    if (!innermost_->opened && !open_pending(innermost_)) {
        return code(failure_);
    }
    if (!put(*found, value, failure_why_) ||
        (nodes_ && !nodes_->put(*found, value, failure_why_))) {
        fail(YangStatus::refused, name, failure_why_);
    }
    return code(failure_);
}

std::uint32_t ccv_yang_output::refuse_value(const SchemaNode &leaf, const Value &value) {
    if (!takes(leaf.type, value.kind)) {
        return fail(YangStatus::wrong_type, leaf.name, "expected " + expected(leaf));
    }
    return fail(YangStatus::out_of_range, leaf.name,
                std::to_string(value.number) + "; expected " + expected(leaf));
}
