#include "tools/aceconv/junit.h"

#include "host/xml_parser.h"
#include "stream/text.h"
#include "tools/aceconv/report.h"

namespace aceconv::tool {
namespace {

constexpr std::uint64_t most_lines = 1000; // of a case, by grade

std::string xml_text(const std::string &text) {
    return xml_escaped(escaped(text));
}

std::string attribute(const std::string &name, const std::string &value) {
    return " " + name + "=\"" + xml_text(value) + "\"";
}

} // namespace

JunitReport::JunitReport(const std::string &path) : output_(path, ReaderGone::is_ignored) {}

JunitReport::TestCase &JunitReport::test_case(const List &list) {
    if (last_ < cases_.size() && cases_[last_].list.name == list.name &&
        cases_[last_].list.file == list.file) { // nearly always
        return cases_[last_];
    }
    const auto [place, is_new] = places_.emplace(list, cases_.size());
    if (is_new) {
        cases_.push_back({list, {}});
    }
    last_ = place->second;
    return cases_[last_];
}

void JunitReport::say(const List &list, Grade grade, const std::string &line) {
    Said &said = test_case(list).said[static_cast<int>(grade)];
    if (++said.count <= most_lines) {
        said.lines += line + "\n";
    }
}

std::uint64_t JunitReport::count(Grade grade) const {
    std::uint64_t cases = 0;
    for (const TestCase &test : cases_) {
        const bool has_errors = test.said[static_cast<int>(Grade::error)].count != 0;
        const bool counts = grade == Grade::error || !has_errors; // a case is one or the other
        cases += counts && test.said[static_cast<int>(grade)].count != 0 ? 1U : 0U;
    }
    return cases;
}

void JunitReport::write_case(const TestCase &test) {
    output_.write("<testcase" + attribute("classname", test.list.file) +
                  attribute("name", test.list.name.empty() ? "(no list)" : test.list.name) +
                  " time=\"0\"");
    const Said &errors = test.said[static_cast<int>(Grade::error)];
    const Said &failures = test.said[static_cast<int>(Grade::failure)];
    const std::uint64_t count = errors.count + failures.count;
    if (count == 0) {
        output_.write("/>\n");
        return;
    }
    const std::string element = errors.count != 0 ? "error" : "failure";
    const std::string lines = errors.lines + failures.lines;
    output_.write(">\n<" + element + attribute("message", lines.substr(0, lines.find('\n'))) +
                  attribute("type", errors.count != 0 ? "bad data" : "difference") + ">");
    for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1) {
        output_.write(xml_text(lines.substr(at, lines.find('\n', at) - at)) + "\n");
    }
    if (errors.count > most_lines || failures.count > most_lines) {
        output_.write("... of " + std::to_string(count) + "\n");
    }
    output_.write("</" + element + ">\n</testcase>\n");
}

Output *JunitReport::finish(double seconds) {
    output_.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"aceconv\"" +
                  attribute("timestamp", utc_now()) + " hostname=\"localhost\"" +
                  attribute("tests", std::to_string(cases_.size())) +
                  attribute("failures", std::to_string(count(Grade::failure))) +
                  attribute("errors", std::to_string(count(Grade::error))) +
                  attribute("time", std::to_string(seconds)) + ">\n<properties/>\n");
    for (const TestCase &test : cases_) {
        write_case(test);
    }
    output_.write("<system-out>");
    for (const TestCase &test : cases_) {
        const std::string &lines = test.said[static_cast<int>(Grade::note)].lines;
        for (std::size_t at = 0; at < lines.size(); at = lines.find('\n', at) + 1) {
            output_.write(xml_text(lines.substr(at, lines.find('\n', at) - at)) + "\n");
        }
    }
    output_.write("</system-out>\n<system-err/>\n</testsuite>\n");
    return &output_;
}

} // namespace aceconv::tool
