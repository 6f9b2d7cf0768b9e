#include "ui/logic/OutputTexts.h"

#include <algorithm>
#include <string_view>

namespace quorbel {

namespace {

/// Returns "Headphones" for "analog-output-headphones" and for "[Out] Headphones".
std::string routeWords(std::string_view route) {
    for (const std::string_view prefix : {"analog-output-", "[Out] "})
        if (route.starts_with(prefix))
            route.remove_prefix(prefix.size());
    std::string words(route);
    std::ranges::replace(words, '-', ' ');
    if (!words.empty() && words.front() >= 'a' && words.front() <= 'z')
        words.front() = static_cast<char>(words.front() - 'a' + 'A');
    return words;
}

} // namespace

std::string outputLabel(const std::string &deviceName, const OutputIdentity &identity) {
    if (identity.bluetooth == OutputIdentity::Bluetooth::call)
        return deviceName + ", call";
    return identity.route.empty() ? deviceName : deviceName + ", " + routeWords(identity.route);
}

} // namespace quorbel
