// aceconv: access-list entries between YANG data and encoded records.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "host/bag_library.h"
#include "stream/errors.h"
#include "stream/output.h"
#include "tools/aceconv/options.h"
#include "tools/aceconv/report.h"

namespace {

using namespace aceconv;
using namespace aceconv::tool;

constexpr const char *footer_text =
    "Formats: json (a document, or entries as objects), ndjson (an entry a line), xml, and cbor,\n"
    "a sequence of encodings. Input is recognised from its first bytes.\n"
    "Exit codes: 0 done, 1 bad data or a difference, 2 usage, 3 input or output failed.";

int show_version(const CommonOptions &options) {
    const aceconv::Plugin plugin = find_plugin(options);
    const std::string text = "aceconv " ACECONV_VERSION "\nplug-in " + plugin.file.string() +
                             "\nrecord  " + plugin.descriptor->type_name + " " +
                             aceconv::bag_fingerprint(*plugin.descriptor) + "\nmodules " +
                             find_modules(options).string() + "\n";
    Output output("-");
    output.write(text);
    output.commit();
    return exit_ok;
}

int run(int argc, char **argv) {
    CLI::App app("Converts IPv4 access-list entries between YANG data and encoded records.",
                 "aceconv");
    app.footer(footer_text);
    app.require_subcommand(0, 1);
    CommonOptions options;
    bool version = false;
    app.add_flag("--version", version, "Show the version, and which plug-in is loaded");
    add_places(app, options);
    int status = exit_ok;
    add_encode(app, status);
    add_decode(app, status);
    add_inspect(app, status);
    add_convert(app, status);
    add_check(app, status);
    add_diff(app, status);
    try {
        app.parse(argc, argv);
        if (version) {
            return show_version(options);
        }
        if (app.get_subcommands().empty()) {
            throw UsageError("a verb is expected: encode, decode, inspect, convert, check or diff");
        }
        return status;
    } catch (const CLI::Success &help) {
        return app.exit(help);
    } catch (const CLI::ParseError &fault) {
        throw UsageError(fault.what());
    }
}

} // namespace

int main(int argc, char **argv) {
    install_signal_handlers();
    try {
        return run(argc, argv);
    } catch (const UsageError &e) {
        say_error(e.what());
        say("see aceconv --help");
        return exit_usage;
    } catch (const PipeClosed &) {
        return exit_ok;
    } catch (const aceconv::DataError &e) {
        say_error(e.what());
        return exit_data;
    } catch (const std::exception &e) {
        say_error(e.what());
        return exit_io;
    }
}
