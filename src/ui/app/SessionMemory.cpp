#include "ui/app/SessionMemory.h"

#include "ui/model/EngineModel.h"

#include <exception>

namespace quorbel {

SessionMemory::SessionMemory(const std::string &settingsPath) : file_(settingsPath) {
    try {
        if (const auto warning = file_.read())
            warning_ = QString::fromStdString(*warning);
    } catch (const std::exception &error) {
        warning_ = tr("The notes of the last session could not be read: %1. The file is left as "
                      "it is.")
                       .arg(QString::fromUtf8(error.what()));
    }
    isToContinue_ = file_.content().isProcessing;
}

void SessionMemory::follow(EngineModel &engine) {
    engine_ = &engine;
    wasWanted_ = engine.wanted();
    connect(&engine, &EngineModel::stateChanged, this, [this] {
        const bool isWanted = engine_->wanted();
        if (isWanted == wasWanted_)
            return;
        wasWanted_ = isWanted;
        isToContinue_ = false;
        noteProcessing(isWanted);
    });
}

void SessionMemory::noteStop() {
    isToContinue_ = false;
    noteProcessing(false);
}

void SessionMemory::close() {
    if (engine_ != nullptr)
        disconnect(engine_, nullptr, this, nullptr);
    engine_ = nullptr;
}

void SessionMemory::noteStartsAtLogin(bool starts) {
    LastSession next = file_.content();
    next.startsAtLogin = starts;
    write(next);
}

void SessionMemory::noteProcessing(bool isProcessing) {
    LastSession next = file_.content();
    next.isProcessing = isProcessing;
    write(next);
}

void SessionMemory::write(const LastSession &next) {
    if (next == file_.content())
        return;
    try {
        const auto warning = file_.write(next);
        setWarning(warning ? QString::fromStdString(*warning) : QString());
    } catch (const std::exception &error) {
        setWarning(tr("It could not be noted whether processing runs, which a start at login "
                      "continues: %1")
                       .arg(QString::fromUtf8(error.what())));
    }
}

void SessionMemory::setWarning(const QString &warning) {
    if (warning.isEmpty() && warning_.isEmpty())
        return;
    warning_ = warning;
    Q_EMIT warningChanged(); // even if equal: announces each failed save
}

} // namespace quorbel
