#include "ui/app/ProcessingPermit.h"

#include "ui/model/EngineModel.h"

namespace quorbel {

ProcessingPermit::ProcessingPermit(EngineModel &engine) : engine_(engine) {
    engine_.setStartCheck([this] {
        if (!lock_)
            lock_.emplace();
        if (lock_->isHeld())
            return QString();
        lock_.reset();
        return tr("Another Ostrafine is running and processes the sound. Stop that one first.");
    });
    connect(&engine_, &EngineModel::stateChanged, this, [this] {
        if (!engine_.wanted())
            lock_.reset();
    });
}

ProcessingPermit::~ProcessingPermit() { engine_.setStartCheck({}); }

} // namespace quorbel
