#pragma once

#include "platform/hardware/RuntimeFolder.h"

#include <QObject>

#include <optional>

namespace quorbel {

class EngineModel;

/// Holds the user's processing lock while processing runs or waits to resume. Refuses a start while
/// another program (`ostrafine-cli live`) holds it: two would take each other's streams. [main]
class ProcessingPermit final : public QObject {
    Q_OBJECT

  public:
    /// The model must outlive it.
    explicit ProcessingPermit(EngineModel &engine);
    ~ProcessingPermit() override;

  private:
    EngineModel &engine_;
    std::optional<InstanceLock> lock_;
};

} // namespace quorbel
