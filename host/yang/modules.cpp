#include "host/yang/modules.h"

#include <mutex>
#include <new>

#include "host/error.h"
#include "host/yang/data_path.h"

namespace aceconv {

namespace {

/// The last complaint only, and nothing on standard error. The thread-local
/// variant of this setting does not survive a failing union.
void quieten_libyang() {
    static std::once_flag once;
    std::call_once(once, [] { ly_log_options(LY_LOSTORE_LAST); });
}

void load(ly_ctx *context, const std::filesystem::path &directory, Schema schema) {
    const std::filesystem::path file = directory / (std::string(module_name(schema)) + ".yang");
    if (lys_parse_path(context, file.c_str(), LYS_IN_YANG, nullptr) != LY_SUCCESS) {
        throw DataError("", file.string() + ": " + take_error(context).message);
    }
}

void compile_entry(ly_ctx *context, Schema schema, SchemaNode &entry) {
    const std::string path = entry_path(schema, {});
    const lysc_node *node = lys_find_path(context, nullptr, path.c_str(), 0);
    if (node == nullptr) {
        throw DataError("", "the module has no list " + path);
    }
    compile_schema(node, entry);
}

} // namespace

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
        error.path = item->path != nullptr ? item->path : "";
    }
    ly_err_clean(context, nullptr);
    return error;
}

Modules::Modules(const std::filesystem::path &directory) : context_(std::make_unique<Context>()) {
    quieten_libyang();
    ly_ctx *context = nullptr;
    // No search directories: libyang would go through them with all that is below.
    if (ly_ctx_new(nullptr, LY_CTX_NO_YANGLIBRARY | LY_CTX_DISABLE_SEARCHDIRS, &context) !=
        LY_SUCCESS) {
        throw std::bad_alloc();
    }
    context_->libyang.reset(context);
    load(context, directory, Schema::base);
    load(context, directory, Schema::um);
    compile_entry(context, Schema::base, context_->base_entry);
    compile_entry(context, Schema::um, context_->um_entry);
}

Modules::~Modules() = default;
Modules::Modules(Modules &&) noexcept = default;
Modules &Modules::operator=(Modules &&) noexcept = default;

} // namespace aceconv
