#include "live/FilterChain.h"

#include <fmt/format.h>

#include <stdexcept>

namespace quorbel::bench {
namespace {

const char *labelOf(EQBand::FilterType type) {
    using Type = EQBand::FilterType;
    switch (type) {
    case Type::parametric:
        return "bq_peaking";
    case Type::lowShelf:
        return "bq_lowshelf";
    case Type::highShelf:
        return "bq_highshelf";
    default:
        throw std::invalid_argument("the filter chain has no benchmarked low pass or high pass");
    }
}

// The one-channel graph runs once per channel. The real-time module falls back to normal priority
// if the user lacks the permission.
constexpr const char *configuration = R"(context.spa-libs = {{
    audio.convert.* = audioconvert/libspa-audioconvert
    support.*       = support/libspa-support
}}
context.modules = [
    {{ name = libpipewire-module-rt flags = [ ifexists nofail ] }}
    {{ name = libpipewire-module-protocol-native }}
    {{ name = libpipewire-module-client-node }}
    {{ name = libpipewire-module-adapter }}
    {{ name = libpipewire-module-filter-chain
        args = {{
            filter.graph = {{
                nodes = [
{}                ]
                links = [
{}                ]
            }}
            audio.channels = 2
            audio.position = [ FL FR ]
            capture.props = {{ node.name = {} media.class = Audio/Sink }}
            playback.props = {{ node.passive = true target.object = {} }}
        }}
    }}
]
)";

} // namespace

std::string filterChainConfiguration(const std::vector<EQBand> &bands, const std::string &device) {
    std::string nodes;
    std::string links;
    if (bands.empty())
        nodes = "                    { type = builtin name = copy label = copy }\n";
    for (std::size_t index = 0; index < bands.size(); ++index) {
        const EQBand &band = bands[index];
        nodes += fmt::format("                    {{ type = builtin name = band{} label = {} "
                             "control = {{ Freq = {:.1f} Q = {:.3f} Gain = {:.1f} }} }}\n",
                             index, labelOf(band.filterType), band.frequency, band.q, band.gainDB);
        if (index > 0) {
            links += fmt::format(
                "                    {{ output = \"band{}:Out\" input = \"band{}:In\" }}\n",
                index - 1, index);
        }
    }
    return fmt::format(configuration, nodes, links, filterChainSink, device);
}

} // namespace quorbel::bench
