// Writing rows with the host's emitters, and comparing what it shows.
#pragma once

#include <deque>

#include "tools/hostcheck/walk.h"

namespace aceconv::hostcheck {

struct Shown {
    std::uint32_t depth;
    std::string name;
    bool leaf;
    std::string value;
};

class Output {
  public:
    Output(Check &check, hostcheck_schema schema)
        : check_(check), handle_(CALL(check, hostcheck_output_create)(schema)) {
        check.expect(handle_ != nullptr, "makes no output");
    }
    ~Output() { CALL(check_, hostcheck_output_free)(handle_); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;
    [[nodiscard]] ccv_yang_output *handle() const { return handle_; }
    std::uint32_t status() { return CALL(check_, hostcheck_output_status)(handle_); }
    /// The trial ends unless these nodes are shown, and no others but empty containers
    /// that are not marked.
    void expect(const Entry &entry);

  private:
    Check &check_;
    ccv_yang_output *handle_;
};

/// Texts that were handed to an emitter, overwritten since.
using Overwritten = std::deque<std::string>;

/// Writes the entry as a decoder does. Addresses are as the host's reader gives them. To
/// be held while the output is looked at: a host that kept a text itself shows it so.
[[nodiscard]] Overwritten emit(Check &check, ccv_yang_output *output, const Entry &entry,
                               ccv_yang_node *tree);

} // namespace aceconv::hostcheck
