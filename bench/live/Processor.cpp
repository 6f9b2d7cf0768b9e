#include "live/Processor.h"

#include "EverythingOn.h"
#include "engine/OfflineRenderer.h"
#include "live/FilterChain.h"
#include "settings/interchange/BandResponse.h"
#include "settings/records/json/SettingsCoding.h"
#include "soundserver/LiveProcess.h"
#include "soundserver/Waiting.h"

#include <fstream>

namespace quorbel::bench {
namespace {

/// Levels of a `SteadySound` after processing, rendered offline until auto gain and the adaptive
/// stages have settled.
SteadyLevels renderedLevels(const ChainSettings &settings) {
    constexpr std::uint32_t blockFrames = 480;
    constexpr int blocks = 3000; // 30 s
    OfflineRenderer renderer(settings);
    SteadySound sound;
    soundserver::Recording last;
    last.left.resize(blockFrames);
    last.right.resize(blockFrames);
    const AudioBufferList buffers(last.left.data(), last.right.data());
    for (int block = 0; block < blocks; ++block) {
        sound.fill(0, buffers.data[0], buffers.data[1], blockFrames);
        renderer.render(buffers, buffers, blockFrames);
    }
    return levelsOf(last);
}

std::string writeFile(const std::filesystem::path &path, const std::string &text) {
    if (!(std::ofstream(path) << text << std::flush))
        throw soundserver::ServerError("cannot write " + path.string());
    return path.string();
}

Processor filterChainOf(const std::string &name, const std::vector<EQBand> &bands,
                        const SteadyLevels &expected, const std::filesystem::path &folder,
                        const std::string &device) {
    const std::string path =
        writeFile(folder / (name + ".conf"), filterChainConfiguration(bands, device));
    return {name, {"pipewire", "-c", path}, filterChainSink, expected};
}

} // namespace

Processor ostrafine(const std::filesystem::path &folder) {
    const ChainSettings settings = everythingOn();
    Persisted file;
    file.bands = settings.bands;
    file.spatial = settings.spatial;
    file.mixer = settings.mixer;
    const std::string path = writeFile(folder / "settings.json", encodeRecord(file));
    return {"ostrafine-cli live",
            {soundserver::LiveProcess::program(), "live", "--settings", path},
            "",
            renderedLevels(settings)};
}

Processor filterChain(const std::filesystem::path &folder, const std::string &device) {
    const ChainSettings settings = everythingOn();
    std::vector<EQBand> bands = settings.bands;
    const auto add = [&](EQBand::FilterType type, float hz, float q, float gainDB) {
        EQBand &band = bands.emplace_back();
        band.filterType = type;
        band.frequency = hz;
        band.q = q;
        band.gainDB = gainDB;
    };
    // Same frequency and Q as effects/ToneEqualizer.
    add(EQBand::FilterType::lowShelf, 100.0F, 0.707F, settings.spatial.toneBassDB);
    add(EQBand::FilterType::parametric, 1000.0F, 0.7F, settings.spatial.toneMidDB);
    add(EQBand::FilterType::highShelf, 5000.0F, 0.707F, settings.spatial.toneTrebleDB);

    std::vector<double> levels(SteadySound::hz.size(), SteadySound::levelDB);
    for (const EQBand &band : bands)
        addBandResponseDB(band, {SteadySound::hz.begin(), SteadySound::hz.end()}, levels);
    return filterChainOf("the filter chain", bands, {levels[0], levels[1]}, folder, device);
}

Processor copyingChain(const std::filesystem::path &folder, const std::string &device) {
    return filterChainOf("the copying chain", {}, {SteadySound::levelDB, SteadySound::levelDB},
                         folder, device);
}

} // namespace quorbel::bench
