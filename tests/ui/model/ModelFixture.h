#pragma once

#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/ManualClock.h"
#include "settings/state/AppState.h"
#include "settings/state/TemporaryFolder.h"
#include "ui/model/AppModel.h"

#include <gtest/gtest.h>

#include <QAbstractItemModel>

#include <cmath>
#include <memory>
#include <numbers>

namespace quorbel::testing {

/// Counts an object's signals since construction or the last `take`.
class Announcements {
  public:
    template <typename Sender, typename Signal> Announcements(const Sender &sender, Signal signal) {
        QObject::connect(&sender, signal, &context_, [this] { ++count_; });
    }
    [[nodiscard]] int take() { return std::exchange(count_, 0); }

  private:
    QObject context_;
    int count_ = 0;
};

/// The program as QML sees it, on simulated hardware with the devices "speakers" and "hdmi" and one
/// application that plays a tone. The default device is selected; there is no settings file yet.
class ModelTest : public ::testing::Test {
  public:
    ModelTest() {
        hardware.addDevice({.uid = "speakers", .name = "Speakers"});
        hardware.addDevice({.uid = "hdmi", .name = "HDMI"});
        hardware.play([](double seconds, std::uint32_t) {
            return static_cast<float>(0.5 * std::sin(2000.0 * std::numbers::pi * seconds));
        });
        state =
            std::make_unique<AppState>(hardware, clock, (folder.path() / "state.json").string());
        app = std::make_unique<AppModel>(*state, clock);
    }
    ~ModelTest() override {
        app.reset();
        state.reset();
    }

  protected:
    [[nodiscard]] AudioEngine &engine() { return state->engine(); }
    [[nodiscard]] const std::vector<EQBand> &bands() { return state->engine().eq().bands(); }

    void run() {
        app->devices()->select("speakers");
        app->engine()->start();
        clock.runPending();
        ASSERT_TRUE(app->engine()->running()) << app->engine()->errorMessage().toStdString();
    }

    /// A model's value in a row under a role's name.
    [[nodiscard]] static QVariant says(const QAbstractItemModel &model, int row,
                                       const QByteArray &role) {
        const int key = model.roleNames().key(role, -1);
        EXPECT_NE(key, -1) << role.toStdString();
        return model.data(model.index(row, 0), key);
    }
    [[nodiscard]] QString presetId(int row) const {
        return says(*app->presets(), row, "presetId").toString();
    }

    const TemporaryFolder folder;
    ManualClock clock;
    SimulatedHardware hardware{clock};
    std::unique_ptr<AppState> state;
    std::unique_ptr<AppModel> app;
};

} // namespace quorbel::testing
