// Development tool: shows the real window on simulated hardware, in a selectable state.

#include "engine/ChainFormat.h"
#include "platform/hardware/simulated/SimulatedHardware.h"
#include "platform/threads/MainLoopClock.h"
#include "platform/threads/TerminationSignals.h"
#include "platform/threads/Timer.h"
#include "settings/state/AppState.h"
#include "settings/state/FileWatch.h"
#include "ui/app/MainWindow.h"
#include "ui/app/PresetFileDialogs.h"
#include "ui/app/Setup.h"
#include "ui/model/AppModel.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QImage>
#include <QQuickWindow>
#include <QTemporaryDir>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>

namespace {

using namespace quorbel;

constexpr double beatSeconds = 0.5;

double sine(double frequencyHz, double seconds) {
    return std::sin(2.0 * std::numbers::pi * frequencyHz * seconds);
}

/// Deterministic noise from -1 to 1: a hash of the frame number (one round of splitmix64).
double noise(double seconds, std::uint32_t channel) {
    auto x = static_cast<std::uint64_t>(std::llround(seconds * chainSampleRate)) * 2U + channel;
    x += 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30U)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27U)) * 0x94D049BB133111EBU;
    return static_cast<double>(static_cast<std::int64_t>(x ^ (x >> 31U))) / 0x1p63;
}

/// Signal that looks like music on meters and spectrum: a bass line, chords, a beat of noise.
/// Deterministic; peaks near -3 dBFS.
float music(double seconds, std::uint32_t channel) {
    constexpr std::array roots{55.0, 55.0, 43.65, 49.0}; // Hz, one per bar
    const double bar = seconds / (4.0 * beatSeconds);
    const double root = roots[static_cast<std::size_t>(bar) % roots.size()];
    const double intoBeat = std::fmod(seconds, beatSeconds);
    const double pluck = std::exp(-6.0 * intoBeat);

    double sample = 0.30 * sine(root, seconds) * (0.4 + 0.6 * pluck);
    constexpr std::array chord{4.0, 5.0, 6.0, 8.0, 12.0};
    for (std::size_t i = 0; i < chord.size(); ++i) {
        const double side = ((i + channel) % 2 == 0) ? 1.0 : 0.6;
        for (const double harmonic : {1.0, 2.0, 3.0, 5.0, 8.0})
            sample += side * 0.035 / harmonic * sine(root * chord[i] * harmonic, seconds);
    }
    const double hat = std::exp(-60.0 * std::fmod(seconds, beatSeconds / 2.0));
    return static_cast<float>(sample + (0.02 + 0.18 * hat) * noise(seconds, channel));
}

struct Options {
    QString state = QStringLiteral("stopped");
    QString settings;
    QString grab;
    double grabSeconds = 2.0;
    QSize size;
    QVariantMap properties; ///< of the window
};

Options readOptions(const QApplication &application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows Ostrafine's window on simulated sound hardware."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("state"),
         QStringLiteral("stopped, running (with sound), error (of a start) or empty (no devices)."),
         QStringLiteral("STATE"), QStringLiteral("stopped")},
        {QStringLiteral("settings"),
         QStringLiteral("Settings file; without it, defaults that are forgotten at the end."),
         QStringLiteral("FILE")},
        {QStringLiteral("set"),
         QStringLiteral("Sets a property of the window before it is shown; repeatable."),
         QStringLiteral("NAME=VALUE")},
        {QStringLiteral("size"), QStringLiteral("Size of the window."), QStringLiteral("WxH")},
        {QStringLiteral("grab"), QStringLiteral("Writes a picture of the window and ends."),
         QStringLiteral("FILE.png")},
        {QStringLiteral("after"), QStringLiteral("When to take the picture (default: 2)."),
         QStringLiteral("SECONDS"), QStringLiteral("2")},
    });
    parser.process(application);
    const auto refuse = [&](const QString &what) {
        std::fprintf(stderr, "quorbel-window-simulated: %s\n", qPrintable(what));
        std::exit(2);
    };

    Options options;
    options.state = parser.value(QStringLiteral("state"));
    if (!QStringList{"stopped", "running", "error", "empty"}.contains(options.state))
        refuse(QStringLiteral("there is no state ") + options.state);
    options.settings = parser.value(QStringLiteral("settings"));
    options.grab = parser.value(QStringLiteral("grab"));
    bool isNumber = false;
    options.grabSeconds = parser.value(QStringLiteral("after")).toDouble(&isNumber);
    if (!isNumber || options.grabSeconds < 0.0)
        refuse(QStringLiteral("--after takes seconds"));
    if (parser.isSet(QStringLiteral("size"))) {
        const QStringList parts = parser.value(QStringLiteral("size")).split('x');
        options.size = QSize(parts.value(0).toInt(), parts.value(1).toInt());
        if (options.size.isEmpty())
            refuse(QStringLiteral("--size takes WIDTHxHEIGHT"));
    }
    for (const QString &setting : parser.values(QStringLiteral("set")))
        options.properties[setting.section('=', 0, 0)] = setting.section('=', 1);
    return options;
}

void equip(SimulatedHardware &machine, const QString &state) {
    if (state == QStringLiteral("empty"))
        return;
    machine.addDevice({.uid = "speakers", .name = "Edifier MR5"});
    machine.addDevice({.uid = "headphones", .name = "Headphones"});
    machine.addDevice({.uid = "hdmi", .name = "HDMI / DisplayPort"});
    if (state == QStringLiteral("running"))
        machine.play(music);
    if (state == QStringLiteral("error"))
        machine.operations().fail(SimulatedHardware::Operation::startDevice, -EACCES);
}

} // namespace

int main(int argc, char **argv) {
    TerminationSignals signals;
    QApplication application(argc, argv);
    setUpApplication(application);
    signals.endEventLoop();
    const Options options = readOptions(application);

    const QTemporaryDir temporary;
    const QString settings = options.settings.isEmpty()
                                 ? temporary.filePath(QStringLiteral("state.json"))
                                 : options.settings;
    MainLoopClock clock;
    SimulatedHardware machine(clock);
    equip(machine, options.state);
    AppState state(machine, clock, settings.toStdString());
    const auto takeChanges = [&] { state.takeFileChanges(); };
    const FileWatch settingsWatch(state.settingsPath(), clock, takeChanges);
    const FileWatch profilesWatch(state.profiles().path(), clock, takeChanges);
    const FileWatch rulesWatch(state.programRulesPath(), clock, takeChanges);
    AppModel model(state, clock);
    // Discards the recordings, which would grow without limit.
    const auto forget = Timer::repeating(clock, 5.0, [&] {
        for (const AudioDevice &device : state.deviceManager().outputDevices())
            static_cast<void>(machine.takeRecording(device.uid));
    });

    MainWindow window(options.properties);
    if (!window.isLoaded())
        return 1;
    PresetFileDialogs fileDialogs(window.window());
    model.presets()->setFileChooser(&fileDialogs);
    if (options.size.isValid())
        window.window().resize(options.size);
    window.raise();
    if (options.state == QStringLiteral("running") || options.state == QStringLiteral("error"))
        model.engine()->start();

    Timer grab;
    if (!options.grab.isEmpty())
        grab = Timer::once(clock, options.grabSeconds, [&] {
            const bool written = window.window().grabWindow().save(options.grab);
            if (!written)
                std::fprintf(stderr, "quorbel-window-simulated: %s cannot be written\n",
                             qPrintable(options.grab));
            QCoreApplication::exit(written ? 0 : 1);
        });

    const int result = QCoreApplication::exec();
    state.engine().stop();
    state.persist();
    return result;
}
