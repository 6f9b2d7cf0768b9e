#include "settings/state/AppStateFixture.h"

#include "settings/presets/FactoryPresets.h"
#include "settings/records/json/SettingsCoding.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/inotify.h>
#include <unistd.h>

namespace quorbel::testing {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "state-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() { std::filesystem::remove_all(path_); }

std::string contentOf(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const std::filesystem::path &file, const std::string &content) {
    std::ofstream(file, std::ios::binary) << content;
}

AppStateTest::AppStateTest() {
    hardware.addDevice({.uid = "speakers"});
    hardware.addDevice({.uid = "hdmi"});
    std::filesystem::create_directory(folder);
    watch_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    EXPECT_GE(inotify_add_watch(watch_, folder.c_str(), IN_CREATE | IN_MOVED_TO), 0);
}

AppStateTest::~AppStateTest() { close(watch_); }

void AppStateTest::launch() {
    state.reset();
    state = std::make_unique<AppState>(hardware, clock, file.string());
}

int AppStateTest::saves() {
    int count = 0;
    alignas(inotify_event) char buffer[4096];
    ssize_t length = 0;
    while ((length = read(watch_, buffer, sizeof buffer)) > 0)
        for (ssize_t at = 0; at < length;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
            count += std::string(event->name) == "state.json" ? 1 : 0;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    return count;
}

void AppStateTest::store(const Persisted &record) const { write(file, encodeRecord(record)); }

Persisted AppStateTest::untouched() {
    Persisted record;
    record.bands = EQBand::defaultBands();
    record.presets = factoryPresets();
    return record;
}

void AppStateTest::moveBand(std::size_t index, float gainDB) {
    std::vector<EQBand> bands = state->engine().eq().bands();
    bands.at(index).gainDB = gainDB;
    state->engine().eq().setBands(bands);
}

const Preset &AppStateTest::preset(const std::string &name) const {
    const auto found = std::ranges::find(state->presets(), name, &Preset::name);
    if (found == state->presets().end())
        throw std::runtime_error("no preset " + name);
    return *found;
}

std::vector<std::string> AppStateTest::otherFiles() const {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        if (entry.path() != file)
            names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
}

} // namespace quorbel::testing
