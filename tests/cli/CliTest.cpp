#include "cli/CliTest.h"

#include "settings/records/json/SettingsCoding.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quorbel {

namespace {

constexpr std::chrono::seconds deadline{60};

} // namespace

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

CliTest::~CliTest() { std::filesystem::remove_all(root_); }

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

pid_t CliTest::start(const std::vector<std::string> &arguments) const {
    std::vector<std::string> words = arguments;
    if (words.empty() || words[0][0] != '/')
        words.insert(words.begin(), QUORBEL_CLI);
    std::vector<char *> pointers;
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const std::string output = (root_ / "output").string();
    const std::string errors = (root_ / "errors").string();

    const pid_t process = fork();
    if (process == 0) {
        const int flags = O_CREAT | O_TRUNC | O_WRONLY;
        dup2(open(output.c_str(), flags, 0600), STDOUT_FILENO);
        dup2(open(errors.c_str(), flags, 0600), STDERR_FILENO);
        setenv("XDG_CONFIG_HOME", root_.c_str(), 1);
        setenv("XDG_RUNTIME_DIR", root_.c_str(), 1); // where no sound server is
        if (chdir(folder_.c_str()) == 0)
            execv(pointers[0], pointers.data());
        _exit(127);
    }
    return process;
}

CliTest::Result CliTest::waitFor(pid_t process) const {
    const auto end = std::chrono::steady_clock::now() + deadline;
    int status = 0;
    while (waitpid(process, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            ADD_FAILURE() << "the program did not end by itself";
            break;
        }
        std::this_thread::yield();
    }
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            bytes((root_ / "output").string()), bytes((root_ / "errors").string())};
}

CliTest::Result CliTest::run(const std::vector<std::string> &arguments) const {
    return waitFor(start(arguments));
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

Persisted CliTest::flatSettings() {
    Persisted settings;
    settings.bands = EQBand::defaultBands();
    settings.mixer = MixerConfig{.limiterEnabled = false};
    return settings;
}

} // namespace quorbel
