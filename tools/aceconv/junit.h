// The outcome of a run as a test report in the format of JUnit, which CI systems show: a
// test suite, with a test case for each list.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "stream/output.h"

namespace aceconv::tool {

class JunitReport {
  public:
    /// Throws IoError.
    explicit JunitReport(const std::string &path);

    /// Lists are told apart by their file and name, "" for entries of no list.
    struct List {
        std::string file;
        std::string name;
        bool operator<(const List &other) const {
            return std::tie(file, name) < std::tie(other.file, other.name);
        }
    };
    /// What is said of a list: bad data, which is an error of its case, what makes the case fail,
    /// and what does neither.
    enum class Grade : std::uint8_t { error, failure, note };

    /// There is such a list.
    void see(const List &list) { (void)test_case(list); }
    void say(const List &list, Grade grade, const std::string &line);
    /// Writes the report; nothing may be said any more.
    Output *finish(double seconds);

  private:
    struct Said {
        std::uint64_t count = 0;
        std::string lines; // the first ones
    };
    struct TestCase {
        List list;
        Said said[3]; // by grade
    };

    TestCase &test_case(const List &list);
    void write_case(const TestCase &test);
    [[nodiscard]] std::uint64_t count(Grade grade) const;

    Output output_;
    std::vector<TestCase> cases_; // in the order in which they were met
    std::map<List, std::size_t> places_;
    std::size_t last_ = 0; // the case that was asked for last
};

} // namespace aceconv::tool
