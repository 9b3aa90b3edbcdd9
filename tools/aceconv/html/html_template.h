// The page of --html reports: report.html, as it was when this was built.
#pragma once

#include <string_view>

namespace aceconv::tool {

extern const std::string_view html_template;

} // namespace aceconv::tool
