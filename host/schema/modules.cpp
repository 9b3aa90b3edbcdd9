#include "host/schema/modules.h"

#include <libyang/version.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <new>

#include "host/data_path.h"
#include "host/error.h"
#include "host/schema/compiled_modules.h"

namespace aceconv {

namespace {

/// The last complaint only, and nothing on standard error. The thread-local
/// variant of this setting does not survive a failing union.
void quieten_libyang() {
    static std::once_flag once;
    std::call_once(once, [] { ly_log_options(LY_LOSTORE_LAST); });
}

/// Anything else could keep whoever reads it waiting.
void require_regular(const std::string &file) {
    std::error_code none;
    const std::filesystem::file_status found = status(std::filesystem::path(file), none);
    if (exists(found) && !is_regular_file(found)) {
        throw DataError("", file + ": not a regular file");
    }
}

bool is_text_of(const std::string &file, std::string_view text) {
    std::string found(text.size() + 1, '\0');
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> in(std::fopen(file.c_str(), "rb"),
                                                              std::fclose);
    const std::size_t read = in ? std::fread(found.data(), 1, found.size(), in.get()) : 0;
    if (read == 0 && errno == ENOMEM) { // it is not another text for that
        throw std::bad_alloc();
    }
    return read == text.size() && text == std::string_view(found).substr(0, text.size());
}

const lysc_node *find_entry(const ly_ctx *context, Schema schema) {
    const std::string path = entry_path(schema, {});
    const lysc_node *node = lys_find_path(context, nullptr, path.c_str(), 0);
    if (node == nullptr) {
        throw DataError("", "the module has no list " + path);
    }
    return node;
}

constexpr std::array schemas{Schema::base, Schema::um}; // um imports base

void take_place(const ly_err_item &item, LibyangError &error) {
#if LY_VERSION_MAJOR >= 3
    error.path = item.data_path != nullptr ? item.data_path : "";
    error.line = item.line;
#else
    // Data location "/module:acls/acl[name='-']/entry[...]/tcp/tcp-bits", line number 1.
    constexpr std::string_view path_start = "Data location \"";
    constexpr std::string_view line_start = "ine number ";
    const std::string_view place = item.path != nullptr ? item.path : "";
    const std::size_t line = place.rfind(line_start);
    if (line != std::string_view::npos) {
        const char *digits = place.data() + line + line_start.size();
        (void)std::from_chars(digits, place.data() + place.size(), error.line);
    }
    if (place.substr(0, path_start.size()) == path_start) {
        error.path = place.substr(path_start.size(), place.rfind('"') - path_start.size());
    }
#endif
}

} // namespace

std::string module_file(const std::string &directory, Schema schema) {
    return directory + '/' + std::string(module_name(schema)) + ".yang";
}

std::string_view module_name(Schema schema) {
    return schema == Schema::base ? "aceconv-base" : "aceconv-um";
}

std::string_view module_namespace(Schema schema) {
    return schema == Schema::base ? "urn:aceconv:base" : "urn:aceconv:um";
}

LibyangError take_error(ly_ctx *context) {
    LibyangError error{"out of memory", ""};
    if (const ly_err_item *item = ly_err_last(context); item != nullptr) {
        error.message = item->msg != nullptr ? item->msg : "";
        take_place(*item, error);
    }
    ly_err_clean(context, nullptr);
    return error;
}

const lysc_node &compiled_node(const SchemaNode &node) {
    if (node.compiled == nullptr) {
        const SchemaNode *entry = &node;
        while (entry->parent != nullptr) {
            entry = entry->parent;
        }
        (void)entry->modules->libyang();
    }
    return *node.compiled;
}

Modules::Context::Context(const std::string &directory) {
    for (const Schema schema : schemas) {
        require_regular(module_file(directory, schema));
    }
    for (const Schema schema : schemas) {
        if (!is_text_of(module_file(directory, schema), compiled_module(schema).text)) {
            load(&directory);
            return;
        }
    }
}

const SchemaNode &Modules::Context::entry(Schema schema) {
    std::unique_ptr<SchemaNode> &entry = entries_[static_cast<std::size_t>(schema)];
    if (!entry) {
        auto restored = std::make_unique<SchemaNode>();
        restore_schema(compiled_module(schema), *restored);
        restored->modules = this;
        entry = std::move(restored);
    }
    return *entry;
}

ly_ctx *Modules::Context::libyang() {
    if (!libyang_) {
        load(nullptr);
    }
    return libyang_.get();
}

/// From the files in `directory`, or from the text of the tables when it is null.
void Modules::Context::load(const std::string *directory) {
    quieten_libyang();
    // Parsing dates, libyang looks at the time zone, which libc keeps for all threads.
    static std::mutex one_at_a_time;
    const std::lock_guard lock(one_at_a_time);
    ly_ctx *context = nullptr;
    // No search directories: libyang would go through them with all that is below.
    if (ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS, &context) !=
        LY_SUCCESS) {
        throw std::bad_alloc();
    }
    std::unique_ptr<ly_ctx, ContextDeleter> loaded(context);
    for (const Schema schema : schemas) {
        if (directory == nullptr) {
            // It was loaded when the tables were made, so nothing but memory can be wanting.
            if (lys_parse_mem(context, compiled_module(schema).text.data(), LYS_IN_YANG, nullptr) !=
                LY_SUCCESS) {
                throw std::bad_alloc();
            }
        } else {
            const std::string file = module_file(*directory, schema);
            if (lys_parse_path(context, file.c_str(), LYS_IN_YANG, nullptr) != LY_SUCCESS) {
                throw DataError("", file + ": " + take_error(context).message);
            }
        }
    }
    std::array<const lysc_node *, schemas.size()> nodes{};
    for (const Schema schema : schemas) {
        const auto slot = static_cast<std::size_t>(schema);
        nodes[slot] = find_entry(context, schema);
        if (directory != nullptr) {
            entries_[slot] = std::make_unique<SchemaNode>();
            compile_schema(nodes[slot], *entries_[slot]);
        } else {
            (void)entry(schema);
        }
    }
    // Nothing fails from here on, which would leave links to a context that is gone.
    for (std::size_t slot = 0; slot < nodes.size(); ++slot) {
        link_schema(nodes[slot], *entries_[slot]);
    }
    libyang_ = std::move(loaded);
}

Modules::Modules(const std::string &directory) : context_(std::make_unique<Context>(directory)) {}

Modules::~Modules() = default;
Modules::Modules(Modules &&) noexcept = default;
Modules &Modules::operator=(Modules &&) noexcept = default;

} // namespace aceconv
