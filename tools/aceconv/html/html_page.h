// A page made of the template report.html, whose marks {{name}} are replaced, and how text goes
// into it: no text becomes markup.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "stream/output.h"

namespace aceconv::tool {

/// `text` between tags or in an attribute, and as `escaped` has it.
std::string html_text(std::string_view text);
/// The same as a string of JSON inside a script element, which it cannot end.
std::string script_text(std::string_view text);
/// A cell of a table; `label`, its column's name, is shown where columns do not fit.
std::string table_cell(const char *label, const std::string &markup);
std::string number_cell(const char *label, std::uint64_t number);

class HtmlPage {
  public:
    /// Gives what stands in place of a mark.
    using Fill = std::function<std::string(std::string_view name)>;

    /// Throws IoError.
    explicit HtmlPage(const std::string &path);

    /// Writes the template as far as this mark, which `write` is then in place of, or to its end.
    void fill_to(std::string_view mark, const Fill &fill);
    void write(std::string_view text) { output_.write(text); }
    [[nodiscard]] Output &output() { return output_; }

  private:
    Output output_;
    std::string_view rest_; // of the template
};

} // namespace aceconv::tool
