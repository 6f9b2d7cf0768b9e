#include "platform/hardware/routing/ProgramDecision.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>
#include <cstdlib>

namespace quorbel {
namespace {

bool isIn(const std::vector<std::string> &list, const std::string &text) {
    return !text.empty() && std::find(list.begin(), list.end(), text) != list.end();
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

bool isCall(const CallMarks &marks, const NodeRecord &stream, const ProgramNames &program) {
    return isIn(marks.roles, stream.property("media.role")) || isIn(marks.names, program.name) ||
           isIn(marks.binaries, program.binary);
}

bool isSurroundDevice(const ServerObjects &objects, std::uint32_t deviceID) {
    const auto ports = objects.ports(deviceID, true);
    return std::count_if(ports.begin(), ports.end(),
                         [](const PortRecord &port) { return !port.isMonitor; }) > 2;
}

bool isSurround(const NodeRecord &stream, bool isSurroundOutput) {
    return isSurroundOutput && stream.format && stream.format->channels > 2;
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
    if (!isMixedToStereo && isSurround(stream, isSurroundOutput))
        return StreamTreatment::surround;
    return StreamTreatment::processed;
}

} // namespace quorbel
