// Converters of both schemas and directions at once, each thread over a host of
// its own.
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

#include "entries.h"
#include "recording_host.h"

namespace aceconv::test {
namespace {

void convert(unsigned seed, std::atomic<int> &wrong) {
    const Entry base = base_entry();
    const Entry um = um_entry();
    Host alone;
    alone.decode(Schema::base, base.record);
    const std::string base_text = alone.emitted();
    alone.decode(Schema::um, um.record);
    const std::string um_text = alone.emitted();
    for (unsigned round = 0; round < 60; ++round) {
        Host host;
        host.event = Event::on;
        bool right = true;
        switch ((seed + round) % 5) {
        case 0:
            right =
                host.encode(Schema::base, base.tree) == 0 && host.encoded == canonical(base.record);
            break;
        case 1:
            right = host.encode(Schema::um, um.tree) == 0 && host.encoded == canonical(um.record);
            break;
        case 2:
            right = host.decode(Schema::base, base.record) == 0 && host.emitted() == base_text;
            break;
        case 3:
            right = host.decode(Schema::um, um.record) == 0 && host.emitted() == um_text;
            break;
        default:
            right = host.encode(Schema::um, "permit{police{unit=none}}") != 0 &&
                    host.traces.size() == 1;
            break;
        }
        wrong += right && host.faults.empty() && host.leaks() == 0 ? 0 : 1;
    }
}

TEST(Concurrency, ThreadsOfEveryConverter) {
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 5; ++seed) {
        threads.emplace_back(convert, seed, std::ref(wrong));
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace aceconv::test
