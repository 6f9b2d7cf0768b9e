#include "settings/state/ProfileDecision.h"

#include <algorithm>

namespace quorbel {
namespace {

using Bluetooth = OutputIdentity::Bluetooth;

/// Rank of a key; a more specific key has a higher rank.
int specificity(const OutputKey &key) {
    return (key.route || key.bluetooth ? 4 : 0) + (key.node ? 2 : 0) + (key.card ? 1 : 0);
}

bool isName(const std::optional<std::string> &wanted, const std::string &name) {
    return !wanted || (!name.empty() && *wanted == name);
}

/// False for a Bluetooth call if the key names neither calls nor a node.
bool mayDecide(const OutputKey &key, const OutputIdentity &output) {
    return output.bluetooth != Bluetooth::call || key.bluetooth || key.node;
}

bool fits(const OutputKey &key, const OutputIdentity &output) {
    return isName(key.card, output.card) && isName(key.route, output.route) &&
           isName(key.node, output.node) && (!key.bluetooth || *key.bluetooth == output.bluetooth);
}

/// True if the key may match once card and route are known.
bool mayFit(const OutputKey &key, OutputIdentity output) {
    if (output.card.empty())
        output.card = key.card.value_or("");
    if (output.route.empty())
        output.route = key.route.value_or("");
    return fits(key, output);
}

} // namespace

ProfileDecision decideProfile(const std::vector<OutputProfile> &profiles,
                              const OutputIdentity &output) {
    ProfileDecision decision;
    int best = -1;
    for (const OutputProfile &profile : profiles) {
        const int rank = specificity(profile.key);
        if (rank <= best || !mayDecide(profile.key, output) || !fits(profile.key, output))
            continue;
        best = rank;
        decision.profile = &profile;
    }
    decision.isLeftAlone = decision.profile != nullptr
                               ? decision.profile->use == OutputProfile::Use::leaveAlone
                               : output.bluetooth == Bluetooth::call && !profiles.empty();
    decision.isAwaited =
        output.isAwaited && std::ranges::any_of(profiles, [&](const OutputProfile &profile) {
            return specificity(profile.key) > best && mayDecide(profile.key, output) &&
                   mayFit(profile.key, output);
        });
    return decision;
}

OutputKey keyOf(const OutputIdentity &output) {
    if (output.bluetooth != Bluetooth::none && !output.card.empty())
        return {.card = output.card, .bluetooth = output.bluetooth};
    if (!output.card.empty() && !output.route.empty())
        return {.card = output.card, .route = output.route};
    return {.node = output.node};
}

} // namespace quorbel
