#pragma once

#include "platform/core/OutputIdentity.h"
#include "settings/records/OutputProfile.h"

#include <vector>

namespace quorbel {

/// Profile that fits an output.
struct ProfileDecision {
    const OutputProfile *profile = nullptr; ///< null: the settings stay as they are
    bool isLeftAlone = false;
    /// True if the missing part of the identity may change the decision.
    bool isAwaited = false;
};

/// The profile with the most specific key that fits: card with route or kind of Bluetooth, then
/// node, then card, then any other output; of equal ones the first. While there are profiles, a
/// Bluetooth device in a call is left alone but for a profile that names its calls or its node.
/// `profiles` must outlive the decision.
[[nodiscard]] ProfileDecision decideProfile(const std::vector<OutputProfile> &profiles,
                                            const OutputIdentity &output);

/// The most specific key of an output whose identity is complete.
[[nodiscard]] OutputKey keyOf(const OutputIdentity &output);

} // namespace quorbel
