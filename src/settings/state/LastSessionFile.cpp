#include "settings/state/LastSessionFile.h"

#include "settings/records/json/CodingError.h"
#include "settings/records/json/JsonDocument.h"

#include <nlohmann/json.hpp>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr const char *processingKey = "processing";
constexpr const char *startsAtLoginKey = "startsAtLogin";

/// False if the key is missing. Throws DecodingError.
bool decodedFlag(const json &document, const char *key) {
    const auto found = document.find(key);
    if (found == document.end())
        return false;
    if (!found->is_boolean())
        throw DecodingError(key, "true or false expected, found " + excerpt(*found));
    return found->get<bool>();
}

/// Throws DecodingError.
LastSession decodedSession(const json &document) {
    return {.isProcessing = decodedFlag(document, processingKey),
            .startsAtLogin = decodedFlag(document, startsAtLoginKey)};
}

} // namespace

LastSessionFile::LastSessionFile(const std::string &settingsPath)
    : file_(settingsPath,
            {.name = "last-session",
             .content = "The notes of the last session",
             .consequence = "The next start at login does not continue processing."}) {}

std::optional<std::string> LastSessionFile::read() {
    return file_.read([this](const json &document) { content_ = decodedSession(document); });
}

std::optional<std::string> LastSessionFile::write(const LastSession &next) {
    auto warning =
        file_.update([](const json &document) { static_cast<void>(decodedSession(document)); },
                     [&](json &document) {
                         document[processingKey] = next.isProcessing;
                         document[startsAtLoginKey] = next.startsAtLogin;
                     });
    content_ = next;
    return warning;
}

} // namespace quorbel
