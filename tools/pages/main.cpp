// Writes the manual pages and the completions: SOURCES OUT VERSION DATE.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tools/pages/completions.h"
#include "tools/pages/man_page.h"

namespace {

using namespace aceconv::pages;
namespace fs = std::filesystem;

/// The sections of a text; none where there is no such file.
std::vector<Section> read_sections(const fs::path &path) {
    std::ifstream file(path);
    std::ostringstream text;
    if (file) {
        text << file.rdbuf();
    }
    try {
        return sections_of(text.str());
    } catch (const std::runtime_error &fault) {
        throw std::runtime_error(path.string() + ": " + fault.what());
    }
}

void write_file(const fs::path &path, const std::string &text) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path);
    if (!(file << text) || !file.flush()) {
        throw std::runtime_error(path.string() + ": cannot be written");
    }
}

struct Writing {
    fs::path sources, out;
    Edition edition;

    void write(const Page &page) const {
        const std::string chapter = std::to_string(page.chapter);
        write_file(out / ("man" + chapter) / (page.name + "." + chapter), man_page(page, edition));
    }
    void write_pages() const;
};

void append(std::vector<Section> &sections, const std::vector<Section> &more) {
    sections.insert(sections.end(), more.begin(), more.end());
}

void Writing::write_pages() const {
    const CommandEntry command = aceconv_command();
    const CommandEntry hostcheck = hostcheck_command();
    const auto shared = read_sections(sources / "man/common.md");
    std::vector<std::string> all = {"aceconv(1)"};
    for (const VerbEntry &verb : command.verbs) {
        all.push_back("aceconv-" + verb.name + "(1)");
    }
    all.insert(all.end(), {"aceconv-hostcheck(1)", "aceconv-record(5)"});
    const auto page_of = [&](const VerbEntry &what, const std::string &called,
                             const std::string &text) {
        Page page{called, 1, what.help, read_sections(sources / "man" / text)};
        std::replace(page.name.begin(), page.name.end(), ' ', '-');
        add_usage(page, called, what);
        add_see_also(page, all);
        return page;
    };
    Page page = page_of(command.itself, "aceconv", "aceconv.md");
    add_verbs(page, command);
    append(page.sections, shared);
    write(page);
    for (const VerbEntry &verb : command.verbs) {
        page = page_of(verb, "aceconv " + verb.name, verb.name + ".md");
        append(page.sections, shared);
        write(page);
    }
    write(page_of(hostcheck.itself, "aceconv-hostcheck", "hostcheck.md"));
    page = {"aceconv-record", 5, "The record of an access-list entry and its encoding",
            read_sections(sources / "docs/record_format.md")};
    page.sections.front().title = "Description";
    add_members(page);
    add_see_also(page, all);
    write(page);
    write_file(out / "completions/aceconv", bash_completion(command));
    write_file(out / "completions/_aceconv", zsh_completion(command));
    write_file(out / "completions/aceconv.fish", fish_completion(command));
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 5) {
        std::fputs("usage: aceconv_pages SOURCES OUT VERSION DATE\n", stderr);
        return 2;
    }
    try {
        fs::remove_all(argv[2]); // also pages of verbs that are no more
        Writing{argv[1], argv[2], {argv[3], argv[4]}}.write_pages();
        return 0;
    } catch (const std::exception &fault) {
        std::fprintf(stderr, "aceconv_pages: %s\n", fault.what());
        return 1;
    }
}
