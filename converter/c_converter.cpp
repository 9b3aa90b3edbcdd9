#include "converter/c_converter.h"

#include <new>

#include "converter/linked_plugin.h"
#include "host/installation.h"
#include "host/utf8.h"

namespace aceconv {

namespace {

// The first check of text chooses between instructions of the processor, and ends the process
// if there is no memory for that. So it is made as the library is loaded.
[[maybe_unused]] const bool instructions_chosen = is_utf8("");

aceconv_code code_of_current(std::string &text, std::string &path) {
    const auto told = [&](aceconv_code code, const std::exception &e) {
        text = e.what();
        return code;
    };
    try {
        throw; // cppcheck-suppress rethrowNoCurrentException ; it is called by a handler
    } catch (const Cancelled &) {
        text = "ended by the caller";
        return ACECONV_CANCELLED;
    } catch (const StreamError &e) {
        path = e.path();
        return told(ACECONV_BAD_INPUT, e);
    } catch (const DataError &e) {
        path = e.path();
        return told(ACECONV_BAD_DATA, e);
    } catch (const SchemaUnknown &e) {
        return told(ACECONV_SCHEMA_UNKNOWN, e);
    } catch (const UsageError &e) {
        return told(ACECONV_BAD_CALL, e);
    } catch (const IoError &e) {
        return told(ACECONV_UNAVAILABLE, e);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &e) {
        return told(ACECONV_INTERNAL, e);
    } catch (...) {
        text = "an exception that is none of the library's";
        return ACECONV_INTERNAL;
    }
}

} // namespace

void ShownError::set(const Entry *entry) noexcept {
    error_ = {};
    try {
        path_.clear();
        list_.reset();
        error_.code = code_of_current(text_, path_);
        if (entry != nullptr) {
            list_ = entry->key.acl;
            error_.sequence = entry->key.sequence.value_or(0);
            error_.line = entry->position.line;
            error_.ordinal = entry->position.ordinal;
        }
        error_.text = text_.c_str();
        error_.path = path_.c_str();
        error_.list = list_ ? list_->c_str() : nullptr;
    } catch (...) {
        error_ = {};
        error_.code = ACECONV_NO_MEMORY;
        error_.text = "out of memory";
        error_.path = "";
    }
}

std::optional<Schema> schema_of(aceconv_schema schema) {
    switch (schema) {
    case ACECONV_SCHEMA_ANY:
        return std::nullopt;
    case ACECONV_SCHEMA_BASE:
        return Schema::base;
    case ACECONV_SCHEMA_UM:
        return Schema::um;
    }
    throw UsageError("no such schema");
}

std::optional<InputFormat> input_format(aceconv_format format) {
    switch (format) {
    case ACECONV_FORMAT_ANY:
        return std::nullopt;
    case ACECONV_FORMAT_JSON:
        return InputFormat::json;
    case ACECONV_FORMAT_NDJSON:
        return InputFormat::ndjson;
    case ACECONV_FORMAT_XML:
        return InputFormat::xml;
    case ACECONV_FORMAT_CBOR:
    case ACECONV_FORMAT_BARE_CBOR:
        return InputFormat::cbor;
    case ACECONV_FORMAT_TEXT:
        throw UsageError("entries in words cannot be read");
    }
    throw UsageError("no such format");
}

Format text_format(aceconv_format format) {
    switch (format) {
    case ACECONV_FORMAT_ANY:
    case ACECONV_FORMAT_JSON:
    case ACECONV_FORMAT_NDJSON:
        return Format::json;
    case ACECONV_FORMAT_XML:
        return Format::xml;
    default:
        throw UsageError("not a format of text; expected JSON or XML");
    }
}

namespace {

std::string modules_folder(const char *given) {
    try {
        return given == nullptr ? installed_modules() : given;
    } catch (const std::runtime_error &e) {
        throw IoError(e.what());
    }
}

void open(aceconv_converter &converter, const aceconv_options *given) {
    aceconv_options options{};
    if (given != nullptr) {
        options = taken(given);
    }
    converter.schema = schema_of(options.schema);
    converter.losses = options.no_losses == 0;
    if (options.backend != ACECONV_BACKEND_BULK && options.backend != ACECONV_BACKEND_VALIDATING) {
        throw UsageError("no such backend");
    }
    converter.setup =
        CodecSetup{open_plugin(options.plugin == nullptr ? "" : options.plugin),
                   modules_folder(options.modules),
                   options.backend == ACECONV_BACKEND_BULK ? Backend::bulk : Backend::validating};
    converter.view.emplace(*converter.setup->plugin.descriptor);
    converter.codec = std::make_unique<Codec>(*converter.setup);
}

} // namespace
} // namespace aceconv

using namespace aceconv;

aceconv_code aceconv_open(const aceconv_options *options,
                          aceconv_converter **converter) ACECONV_NOEXCEPT {
    if (converter == nullptr) {
        return ACECONV_BAD_CALL;
    }
    *converter = new (std::nothrow) aceconv_converter();
    if (*converter == nullptr) {
        return ACECONV_NO_MEMORY;
    }
    try {
        open(**converter, options);
    } catch (...) {
        (*converter)->error.set(nullptr);
    }
    return (*converter)->error.get().code;
}

void aceconv_close(aceconv_converter *converter) ACECONV_NOEXCEPT {
    delete converter;
}

const aceconv_error *aceconv_last_error(const aceconv_converter *converter) ACECONV_NOEXCEPT {
    return converter == nullptr || converter->error.get().code == ACECONV_OK
               ? nullptr
               : &converter->error.get();
}

const char *aceconv_code_text(aceconv_code code) ACECONV_NOEXCEPT {
    switch (code) {
    case ACECONV_OK:
        return "success";
    case ACECONV_BAD_DATA:
        return "bad data";
    case ACECONV_BAD_INPUT:
        return "an input that cannot be read on";
    case ACECONV_SCHEMA_UNKNOWN:
        return "unknown schema";
    case ACECONV_BAD_CALL:
        return "bad call";
    case ACECONV_UNAVAILABLE:
        return "unavailable";
    case ACECONV_CANCELLED:
        return "cancelled";
    case ACECONV_NO_MEMORY:
        return "out of memory";
    case ACECONV_INTERNAL:
        return "internal fault";
    }
    return "unknown code";
}

const char *aceconv_version(void) ACECONV_NOEXCEPT {
    return ACECONV_VERSION;
}
