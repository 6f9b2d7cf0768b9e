#include "cli/ChainRateReader.h"
#include "cli/CommandError.h"
#include "cli/CommandSettings.h"
#include "cli/Commands.h"
#include "cli/ProgressBar.h"
#include "cli/RenderTables.h"
#include "cli/SoundFileWriter.h"
#include "engine/OfflineRenderer.h"
#include "platform/core/StreamFormat.h"
#include "platform/threads/TerminationSignals.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <vector>

namespace quorbel {

namespace {

/// Frames between checks for signals, each a system call. Rendering them takes some hundredths of a
/// second at most.
constexpr std::uint32_t framesBetweenSignalChecks = 16384;

/// A settings file that takes effect at the first block boundary at or after a frame.
struct Change {
    double seconds;
    ChainSettings settings;
};

std::vector<Change> loadChanges(const std::vector<TimedFile> &requests) {
    std::vector<Change> changes;
    changes.reserve(requests.size());
    for (const auto &[seconds, path] : requests)
        changes.push_back({seconds, chainSettings(loadSettings(path), path)});
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change &a, const Change &b) { return a.seconds < b.seconds; });
    return changes;
}

/// Follows hard and symbolic links; also compares files that do not exist yet.
bool isSameFile(const std::string &first, const std::string &second) {
    struct stat firstStatus {};
    struct stat secondStatus {};
    if (stat(first.c_str(), &firstStatus) == 0 && stat(second.c_str(), &secondStatus) == 0)
        return firstStatus.st_dev == secondStatus.st_dev &&
               firstStatus.st_ino == secondStatus.st_ino;
    std::error_code unknown;
    return std::filesystem::weakly_canonical(first, unknown) ==
           std::filesystem::weakly_canonical(second, unknown);
}

/// Throws CommandError if two paths lead to the same file: no output may replace another file.
void requireFilesOfTheirOwn(const std::vector<std::optional<std::string>> &paths) {
    constexpr std::array<const char *, 4> parts{"the input", "the output", "the meters' table",
                                                "the spectrum's table"};
    for (std::size_t later = 1; later < paths.size(); ++later)
        for (std::size_t earlier = 0; earlier < later; ++earlier)
            if (paths[later] && paths[earlier] && isSameFile(*paths[later], *paths[earlier]))
                throw CommandError(*paths[later] + ": is the same file as " + parts[earlier]);
}

class RenderCommand final : public Command {
  public:
    RenderCommand();

    /// Throws CommandError without changing OUT.
    void run() const override;

  private:
    std::string settingsPath_;
    std::optional<std::string> presetName_;
    std::uint32_t blockFrames_ = 512;
    std::vector<TimedFile> changes_; ///< settings files
    std::optional<std::string> metersPath_;
    std::optional<std::string> spectrumPath_;
    std::string inputPath_;
    std::string outputPath_;
};

RenderCommand::RenderCommand()
    : Command("render", "Play a sound file through the chain into another, faster than real time") {
    using Completion = CommandValue::Completion;
    declare({.name = "--settings",
             .help = "Settings file (default: your own, else the factory settings)",
             .values = {{"FILE", Completion::file}},
             .variable = &settingsPath_});
    declare({.name = "--preset",
             .help = "Preset to use in place of the settings' bands and spatial effects",
             .values = {{"NAME", Completion::presetName}},
             .variable = &presetName_});
    declare({.name = "--block",
             .help = fmt::format("Frames that are processed at once, 1 to {} (default: {})",
                                 maximumBlockFrames, blockFrames_),
             .values = {{"FRAMES"}},
             .variable = CommandArgument::WholeNumber{&blockFrames_, 1, maximumBlockFrames}});
    declare({.name = "--at",
             .help = "From that time on use this settings file; may be repeated",
             .values = {{"SECONDS"}, {"FILE", Completion::file}},
             .variable = &changes_});
    declare({.name = "--meters",
             .help = "CSV file to write: what the meters show, every 0.1 s of the sound",
             .values = {{"FILE", Completion::file}},
             .variable = &metersPath_});
    declare({.name = "--spectrum",
             .help = "CSV file to write: what the spectrum display shows, 30 times a second",
             .values = {{"FILE", Completion::file}},
             .variable = &spectrumPath_});
    declare({.name = "IN",
             .help = "Mono or stereo sound file of any rate",
             .values = {{"IN", Completion::file}},
             .variable = &inputPath_,
             .isRequired = true});
    declare({.name = "OUT",
             .help = "WAV file to write: 32-bit floats, stereo, 48 kHz",
             .values = {{"OUT", Completion::file}},
             .variable = &outputPath_,
             .isRequired = true});
}

void RenderCommand::run() const {
    TerminationSignals signals;
    const ChainSettings settings =
        chainSettings(loadSettings(settingsPath_), settingsPath_, presetName_);
    const std::vector<Change> changes = loadChanges(changes_);
    ChainRateReader input(inputPath_);
    requireFilesOfTheirOwn({inputPath_, outputPath_, metersPath_, spectrumPath_});
    SoundFileWriter output(outputPath_, input.expectedFrames());
    OfflineRenderer renderer(settings);
    const auto replacedFrames = [&] { return input.replacedFrames() + renderer.replacedFrames(); };
    std::optional<TableFile> meters;
    if (metersPath_) {
        meters.emplace(*metersPath_, meterNames());
        renderer.setReadOutObserver([&](double seconds, const MeterReadings &readings) {
            meters->addRow(meterRow(seconds, readings, replacedFrames()));
        });
    }
    std::optional<TableFile> spectrum;
    if (spectrumPath_) {
        spectrum.emplace(*spectrumPath_, spectrumNames());
        renderer.setSpectrumObserver([&](double seconds, const SpectrumAnalyzer::Levels &levels) {
            spectrum->addRow(spectrumRow(seconds, levels));
        });
    }

    std::vector<float> samples(std::size_t{2} * blockFrames_);
    const AudioBufferList block(samples.data(), samples.data() + blockFrames_);
    auto nextChange = changes.begin();
    const auto endIfInterrupted = [&] {
        if (signals.received())
            throw CommandError(fmt::format("interrupted, {} was not written", outputPath_));
    };
    std::uint64_t nextSignalCheck = 0;
    {
        ProgressBar progress(input.expectedFrames());
        while (const std::uint32_t frames = input.read(block, blockFrames_)) {
            const double seconds =
                static_cast<double>(renderer.framesRendered()) / OfflineRenderer::sampleRate;
            for (; nextChange != changes.end() && nextChange->seconds <= seconds; ++nextChange)
                renderer.apply(nextChange->settings);
            if (const Status status = renderer.render(block, block, frames); status != statusOK)
                throw CommandError(fmt::format("the chain failed with status {}", status));
            output.write(block, frames);
            progress.update(renderer.framesRendered());
            if (renderer.framesRendered() >= nextSignalCheck) {
                endIfInterrupted();
                nextSignalCheck = renderer.framesRendered() + framesBetweenSignalChecks;
            }
        }
        endIfInterrupted();
        for (auto *table : {&meters, &spectrum})
            if (*table)
                (*table)->finish();
        output.finish(); // last: a failing table leaves the sound file unchanged
    }
    if (const auto replaced = replacedFrames(); replaced > 0)
        fmt::print(
            stderr,
            "{}: {} frame{} held samples that are not finite numbers; they were played as zero\n",
            inputPath_, replaced, replaced == 1 ? "" : "s");
}

} // namespace

std::unique_ptr<Command> makeRenderCommand() { return std::make_unique<RenderCommand>(); }

} // namespace quorbel
