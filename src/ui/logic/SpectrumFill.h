#pragma once

#include <vector>

namespace quorbel {

/// Levels for drawing: a band without a level of its own takes it from the nearest bands that have
/// one, on a straight line between them. `isMeasured` says which have; both are of one length.
[[nodiscard]] std::vector<double> filledLevels(std::vector<double> levels,
                                               const std::vector<bool> &isMeasured);

} // namespace quorbel
