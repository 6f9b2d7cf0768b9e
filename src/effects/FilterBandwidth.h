#pragma once

namespace quorbel {

/// Returns the bandwidth in octaves between the half-gain points of a filter of quality `q`: (2 /
/// ln 2)·asinh(1 / 2q), computed in double precision and kept within 0.05 to 5 octaves. A `q` of
/// 0.1 or less, or one that is not a number, counts as 0.1.
[[nodiscard]] float bandwidthOctaves(float q);

} // namespace quorbel
