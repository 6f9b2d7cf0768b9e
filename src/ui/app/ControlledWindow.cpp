#include "ui/app/ControlledWindow.h"

#include "ui/model/AppModel.h"

namespace quorbel {

ControlledWindow::ControlledWindow(AppState &state, AppModel &model)
    : state_(state), model_(model) {
    connect(&state_, &AppState::presetsChanged, this, &ControlledProgram::changed);
    connect(&state_, &AppState::activePresetIDChanged, this, &ControlledProgram::changed);
    connect(&state_.profiles(), &OutputProfiles::changed, this, &ControlledProgram::changed);
    connect(model_.engine(), &EngineModel::stateChanged, this, &ControlledProgram::changed);
}

std::vector<Uuid> ControlledWindow::favourites() const { return model_.favourites().ids(); }

std::string ControlledWindow::start() {
    model_.engine()->start();
    return refusal();
}

void ControlledWindow::stop() { model_.engine()->stop(); }

std::string ControlledWindow::refusal() const { return model_.engine()->refusal().toStdString(); }

std::string ControlledWindow::worded(const std::string &engineError) const {
    return shownError(engineError).toStdString();
}

void ControlledWindow::edit(const std::string &what, const std::string &key,
                            const std::function<void()> &change) {
    model_.history()->edit(QString::fromStdString(what), key, change);
}

} // namespace quorbel
