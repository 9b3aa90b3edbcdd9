// Nanoseconds a conversion of the plug-in, over the minimal host.
#include <cstdio>
#include <exception>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/converter_cases.h"

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    try {
        std::vector<aceconv::bench::ConverterCase> cases = aceconv::bench::converter_cases();
        for (aceconv::bench::ConverterCase &c : cases) {
            benchmark::RegisterBenchmark(c.name.c_str(), [&c](benchmark::State &state) {
                for (auto _ : state) {
                    if (c.run() != 0) {
                        state.SkipWithError("the converter failed");
                        break;
                    }
                }
                state.counters["nodes"] = static_cast<double>(c.nodes);
            });
        }
        benchmark::RunSpecifiedBenchmarks();
    } catch (const std::exception &e) {
        std::fprintf(stderr, "converter_bench: %s\n", e.what());
        return 1;
    }
    benchmark::Shutdown();
    return 0;
}
