#include "cli/TimeInSeconds.h"

#include <cmath>
#include <string>

namespace quorbel {

CLI::Validator timeInSeconds() {
    return {[](const std::string &text) -> std::string {
                double seconds = 0.0;
                const bool isTime = CLI::detail::lexical_cast(text, seconds) &&
                                    std::isfinite(seconds) && seconds >= 0.0;
                return isTime ? "" : text + " is not a time in seconds";
            },
            ""};
}

} // namespace quorbel
