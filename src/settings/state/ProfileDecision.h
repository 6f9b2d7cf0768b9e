#pragma once

#include "platform/core/OutputIdentity.h"
#include "settings/records/OutputProfile.h"

#include <vector>

namespace quorbel {

/// The profile for an output.
struct ProfileDecision {
    const OutputProfile *profile = nullptr; ///< null keeps the live settings
    bool isLeftAlone = false;
    /// True if the missing part of the identity may change the decision.
    bool isAwaited = false;
};

/// Finds the profile with the most specific matching key: card with route or kind of Bluetooth,
/// then node, then card, then any other output; the first of equal ones. If there are profiles,
/// leaves a Bluetooth device in a call alone unless a profile names its calls or its node.
/// `profiles` must outlive the decision.
[[nodiscard]] ProfileDecision decideProfile(const std::vector<OutputProfile> &profiles,
                                            const OutputIdentity &output);

/// The most specific key of an output with a complete identity.
[[nodiscard]] OutputKey keyOf(const OutputIdentity &output);

} // namespace quorbel
