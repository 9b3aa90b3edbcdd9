#include "tools/aceconv/input_files.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "stream/errors.h"

namespace aceconv::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view suffixes[] = {".json", ".jsonl", ".ndjson", ".xml",   ".cbor",
                                         ".bags", ".hex",   ".b64",    ".base64"};

bool is_known(const fs::path &path) {
    return std::find(std::begin(suffixes), std::end(suffixes), path.extension().native()) !=
           std::end(suffixes);
}

const char *suffix_of(OutputFormat format) {
    switch (format) {
    case OutputFormat::json:
        return ".json";
    case OutputFormat::xml:
        return ".xml";
    case OutputFormat::ndjson:
        return ".ndjson";
    case OutputFormat::text:
        return ".txt";
    case OutputFormat::cbor:
    case OutputFormat::bare_cbor:
        break;
    }
    return ".bags";
}

void append_folder(const std::string &folder, InputFiles &inputs) {
    const std::size_t before = inputs.files.size();
    std::vector<fs::path> found;
    try {
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
            std::error_code gone; // such as a link to nothing
            if (entry.is_regular_file(gone) && is_known(entry.path())) {
                found.push_back(entry.path());
            } else if (entry.is_symlink(gone) || !entry.is_directory(gone)) {
                ++inputs.passed_over;
            }
        }
    } catch (const fs::filesystem_error &e) {
        throw IoError(folder + ": cannot read: " + e.code().message());
    }
    std::sort(found.begin(), found.end());
    for (const fs::path &path : found) {
        inputs.files.push_back({path.native(), path.lexically_relative(folder).native()});
    }
    if (inputs.files.size() == before) {
        std::string known;
        for (const std::string_view suffix : suffixes) {
            known += (known.empty() ? "" : " ") + std::string(suffix);
        }
        throw UsageError(folder + ": no file in it ends in one of " + known);
    }
}

} // namespace

InputFiles input_files(const std::vector<std::string> &paths) {
    InputFiles inputs;
    for (const std::string &path : paths) {
        std::error_code fault; // told when it is opened
        if (path != "-" && fs::is_directory(path, fault)) {
            inputs.folders = true;
            append_folder(path, inputs);
        } else {
            inputs.files.push_back({path, fs::path(path).filename().native()});
        }
    }
    return inputs;
}

std::vector<std::string> output_names(const std::vector<std::string> &paths,
                                      const InputFiles &inputs, const std::string &folder,
                                      OutputFormat format) {
    const auto place = [](const std::string &path) { // absolute, whether it is there or not
        std::error_code fault;
        const fs::path found = fs::weakly_canonical(fs::absolute(path, fault), fault);
        if (fault) {
            throw IoError(path + ": cannot read: " + fault.message());
        }
        return found;
    };
    std::error_code fault;
    const fs::path target = place(folder);
    for (const std::string &path : paths) {
        if (fs::is_directory(path, fault) &&
            !target.lexically_relative(place(path)).native().starts_with("..")) {
            throw UsageError(folder + " lies in " + path + ", whose files are read");
        }
    }
    std::vector<std::string> names;
    std::map<std::string, const std::string *> taken;
    for (const InputFile &input : inputs.files) {
        if (input.path == "-") {
            throw UsageError("standard input has no name for its output in --output-dir");
        }
        fs::path name = fs::path(folder) / input.name;
        name = is_known(name) ? name.replace_extension(suffix_of(format))
                              : fs::path(name.native() + suffix_of(format));
        const auto [other, free] = taken.emplace(name.native(), &input.path);
        if (!free) {
            throw UsageError(*other->second + " and " + input.path + " would both be written to " +
                             name.native());
        }
        names.push_back(name.native());
    }
    return names;
}

} // namespace aceconv::tool
