// The modules' libyang context and their compiled entries.
#pragma once

#include <libyang/libyang.h>

#include <memory>
#include <string>

#include "host/yang/entry.h"
#include "host/yang/schema.h"

namespace aceconv {

struct ContextDeleter {
    void operator()(ly_ctx *context) const { ly_ctx_destroy(context); }
};

struct Modules::Context {
    std::unique_ptr<ly_ctx, ContextDeleter> libyang;
    SchemaNode base_entry;
    SchemaNode um_entry;

    [[nodiscard]] const SchemaNode &entry(Schema schema) const {
        return schema == Schema::base ? base_entry : um_entry;
    }
};

/// The text and data path of libyang's last complaint, taken from the context.
struct LibyangError {
    std::string message;
    std::string path;
};
LibyangError take_error(ly_ctx *context);

} // namespace aceconv
