// The hardware layer's programs: which streams are played, and which of them are processed.

#include "platform/hardware/pipewire/PipeWireHardware.h"
#include "platform/hardware/routing/ProgramDecision.h"
#include "platform/hardware/routing/StreamRules.h"

namespace quorbel {

void PipeWireHardware::setProgramRules(const ProgramRules &rules) {
    const LoopLock lock(connection_->loop());
    programRules_ = rules;
    if (router_)
        router_->setRules(rules);
    lookSoon();
    tell(HardwareProperty::playbackStreams);
}

std::vector<PlaybackStream> PipeWireHardware::playbackStreams() {
    const LoopLock lock(connection_->loop());
    std::vector<PlaybackStream> streams;
    if (connection_->isLost())
        return streams;
    const ServerObjects &objects = registry_->objects();
    const bool isRouting = router_ && router_->isOn();
    const NodeRecord *home = isRouting ? nullptr : defaultSink();
    const bool isSurroundOutput = isRouting
                                      ? router_->isSurroundOutput()
                                      : home != nullptr && isSurroundDevice(objects, home->id);
    for (const auto &[id, node] : objects.nodes()) {
        if (node.mediaClass() != "Stream/Output/Audio" || !node.isComplete)
            continue;
        StreamTreatment treatment = StreamTreatment::ready;
        if (isRouting)
            treatment = router_->treatmentOf(node);
        else if (const StreamTreatment decided =
                     decideTreatment(objects, programRules_, node, isSurroundOutput);
                 decided != StreamTreatment::processed)
            treatment = decided;
        else if (isVirtualSinkOutput(objects, node))
            treatment = StreamTreatment::copy;
        const ProgramNames program = programNames(objects, node);
        streams.push_back({.serial = node.serial,
                           .program = program,
                           .title = node.property("media.name"),
                           .isCall = isCall(programRules_.callMarks, node, program),
                           .isSurround = isSurround(node, isSurroundOutput),
                           .treatment = treatment});
    }
    return streams;
}

void PipeWireHardware::clientChanged(std::uint32_t clientID) {
    if (router_)
        router_->clientChanged(clientID);
    tell(HardwareProperty::playbackStreams);
}

} // namespace quorbel
