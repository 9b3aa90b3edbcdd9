#include "tools/aceconv/json_report.h"

#include <utility>

#include "converter/report_rows.h"

namespace aceconv::tool {

JsonReport::JsonReport(Output &output, const std::string &about, const char *rows)
    : output_(output) {
    output_.write("{" + about + (about.empty() ? "" : ",") + "\"" + rows + "\":[");
}

void JsonReport::add(const std::string &row) {
    output_.write(std::exchange(first_, false) ? "\n" : ",\n");
    output_.write(row);
}

void JsonReport::finish(const std::string &members) {
    output_.write("\n]," + members + "}\n");
}

std::string count_members(const Tally &tally, bool stopped) {
    return json_member("entries", tally.entries) + "," + json_member("errors", tally.errors) +
           ",\"stopped\":" + (stopped ? "true" : "false");
}

std::string loss_members(const Tally &tally, bool stopped) {
    return count_members(tally, stopped) + "," +
           json_member("entries-with-losses", tally.entries_with_losses) + "," +
           json_member("entries-that-match-more", tally.entries_widened);
}

} // namespace aceconv::tool
