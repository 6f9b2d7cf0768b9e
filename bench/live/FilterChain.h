#pragma once

#include "settings/records/EQBand.h"

#include <string>
#include <vector>

namespace quorbel::bench {

/// Name of the filter chain's sink, on which applications play.
inline constexpr const char *filterChainSink = "bench-filter-chain";

/// Configuration for `pipewire -c`: PipeWire's own filter chain with one built-in biquad per
/// channel for each band, as a client that plays into `device`. Valid for PipeWire 0.3.65 and
/// later. Without bands the chain copies. Throws std::invalid_argument for a band that is a low
/// pass or a high pass.
[[nodiscard]] std::string filterChainConfiguration(const std::vector<EQBand> &bands,
                                                   const std::string &device);

} // namespace quorbel::bench
