// The inputs of a run as one source.
#pragma once

#include <memory>

#include "stream/source.h"
#include "tools/aceconv/digest.h"
#include "tools/aceconv/input_files.h"
#include "tools/aceconv/options.h"

namespace aceconv::tool {

/// The entries of one input after the other, `Position::input` telling which. Each
/// is opened when the one before it has ended, and may be of a format and a schema
/// of its own. What ends one of them, a StreamError, does not end the others: the
/// next call goes on behind it.
class Inputs : public Source {
  public:
    /// Throws UsageError when standard input is named twice.
    Inputs(const InputOptions &options, const std::vector<InputFile> &files,
           std::shared_ptr<InputMeter> meter);

    bool next(Entry &entry) override;
    [[nodiscard]] std::optional<Schema> schema() const override;
    [[nodiscard]] Surroundings surroundings() const override;
    /// Takes the digest of each input as it is read. To be called first.
    void take_digests();
    /// Of the inputs, as far as they have been read; empty where none are taken.
    [[nodiscard]] const std::vector<FileDigest> &digests() const { return digests_; }

  private:
    void end_input();

    const InputOptions options_;
    const std::vector<InputFile> &files_; // of the run
    const std::shared_ptr<InputMeter> meter_;
    std::optional<std::uint64_t> size_; // of them all, in bytes, when all are regular files
    std::size_t at_ = 0;
    std::vector<FileDigest> digests_;
    Surroundings surroundings_;      // of the inputs that have ended
    std::unique_ptr<Source> source_; // of input `at_`, once it is open
};

} // namespace aceconv::tool
