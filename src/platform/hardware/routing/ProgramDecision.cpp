#include "platform/hardware/routing/ProgramDecision.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cstdlib>

namespace quorbel {
namespace {

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool isIn(const std::vector<std::string> &list, const std::string &text) {
    return !text.empty() && std::find(list.begin(), list.end(), text) != list.end();
}

bool isCall(const CallMarks &marks, const NodeRecord &stream, const ProgramNames &program) {
    return isIn(marks.roles, stream.property("media.role")) || isIn(marks.names, program.name) ||
           isIn(marks.binaries, program.binary);
}

bool fits(const ProgramNames &wanted, const ProgramNames &program) {
    const auto fitsOne = [](const std::string &name, const std::string &actual) {
        return name.empty() || name == actual;
    };
    return fitsOne(wanted.sandbox, program.sandbox) && fitsOne(wanted.binary, program.binary) &&
           fitsOne(wanted.applicationID, program.applicationID) &&
           fitsOne(wanted.name, program.name);
}

} // namespace

ProgramNames programNames(const ServerObjects &objects, const NodeRecord &stream) {
    const std::string &clientID = stream.property("client.id");
    const PropertyMap *client = clientID.empty()
                                    ? nullptr
                                    : objects.client(static_cast<std::uint32_t>(
                                          std::strtoul(clientID.c_str(), nullptr, 10)));
    const auto find = [&](const char *key) -> const std::string & {
        const std::string &text = stream.property(key);
        return text.empty() && client != nullptr ? propertyValue(*client, key) : text;
    };
    ProgramNames names{.sandbox = find("pipewire.access.portal.app_id"),
                       .binary = find("application.process.binary"),
                       .applicationID = find("application.id"),
                       .name = find("application.name")};
    if (names.sandbox.empty())
        names.sandbox = find("pipewire.snap.id");
    if (names.name.empty())
        names.name = stream.name();
    return names;
}

// Goes back to the last star only: an earlier one can give nothing that the last one cannot.
bool matchesPattern(std::string_view pattern, std::string_view text) {
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;
    std::size_t afterStar = 0; // in the text
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            afterStar = t;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || lowered(pattern[p]) == lowered(text[t]))) {
            ++p;
            // A character may take several bytes of UTF-8.
            do
                ++t;
            while (pattern[p - 1] == '?' && t < text.size() &&
                   (static_cast<unsigned char>(text[t]) & 0xC0U) == 0x80U);
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++afterStar;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

const ProgramRule *ruleFor(const ProgramRules &rules, const ProgramNames &program,
                           const std::string &title) {
    const auto found =
        std::find_if(rules.rules.begin(), rules.rules.end(), [&](const ProgramRule &rule) {
            return !rule.program.areEmpty() && fits(rule.program, program) &&
                   (rule.title.empty() || matchesPattern(rule.title, title));
        });
    return found == rules.rules.end() ? nullptr : &*found;
}

bool isSurroundDevice(const ServerObjects &objects, std::uint32_t deviceID) {
    const auto ports = objects.ports(deviceID, true);
    return std::count_if(ports.begin(), ports.end(),
                         [](const PortRecord &port) { return !port.isMonitor; }) > 2;
}

StreamTreatment decideTreatment(const ServerObjects &objects, const ProgramRules &rules,
                                const NodeRecord &stream, bool isSurroundOutput) {
    if (stream.format && stream.format->isEncoded)
        return StreamTreatment::encoded;
    if (!isRoutable(stream))
        return StreamTreatment::unmovable;
    const ProgramNames program = programNames(objects, stream);
    const ProgramRule *rule = ruleFor(rules, program, stream.property("media.name"));
    if (rule != nullptr) {
        if (!rule->isProcessed)
            return StreamTreatment::excluded;
    } else if (isCall(rules.callMarks, stream, program)) {
        if (!rules.processesCalls)
            return StreamTreatment::call;
    } else if (!rules.processesOthers) {
        return StreamTreatment::unlisted;
    }
    const bool isMixedToStereo = rule != nullptr && rule->isMixedToStereo;
    if (isSurroundOutput && !isMixedToStereo && stream.format && stream.format->channels > 2)
        return StreamTreatment::surround;
    return StreamTreatment::processed;
}

} // namespace quorbel
