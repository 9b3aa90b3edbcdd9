// The modules' libyang context and their compiled entries.
#pragma once

#include <libyang/libyang.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "host/entry.h"
#include "host/schema/schema.h"

namespace aceconv {

struct ContextDeleter {
    void operator()(ly_ctx *context) const { ly_ctx_destroy(context); }
};

/// libyang is loaded when it is first needed; until then the entries come from the
/// tables of compiled_modules.h, provided that the modules are those of the build.
struct Modules::Context {
  public:
    explicit Context(const std::string &directory);

    [[nodiscard]] const SchemaNode &entry(Schema schema);
    [[nodiscard]] ly_ctx *libyang();

  private:
    void load(const std::string *directory);

    std::unique_ptr<ly_ctx, ContextDeleter> libyang_;
    std::array<std::unique_ptr<SchemaNode>, 2> entries_;
};

/// libyang's node behind `node` of an entry that Context::entry returned.
const lysc_node &compiled_node(const SchemaNode &node);

std::string module_file(const std::string &directory, Schema schema);

/// libyang's last complaint, taken from the context.
struct LibyangError {
    std::string message;
    std::string path;       // of the data, from where libyang began; empty when it does not tell
    std::uint64_t line = 0; // of its document, counted from 1; 0 when it does not tell
};
LibyangError take_error(ly_ctx *context);

} // namespace aceconv
