// Failures beside bad data.
#pragma once

#include <stdexcept>
#include <string>

#include "host/error.h"

namespace aceconv {

/// A call that asks for something that cannot be meant.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Data that means another thing in each schema, and nothing that tells the schema.
class SchemaUnknown : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A file, a device or the plug-in that cannot be used.
class IoError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The reader of our output has gone; nobody is left to tell.
class PipeClosed : public std::runtime_error {
  public:
    PipeClosed() : std::runtime_error("pipe closed") {}
};

/// Nothing is there to be read yet, and whoever reads was told not to wait for it.
class InputPauses : public std::exception {};

/// A fault of an input's structure, after which no further entry can be found.
class StreamError : public DataError {
    using DataError::DataError;
};

} // namespace aceconv
