// The files that a call names, folders opened, and what their products are called.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "stream/sink.h"

namespace aceconv::tool {

struct InputFile {
    std::string path;
    std::string name; // below its folder; of a file that was named itself, the last part
};

struct InputFiles {
    std::vector<InputFile> files;
    bool folders = false;          // at least one was named
    std::uint64_t passed_over = 0; // files of folders, since their names do not end like inputs
};

/// The paths in their order. A folder stands for the regular files in it and in its folders,
/// sorted, whose names end in a known suffix; links to folders are not followed. Throws
/// UsageError for a folder without such a file, IoError for one that cannot be read.
InputFiles input_files(const std::vector<std::string> &paths);

/// What the product of each is called in `folder`: its name there, with the suffix of the
/// format in place of a known one. Throws UsageError where two would have one name, for standard
/// input, and when `folder` lies in a folder that is read.
std::vector<std::string> output_names(const std::vector<std::string> &paths,
                                      const InputFiles &inputs, const std::string &folder,
                                      OutputFormat format);

} // namespace aceconv::tool
