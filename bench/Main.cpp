#include "LevelTable.h"
#include "LiveLevelTable.h"
#include "SlowestBlock.h"
#include "platform/dsp/Denormals.h"

#include <benchmark/benchmark.h>

#include <string_view>

int main(int argc, char **argv) {
    const quorbel::DenormalsFlushed flushed; // as on the audio threads
    if (argc == 2 && std::string_view(argv[1]) == "--slowest-block") {
        quorbel::bench::printSlowestBlock(1'000'000);
        quorbel::bench::printSlowestBlockOfAGlide(2000);
        return 0;
    }
    if (argc == 2 && std::string_view(argv[1]) == "--levels") {
        quorbel::bench::printLiveLevelTable();
        quorbel::bench::printLevelTable();
        return 0;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
