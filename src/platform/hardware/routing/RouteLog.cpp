#include "platform/hardware/routing/RouteLog.h"

namespace quorbel {

void RouteLedger::routed(const RoutedStream &stream) {
    streams_[{stream.streamID, stream.streamSerial}] = stream;
}

void RouteLedger::released(const RoutedStream &stream) {
    streams_.erase({stream.streamID, stream.streamSerial});
}

bool RouteLedger::take(std::string_view line) {
    if (const auto stream = RoutedStream::decode(line)) {
        routed(*stream);
        return true;
    }
    if (const auto released = decodeRelease(line)) {
        streams_.erase(*released);
        return true;
    }
    return false;
}

std::vector<RoutedStream> RouteLedger::streams() const {
    std::vector<RoutedStream> result;
    for (const auto &[_, stream] : streams_)
        result.push_back(stream);
    return result;
}

} // namespace quorbel
