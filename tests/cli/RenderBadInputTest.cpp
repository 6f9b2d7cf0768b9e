#include "cli/CliTest.h"
#include "soundserver/Waiting.h"

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace quorbel {
namespace {

using RenderBadInput = CliTest;

TEST_F(RenderBadInput, UnusableInputsAreRefusedByName) {
    const std::string good = bytes(file("in.wav", noise(5000)));
    file("empty.wav", std::string());
    file("none.wav", noise(0));
    file("text.wav", std::string(3000, 'x') + "\n");
    file("picture.png", "\x89PNG\r\n\x1a\n" + std::string(5000, '\7'));
    file("eight.wav", noise(100, 48000, 8));
    file("header.wav", good.substr(0, 30));
    file("half.wav", good.substr(0, good.size() / 2));
    file("almost.wav", good.substr(0, good.size() - 3));
    file("line\nbreak.wav", std::string("x"));
    std::filesystem::create_directory(path("folder"));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);

    for (const auto &[input, reason] : std::initializer_list<std::pair<const char *, const char *>>{
             {"missing.wav", "missing.wav: No such file"},
             {"empty.wav", "empty.wav: is empty"},
             {"none.wav", "none.wav: holds no sound"},
             {"text.wav", "text.wav: is not a sound file"},
             {"picture.png", "picture.png: is not a sound file"},
             {"eight.wav", "eight.wav: has 8 channels"},
             {"header.wav", "header.wav: is not a sound file"},
             {"half.wav", "half.wav: is truncated"},
             {"almost.wav", "almost.wav: is truncated"},
             {"line\nbreak.wav", "line?break.wav: is not a sound file"},
             {"folder", "folder: is a directory"},
             {"pipe", "pipe: is not a regular file"},
             {"/dev/zero", "/dev/zero: is not a regular file"}})
        expectRefusal({"render", input, "out.wav"}, reason);
}

TEST_F(RenderBadInput, TruncationIsDetectedInEveryFormatWithALength) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                             SF_FORMAT_AU | SF_FORMAT_FLOAT, SF_FORMAT_W64 | SF_FORMAT_FLOAT,
                             SF_FORMAT_RF64 | SF_FORMAT_FLOAT, SF_FORMAT_FLAC | SF_FORMAT_PCM_16,
                             SF_FORMAT_CAF | SF_FORMAT_PCM_16}) {
        SCOPED_TRACE(format);
        const std::string whole = bytes(file("whole", noise(20000), format));
        EXPECT_EQ(run({"render", "whole", "out.wav"}).status, 0);
        std::filesystem::remove(path("out.wav"));
        file("cut", whole.substr(0, whole.size() * 2 / 3));
        expectRefusal({"render", "cut", "out.wav"}, "cut: ");
    }
}

// Programs that write to a pipe do not know the length in advance.
TEST_F(RenderBadInput, AnUnknownLengthIsNoTruncation) {
    std::string open = bytes(file("in.wav", noise(1000)));
    const auto data = open.find("data");
    ASSERT_NE(data, std::string::npos);
    open.replace(data + 4, 4, "\xff\xff\xff\xff");
    file("open.wav", open);
    EXPECT_EQ(run({"render", "open.wav", "out.wav"}).status, 0);
    EXPECT_EQ(sound(path("out.wav")).frames(), 1000U);
}

TEST_F(RenderBadInput, OutputsThatCannotBeWrittenAreRefusedByName) {
    file("in.wav", noise(1000));
    std::filesystem::create_directory(path("folder"));
    std::filesystem::create_hard_link(path("in.wav"), path("hard.wav"));
    std::filesystem::create_symlink("in.wav", path("soft.wav"));
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);

    expectRefusal({"render", "in.wav", "nowhere/out.wav"}, "nowhere/out.wav: cannot be written");
    expectRefusal({"render", "in.wav", "in.wav/out.wav"}, "in.wav/out.wav: cannot be written");
    expectRefusal({"render", "in.wav", "folder"}, "folder: is a directory");
    expectRefusal({"render", "in.wav", "pipe"}, "pipe: is not a regular file");
    expectRefusal({"render", "in.wav", "/dev/null"}, "/dev/null: is not a regular file");
    expectRefusal({"render", "in.wav", "in.wav"}, "in.wav: is the same file as the input");
    expectRefusal({"render", "in.wav", "./folder/../in.wav"}, "is the same file as the input");
    expectRefusal({"render", "in.wav", "hard.wav"}, "hard.wav: is the same file as the input");
    expectRefusal({"render", "in.wav", "soft.wav"}, "soft.wav: is the same file as the input");
    expectRefusal({"render", "soft.wav", "in.wav"}, "in.wav: is the same file as the input");
    if (geteuid() != 0) {
        ASSERT_EQ(chmod(path("folder").c_str(), 0500), 0);
        expectRefusal({"render", "in.wav", "folder/out.wav"}, "Permission denied");
    }
}

TEST_F(RenderBadInput, AFullDiskLeavesTheOldOutputAndNothingElse) {
    file("in.wav", noise(200000));
    file("out.wav", std::string("what was there before"));
    expectRefusal({"/bin/sh", "-c", "ulimit -f 200; exec '" QUORBEL_CLI "' render in.wav out.wav"},
                  "out.wav: cannot be written: ");
}

TEST_F(RenderBadInput, AnInterruptedRenderLeavesNothing) {
    // A sparse file long enough that no machine finishes before the signal arrives.
    std::string header = bytes(file("in.wav", noise(0), SF_FORMAT_W64 | SF_FORMAT_PCM_16));
    constexpr std::uint64_t soundBytes = std::uint64_t{8} << 30U;
    const auto putLength = [&](std::size_t at, std::uint64_t length) {
        for (std::size_t byte = 0; byte < 8; ++byte)
            header[at + byte] = static_cast<char>(length >> (8 * byte));
    };
    putLength(16, header.size() + soundBytes);
    putLength(header.size() - 8, 24 + soundBytes);
    file("in.wav", header);
    std::filesystem::resize_file(path("in.wav"), header.size() + soundBytes);

    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        auto process = start({"render", "in.wav", "out.wav"});
        const auto holdsOutput = [&] {
            std::error_code gone;
            for (const auto &entry : std::filesystem::directory_iterator(
                     "/proc/" + std::to_string(process.pid()) + "/fd", gone)) {
                const auto target = std::filesystem::read_symlink(entry, gone).string();
                if (target.starts_with(path("")) && !target.ends_with("in.wav"))
                    return true;
            }
            return false;
        };
        EXPECT_TRUE(soundserver::comesTrue(20.0, holdsOutput));
        process.signal(signal);
        const Result result = endOf(process);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "ostrafine-cli: interrupted, out.wav was not written\n");
        const std::vector<std::filesystem::directory_entry> left{
            std::filesystem::directory_iterator(path("")), {}};
        EXPECT_EQ(left.size(), 1U) << "more than the input is left";
    }
}

} // namespace
} // namespace quorbel
