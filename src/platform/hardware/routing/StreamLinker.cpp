#include "platform/hardware/routing/StreamLinker.h"

#include "platform/hardware/routing/StreamRules.h"

#include <algorithm>

namespace quorbel {
namespace {

constexpr double handshakeSeconds = 0.5;

} // namespace

bool StreamLinker::isFullyLinked(std::uint32_t streamID) const {
    std::set<std::uint32_t> fed;
    for (const auto &[_, link] : objects_.links())
        if (link.outputNodeID == streamID && link.inputNodeID == ends_.tapID)
            fed.insert(link.inputPortID);
    return fed.size() >= 2 && isPlainStereo(objects_, ends_.tapID, true);
}

const NodeRecord *StreamLinker::deviceBeside(std::uint32_t streamID,
                                             const StreamLinks &links) const {
    if (links.handshake != 0)
        return nullptr;
    for (const auto &[_, link] : objects_.links())
        if (const NodeRecord *other = objects_.node(link.inputNodeID);
            link.outputNodeID == streamID && other != nullptr && isOutputDevice(*other))
            return other;
    return nullptr;
}

void StreamLinker::linkToTap(std::uint32_t streamID, StreamLinks &links) {
    const auto outputs = objects_.ports(streamID, false);
    const auto inputs = objects_.ports(ends_.tapID, true);
    if (outputs.empty())
        return;
    for (const PortRecord &input : inputs) {
        const auto isInput = [&](const auto &entry) {
            return entry.second.outputNodeID == streamID && entry.second.inputPortID == input.id;
        };
        if (std::any_of(objects_.links().begin(), objects_.links().end(), isInput))
            continue;
        auto from = std::find_if(outputs.begin(), outputs.end(), [&](const PortRecord &output) {
            return output.channel == input.channel;
        });
        if (from == outputs.end()) // mono, or channels without a position
            from = outputs.begin() + std::min<std::ptrdiff_t>(input.index, std::ssize(outputs) - 1);
        links.own.push_back(
            commands_.createLink({streamID, from->id, ends_.tapID, input.id, false}));
    }
}

void StreamLinker::noteFormer(std::uint32_t streamID, StreamLinks &links) const {
    links.former.clear();
    for (const auto &[id, link] : objects_.links())
        if (link.outputNodeID == streamID && link.inputNodeID != ends_.tapID)
            links.former.insert(id);
}

const NodeRecord *StreamLinker::removeFormer(std::uint32_t streamID, const StreamLinks &links) {
    const NodeRecord *place = nullptr;
    for (const auto &[id, link] : objects_.links()) {
        const NodeRecord *to = objects_.node(link.inputNodeID);
        if (link.outputNodeID != streamID || to == nullptr || !isOutputDevice(*to))
            continue;
        if (links.former.contains(id))
            commands_.removeLink(id);
        else
            place = to;
    }
    return place;
}

void StreamLinker::drop(StreamLinks &links) {
    for (const OwnLink link : links.own)
        commands_.destroyLink(link);
    links.own.clear();
    endHandshake(links);
}

/// Returns an output device for the handshake of a PulseAudio client; 0 without one.
std::uint32_t StreamLinker::handshakeSink() const {
    const NodeRecord *device = objects_.node(ends_.deviceID);
    if (device != nullptr && isOutputDevice(*device) && objects_.hasPorts(device->id, true))
        return device->id;
    for (const auto &[id, node] : objects_.nodes())
        if (isOutputDevice(node) && objects_.hasPorts(id, true))
            return id;
    return 0;
}

// The PulseAudio server answers a client only once its stream is linked to a real sink: linked to
// the tap alone, the client would wait forever. The handshake is a passive link to the output.
void StreamLinker::startHandshake(const NodeRecord &stream, StreamLinks &links) {
    const std::uint32_t sink = handshakeSink();
    if (!isPulseClient(stream) || isAnsweredPulseClient(stream) || links.handshake != 0 ||
        sink == 0)
        return;
    const PortRecord from = objects_.ports(stream.id, false).front();
    const PortRecord to = objects_.ports(sink, true).front();
    links.handshake = commands_.createLink({stream.id, from.id, sink, to.id, true});
    links.handshakeEnd = commands_.seconds() + handshakeSeconds;
}

void StreamLinker::endHandshake(StreamLinks &links) {
    if (links.handshake != 0)
        commands_.destroyLink(links.handshake);
    links.handshake = 0;
    links.handshakeEnd = std::numeric_limits<double>::infinity();
}

} // namespace quorbel
