#pragma once

#include "platform/hardware/routing/RoutedStream.h"

#include <map>
#include <vector>

namespace quorbel {

/// Receives every stream before it is routed and after it was put back.
class RouteLog {
  public:
    virtual ~RouteLog() = default;
    virtual void routed(const RoutedStream &stream) = 0;
    virtual void released(const RoutedStream &stream) = 0;
};

/// The streams that are routed to a tap.
class RouteLedger final : public RouteLog {
  public:
    void routed(const RoutedStream &stream) override;
    void released(const RoutedStream &stream) override;
    /// Applies one line of text; returns false if it is neither a routing nor a release.
    bool take(std::string_view line);
    void clear() { streams_.clear(); }
    [[nodiscard]] std::vector<RoutedStream> streams() const;
    [[nodiscard]] std::size_t size() const { return streams_.size(); }

  private:
    std::map<std::pair<std::uint32_t, std::uint64_t>, RoutedStream> streams_; ///< by id and serial
};

} // namespace quorbel
