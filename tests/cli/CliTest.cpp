#include "cli/CliTest.h"

#include "settings/records/json/SettingsCoding.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

namespace quorbel {

Sound noise(std::size_t frames, int sampleRate, int channels) {
    std::mt19937 random(48000);
    Sound sound{sampleRate, channels, {}};
    sound.samples.resize(frames * static_cast<std::size_t>(channels));
    for (float &sample : sound.samples)
        sample = static_cast<float>(random()) / 4294967296.0F - 0.5F;
    return sound;
}

CliTest::CliTest() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "ostrafine-cli-XXXXXX").string();
    root_ = mkdtemp(pattern.data());
    folder_ = root_ / "files";
    std::filesystem::create_directories(folder_);
}

CliTest::~CliTest() {
    std::filesystem::current_path(root_.parent_path());
    std::filesystem::remove_all(root_);
}

std::string CliTest::file(const std::string &name, const std::string &bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
}

std::string CliTest::file(const std::string &name, const Sound &sound, int format) const {
    SF_INFO info{};
    info.samplerate = sound.sampleRate;
    info.channels = sound.channels;
    info.format = format;
    SNDFILE *file = sf_open(path(name).c_str(), SFM_WRITE, &info);
    EXPECT_NE(file, nullptr) << name << ": " << sf_strerror(nullptr);
    sf_write_float(file, sound.samples.data(), static_cast<sf_count_t>(sound.samples.size()));
    sf_close(file);
    return path(name);
}

std::string CliTest::file(const std::string &name, const Persisted &settings) const {
    return file(name, encodeRecord(settings));
}

std::string CliTest::bytes(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

Sound CliTest::sound(const std::string &path) {
    SF_INFO info{};
    SNDFILE *file = sf_open(path.c_str(), SFM_READ, &info);
    EXPECT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    if (file == nullptr)
        return {};
    EXPECT_EQ(info.format & SF_FORMAT_SUBMASK, SF_FORMAT_FLOAT);
    Sound sound{info.samplerate, info.channels, {}};
    sound.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
    sf_readf_float(file, sound.samples.data(), info.frames);
    sf_close(file);
    return sound;
}

std::map<std::string, std::string> CliTest::folderContents() const {
    std::map<std::string, std::string> contents;
    for (const auto &entry : std::filesystem::directory_iterator(folder_))
        contents[entry.path().filename()] =
            entry.is_regular_file() ? bytes(entry.path().string()) : "not a file";
    return contents;
}

soundserver::ChildProcess CliTest::start(const std::vector<std::string> &arguments) const {
    std::vector<std::string> words = arguments;
    if (words.empty() || words[0][0] != '/')
        words.insert(words.begin(), QUORBEL_CLI);
    std::filesystem::current_path(folder_);
    return {std::move(words),
            {{"XDG_CONFIG_HOME", root_}, {"XDG_RUNTIME_DIR", root_}}}; // without a sound server
}

CliTest::Result CliTest::endOf(soundserver::ChildProcess &process) {
    const auto status = process.exitStatusWithin(60.0);
    EXPECT_TRUE(status) << "the program did not end by itself";
    return {status ? *status : process.stop(0.0), process.output(), process.errors()};
}

CliTest::Result CliTest::run(const std::vector<std::string> &arguments) const {
    auto process = start(arguments);
    return endOf(process);
}

void CliTest::expectRefusal(const std::vector<std::string> &arguments,
                            const std::string &part) const {
    SCOPED_TRACE(testing::PrintToString(arguments));
    const auto before = folderContents();
    const Result result = run(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_THAT(result.errors, testing::StartsWith("ostrafine-cli: "));
    EXPECT_THAT(result.errors, testing::HasSubstr(part));
    EXPECT_TRUE(folderContents() == before) << "files were touched";
}

void CliTest::userSettings(const std::string &text) const {
    std::filesystem::create_directories(root_ / "Quorbel");
    file("../Quorbel/state.json", text);
}

void CliTest::userSettings(const Persisted &settings) const {
    userSettings(encodeRecord(settings));
}

double CliTest::gain(std::size_t first, std::size_t last) const {
    const auto power = [&](const Sound &sound) {
        double sum = 0.0;
        const auto channels = static_cast<std::size_t>(sound.channels);
        for (std::size_t sample = first * channels; sample < last * channels; ++sample)
            sum += std::pow(static_cast<double>(sound.samples.at(sample)), 2);
        return sum / sound.channels;
    };
    return 10.0 * std::log10(power(sound(path("out.wav"))) / power(sound(path("in.wav"))));
}

Persisted CliTest::flatSettings() {
    Persisted settings;
    settings.bands = EQBand::defaultBands();
    settings.mixer = MixerConfig{.limiterEnabled = false};
    return settings;
}

} // namespace quorbel
