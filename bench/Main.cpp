#include "platform/dsp/Denormals.h"

#include <benchmark/benchmark.h>

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    const quorbel::DenormalsFlushed flushed; // as on the audio threads
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
