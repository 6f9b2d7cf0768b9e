#include "ui/app/simulated/SimulatedMachine.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace quorbel::simulated {

namespace {

constexpr double twoPi = 6.283185307179586;

/// Partials from 40 Hz to 15 kHz, falling by 3 dB per octave, each with its own swell rate.
float music(double seconds, std::uint32_t channel) {
    constexpr int partials = 60;
    double sum = 0.0;
    for (int partial = 0; partial < partials; ++partial) {
        const double hertz = 40.0 * std::pow(375.0, partial / (partials - 1.0));
        const double rhythm = 0.3 + std::fmod(1.37 * partial, 2.0);
        const double swell = 0.55 + 0.45 * std::sin(twoPi * rhythm * seconds + 5.0 * partial);
        sum += 0.14 * std::sqrt(40.0 / hertz) * swell *
               std::sin(twoPi * hertz * seconds + partial + channel * 0.3);
    }
    return static_cast<float>(sum);
}

} // namespace

SimulatedMachine::SimulatedMachine() {
    hardware_.addDevice({.uid = "speakers", .name = "Studio monitors"});
    hardware_.addDevice({.uid = "headphones", .name = "USB headphones"});
    const QString file = folder_.filePath("Quorbel/state.json");
    QDir().mkpath(folder_.filePath("Quorbel"));
    state_ = std::make_unique<AppState>(hardware_, clock_, file.toStdString());
    state_->engine().setOutputDevice(state_->deviceManager().outputDevice("speakers"));
    model_ = std::make_unique<AppModel>(*state_, clock_);
    model_->presets()->setFileChooser(this);
}

SimulatedMachine::~SimulatedMachine() {
    allowSaving();
    model_.reset();
    state_.reset();
}

void SimulatedMachine::addDevice(const QString &uid, const QString &name) {
    hardware_.addDevice({.uid = uid.toStdString(), .name = name.toStdString()});
    clock_.advance(0.5);
}

void SimulatedMachine::playPrograms() {
    using enum StreamTreatment;
    auto stream = [serial = std::uint64_t{100}](const char *name, const char *binary,
                                                const char *title,
                                                StreamTreatment treatment) mutable {
        return PlaybackStream{.serial = ++serial,
                              .program = {.binary = binary, .name = name},
                              .title = title,
                              .isCall = treatment == call,
                              .isSurround = treatment == surround,
                              .treatment = treatment};
    };
    hardware_.setPlaybackStreams(
        {stream("Music", "music", "Nocturne no. 2 in E flat major", processed),
         stream("Web browser", "browser", "A talk about sound, part 2", processed),
         stream("Films", "films", "The long night", surround),
         stream("Telephone", "gnome-calls", "Call", call),
         stream("Game", "game", "Battle", excluded), stream("Sound editor", "editor", "", moved)});
    clock_.runPending();
}

int SimulatedMachine::deviceListReads() {
    return static_cast<int>(std::ranges::count(hardware_.operations().calls(),
                                               SimulatedHardware::Operation::deviceList));
}

void SimulatedMachine::removeDevice(const QString &uid) {
    hardware_.removeDevice(uid.toStdString());
    clock_.advance(0.5);
}

void SimulatedMachine::removeAllDevices() {
    state_->engine().setOutputDevice(std::nullopt);
    for (const AudioDevice &device : state_->deviceManager().outputDevices())
        hardware_.removeDevice(device.uid);
    state_->deviceManager().refresh();
    clock_.advance(0.5);
}

void SimulatedMachine::playMusic() { hardware_.play(music); }

void SimulatedMachine::failCapture() {
    hardware_.operations().fail(simulated::Operation::createProcessTap, -1);
}

void SimulatedMachine::repairCapture() {
    hardware_.operations().repair(simulated::Operation::createProcessTap);
}

void SimulatedMachine::blockSaving() {
    // Puts a folder in the file's place, which not even root can replace with a file.
    QFile::remove(folder_.filePath("Quorbel/state.json"));
    QDir().mkpath(folder_.filePath("Quorbel/state.json/in the way"));
}

void SimulatedMachine::allowSaving() {
    QDir(folder_.filePath("Quorbel/state.json")).removeRecursively();
}

QString SimulatedMachine::writeFile(const QString &name, const QString &text) {
    QFile file(folder_.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
    return file.fileName();
}

QString SimulatedMachine::clipboard() const { return QGuiApplication::clipboard()->text(); }

bool SimulatedMachine::fileExists(const QString &path) const { return QFile::exists(path); }

void SimulatedMachine::chooseImport(FilesChosen chosen) {
    if (!chosenFile_.isEmpty())
        chosen(chosenFile_.split('\n'));
}

void SimulatedMachine::chooseExport(const QString &suggestedName, FileChosen chosen) {
    suggestedName_ = suggestedName;
    if (!chosenFile_.isEmpty())
        chosen(chosenFile_);
}

} // namespace quorbel::simulated
