#pragma once

#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/SettingsCoding.h"
#include "settings/state/AppState.h"
#include "settings/state/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace quorbel::testing {

/// Application state on simulated hardware with the devices "speakers" and "hdmi". The settings
/// folder is empty at first.
class AppStateTest : public ::testing::Test {
  public:
    AppStateTest() {
        hardware.addDevice({.uid = "speakers"});
        hardware.addDevice({.uid = "hdmi"});
        std::filesystem::create_directory(folder);
        EXPECT_GE(inotify_add_watch(watch_, folder.c_str(), IN_CREATE | IN_MOVED_TO), 0);
    }
    ~AppStateTest() override { close(watch_); }

  protected:
    /// Restarts the program without a final save, as after a crash.
    void launch() {
        state.reset();
        state = std::make_unique<AppState>(hardware, clock, file.string());
    }
    void launchWith(const Persisted &record) {
        write(file, encodeRecord(record));
        launch();
    }
    /// Default settings.
    [[nodiscard]] static Persisted untouched() {
        Persisted record;
        record.bands = EQBand::defaultBands();
        record.presets = factoryPresets();
        return record;
    }

    void wait(double seconds) { clock.advance(seconds); }
    void setGain(float gainDB) { state->engine().eq().setGlobalGainDB(gainDB); }
    void saveGain(float gainDB) {
        setGain(gainDB);
        wait(0.5);
    }
    [[nodiscard]] float gain() { return state->engine().eq().globalGainDB(); }
    void moveBand(std::size_t index, float gainDB) {
        std::vector<EQBand> bands = state->engine().eq().bands();
        bands.at(index).gainDB = gainDB;
        state->engine().eq().setBands(bands);
    }
    [[nodiscard]] Preset preset(const std::string &name) const {
        return *std::ranges::find(state->presets(), name, &Preset::name);
    }
    [[nodiscard]] std::string displayName() const { return state->activePresetDisplayName(); }
    [[nodiscard]] std::string warning() const { return state->persistWarning().value_or(""); }

    /// Number of creations and replacements of the settings file since the last call.
    [[nodiscard]] int saves() {
        int count = 0;
        alignas(inotify_event) char buffer[4096];
        for (ssize_t length = 0; (length = read(watch_, buffer, sizeof buffer)) > 0;)
            for (ssize_t at = 0; at < length;) {
                const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
                count += std::string(event->name) == "state.json" ? 1 : 0;
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        return count;
    }
    [[nodiscard]] Persisted saved() const { return readSettingsFile(file.string()); }
    /// Names in the settings folder except the settings file and its lock.
    [[nodiscard]] std::vector<std::string> otherFiles() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            if (entry.path() != file && entry.path() != file.string() + ".lock")
                names.push_back(entry.path().filename());
        return names;
    }

  private:
    TemporaryFolder temporary_;
    const int watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);

  protected:
    const std::filesystem::path folder = temporary_.path() / "Quorbel";
    const std::filesystem::path file = folder / "state.json";
    ManualClock clock;
    SimulatedHardware hardware{clock};
    std::unique_ptr<AppState> state;
};

} // namespace quorbel::testing
