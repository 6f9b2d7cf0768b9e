// Compares the load of live processing with that of PipeWire's filter chain, in turns on a private
// sound server with the same sound, device and quantum.

#include "live/LiveLoad.h"
#include "live/Processor.h"
#include "soundserver/Waiting.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iterator>

namespace quorbel::bench {
namespace {

using namespace soundserver;

constexpr std::array<std::size_t, 3> quanta = {1024, 256, 64};

constexpr const char *headline =
    R"(Share of one core, the least of {} runs of {:g} s, wake-ups per second while playing (per cycle: of the data thread), and interruptions
of the sound in all runs: Ostrafine with everything on; PipeWire's filter chain with equaliser and tone only; the same copying.
Load average at the start: {:.2f}.

quantum  Ostrafine  filter chain  ratio  copying  wake-ups: Ostrafine  per cycle  filter chain  interruptions: Ostrafine  filter chain
)";

/// Takes the minimum of each load: interference from other processes only adds to it.
LiveLoad leastOf(const LiveLoad &one, const LiveLoad &other) {
    return {std::min(one.share, other.share),
            std::min(one.wakeUpsPerSecond, other.wakeUpsPerSecond),
            std::min(one.wakeUpsPerCycle, other.wakeUpsPerCycle),
            one.interruptions + other.interruptions};
}

void compareAt(std::size_t quantum, int runs, double seconds) {
    const PrivateSoundServer server;
    server.forceQuantum(static_cast<int>(quantum));
    GraphClient client(server);
    const Processor processors[] = {ostrafine(server.folder()),
                                    filterChain(server.folder(), LiveLoad::device),
                                    copyingChain(server.folder(), LiveLoad::device)};
    LiveLoad loads[std::size(processors)];
    for (int run = 0; run < runs; ++run) {
        for (std::size_t index = 0; index < std::size(processors); ++index) {
            const LiveLoad load =
                measureLiveLoad(server, client, processors[index], quantum, seconds);
            loads[index] = run == 0 ? load : leastOf(loads[index], load);
        }
    }
    const auto &[live, chain, copying] = loads;
    fmt::print("{:7} {:8.2f} % {:11.2f} % {:6.2f} {:6.2f} % {:20.0f} {:10.2f} {:13.0f} {:25} "
               "{:13}\n",
               quantum, live.share * 100.0, chain.share * 100.0, live.share / chain.share,
               copying.share * 100.0, live.wakeUpsPerSecond, live.wakeUpsPerCycle,
               chain.wakeUpsPerSecond, live.interruptions, chain.interruptions);
    std::fflush(stdout);
}

void printIdleWakeUps() {
    const PrivateSoundServer server;
    fmt::print("Wake-ups per second of Ostrafine while nothing plays: {:.1f}\n",
               measureIdleWakeUps(server, ostrafine(server.folder())));
}

void interrupt(int) { interruptRequested = true; }

} // namespace
} // namespace quorbel::bench

int main(int argc, char **argv) {
    using namespace quorbel;
    double seconds = 10.0;
    int runs = 3;
    CLI::App app(
        "Measures live processing beside PipeWire's filter chain on a private sound server.");
    app.add_option("--seconds", seconds, "Length of one run")
        ->check(CLI::Range(0.5, 600.0))
        ->capture_default_str();
    app.add_option("--runs", runs, "Runs, of which the least counts")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, bench::interrupt);
    try {
        double load = 0.0;
        getloadavg(&load, 1);
        fmt::print(bench::headline, runs, seconds, load);
        std::fflush(stdout);
        for (const std::size_t quantum : bench::quanta)
            bench::compareAt(quantum, runs, seconds);
        bench::printIdleWakeUps();
        return 0;
    } catch (const soundserver::Interrupted &) {
        return 130;
    } catch (const std::exception &error) {
        fmt::print(stderr, "quorbel-bench-live: {}\n", error.what());
        return 1;
    }
}
