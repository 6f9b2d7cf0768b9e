#pragma once

#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "settings/state/AppState.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace quorbel::testing {

/// A folder that is there for the length of a test.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    [[nodiscard]] const std::filesystem::path &path() const { return path_; }

  private:
    std::filesystem::path path_;
};

[[nodiscard]] std::string contentOf(const std::filesystem::path &file);
void write(const std::filesystem::path &file, const std::string &content);

/// The program's state on a machine in memory with the devices "speakers" and "hdmi". Its settings
/// are in an empty folder until a test puts something there.
class AppStateTest : public ::testing::Test {
  protected:
    AppStateTest();
    ~AppStateTest() override;

    /// Starts the program, ending the one before as a crash would: without a last save.
    void launch();
    void wait(double seconds) { clock.advance(seconds); }
    /// How often the settings file was made or replaced since this was asked last.
    [[nodiscard]] int saves();
    /// What the settings file says now.
    [[nodiscard]] Persisted saved() const { return readSettingsFile(file.string()); }
    /// Puts this into the settings file.
    void store(const Persisted &record) const;
    /// The settings of a program that was never touched.
    [[nodiscard]] static Persisted untouched();

    void setGain(float gainDB) { state->engine().eq().setGlobalGainDB(gainDB); }
    [[nodiscard]] float gain() { return state->engine().eq().globalGainDB(); }
    void moveBand(std::size_t index, float gainDB);
    [[nodiscard]] const Preset &preset(const std::string &name) const;
    [[nodiscard]] std::string warning() const { return state->persistWarning().value_or(""); }
    /// The names in the settings folder, but for the settings file.
    [[nodiscard]] std::vector<std::string> otherFiles() const;

  private:
    TemporaryFolder temporary;

  protected:
    const std::filesystem::path folder = temporary.path() / "Quorbel";
    const std::filesystem::path file = folder / "state.json";
    ManualClock clock;
    SimulatedHardware hardware{clock};
    std::unique_ptr<AppState> state;

  private:
    int watch_ = -1;
};

} // namespace quorbel::testing
