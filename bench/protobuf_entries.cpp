// Entries through protobuf: protobuf_entries json|binary <input >output
//
// json: one JSON entry a line to length-delimited messages; binary: these
// messages parsed and serialised again.
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>

#include <google/protobuf/io/zero_copy_stream_impl.h>
#include <google/protobuf/util/delimited_message_util.h>
#include <google/protobuf/util/json_util.h>

#include "entry.pb.h"

namespace {

using aceconv::bench::pb::Entry;
namespace pb = google::protobuf;

int fail(unsigned long entry, std::string_view what) {
    std::fprintf(stderr, "protobuf_entries: entry %lu: %.*s\n", entry,
                 static_cast<int>(what.size()), what.data());
    return 1;
}

int from_json(pb::io::ZeroCopyOutputStream &output) {
    pb::util::JsonParseOptions options;
    options.case_insensitive_enum_parsing = true;
    Entry entry;
    std::string line;
    for (unsigned long count = 1; std::getline(std::cin, line); ++count) {
        entry.Clear();
        if (const auto status = pb::util::JsonStringToMessage(line, &entry, options);
            !status.ok()) {
            return fail(count, status.ToString());
        }
        if (!pb::util::SerializeDelimitedToZeroCopyStream(entry, &output)) {
            return fail(count, "cannot write");
        }
    }
    return 0;
}

int from_binary(pb::io::ZeroCopyOutputStream &output) {
    pb::io::FileInputStream input(0);
    Entry entry;
    for (unsigned long count = 1;; ++count) {
        bool at_end = false;
        entry.Clear();
        if (!pb::util::ParseDelimitedFromZeroCopyStream(&entry, &input, &at_end)) {
            return at_end ? 0 : fail(count, "malformed");
        }
        if (!pb::util::SerializeDelimitedToZeroCopyStream(entry, &output)) {
            return fail(count, "cannot write");
        }
    }
}

} // namespace

int main(int argc, char **argv) {
    const std::string_view form = argc == 2 ? argv[1] : "";
    if (form != "json" && form != "binary") {
        std::fputs("usage: protobuf_entries json|binary <input >output\n", stderr);
        return 2;
    }
    std::ios::sync_with_stdio(false);
    pb::io::FileOutputStream output(1);
    const int code = form == "json" ? from_json(output) : from_binary(output);
    return output.Flush() ? code : 3;
}
