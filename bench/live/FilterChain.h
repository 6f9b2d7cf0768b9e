#pragma once

#include "settings/records/EQBand.h"

#include <string>
#include <vector>

namespace quorbel::bench {

/// Name of the filter chain's sink for applications.
inline constexpr const char *filterChainSink = "bench-filter-chain";

/// Configuration for `pipewire -c` (0.3.65 or later): PipeWire's filter chain as a client that
/// plays to `device`, with one built-in biquad per channel and band. The chain copies if `bands` is
/// empty. Throws std::invalid_argument for a low-pass or high-pass band.
[[nodiscard]] std::string filterChainConfiguration(const std::vector<EQBand> &bands,
                                                   const std::string &device);

} // namespace quorbel::bench
