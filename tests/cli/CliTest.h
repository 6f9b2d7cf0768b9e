#pragma once

#include "settings/records/Persisted.h"
#include "soundserver/ChildProcess.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace quorbel {

/// Interleaved samples of a sound file.
struct Sound {
    int sampleRate = 48000;
    int channels = 2;
    std::vector<float> samples;

    [[nodiscard]] std::size_t frames() const {
        return samples.size() / static_cast<std::size_t>(channels);
    }
    [[nodiscard]] float at(std::size_t frame, std::size_t channel) const {
        return samples[frame * static_cast<std::size_t>(channels) + channel];
    }
};

/// White noise between -0.5 and 0.5, the same at every call.
Sound noise(std::size_t frames, int sampleRate = 48000, int channels = 2);

/// Runs the built program in its own folder, isolated from the user's settings.
class CliTest : public testing::Test {
  protected:
    struct Result {
        int status = -1;
        std::string output;
        std::string errors;
    };

    CliTest();
    ~CliTest() override;

    [[nodiscard]] std::string path(const std::string &name) const {
        return (folder_ / name).string();
    }
    std::string file(const std::string &name, const std::string &bytes) const;
    std::string file(const std::string &name, const Sound &sound,
                     int format = SF_FORMAT_WAV | SF_FORMAT_FLOAT) const;
    std::string file(const std::string &name, const Persisted &settings) const;

    [[nodiscard]] static std::string bytes(const std::string &path);
    [[nodiscard]] static Sound sound(const std::string &path);

    /// Contents of all files in the folder by name.
    [[nodiscard]] std::map<std::string, std::string> folderContents() const;

    /// Runs the program to its end; kills it and fails the test after a minute.
    [[nodiscard]] Result run(const std::vector<std::string> &arguments) const;

    [[nodiscard]] soundserver::ChildProcess start(const std::vector<std::string> &arguments) const;
    [[nodiscard]] static Result endOf(soundserver::ChildProcess &process);

    /// Expects failure with exactly one line that contains `part`, and an unchanged folder.
    void expectRefusal(const std::vector<std::string> &arguments, const std::string &part) const;

    /// Writes the user's settings file.
    void userSettings(const std::string &text) const;
    void userSettings(const Persisted &settings) const;

    /// Gain in dB from in.wav to out.wav over the frames from `first` to `last`.
    [[nodiscard]] double gain(std::size_t first, std::size_t last) const;

    /// Settings without audible effect, with the limiter and its delay off.
    [[nodiscard]] static Persisted flatSettings();

  private:
    std::filesystem::path root_;
    std::filesystem::path folder_;
};

} // namespace quorbel
