#include "cli/CliTest.h"
#include "platform/core/Version.h"

namespace quorbel {
namespace {

using Usage = CliTest;

TEST_F(Usage, aCommandLineThatMakesNoSenseEndsWithStatusTwo) {
    const std::vector<std::vector<std::string>> commandLines{
        {""},
        {"play"},
        {"render"},
        {"render", "in.wav"},
        {"render", "in.wav", "out.wav", "more.wav"},
        {"render", "--block", "0", "in.wav", "out.wav"},
        {"render", "--block", "8193", "in.wav", "out.wav"},
        {"render", "--block", "many", "in.wav", "out.wav"},
        {"render", "--at", "-1", "s.json", "in.wav", "out.wav"},
        {"render", "--at", "nan", "s.json", "in.wav", "out.wav"},
        {"live", "--seconds", "soon"},
        {"live", "--seconds", "-1"},
        {"presets", "--json", "--names"},
        {"render", "--unheard-of", "in.wav", "out.wav"},
    };
    for (const auto &arguments : commandLines) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.errors, "");
        EXPECT_TRUE(folderContents().empty());
    }
}

TEST_F(Usage, theVersionIsToldWithoutFailure) {
    EXPECT_EQ(run({"--version"}).output, std::string("ostrafine-cli ") + version + "\n");
    EXPECT_EQ(run({"--help"}).status, 0); // what it names: Documents
}

TEST_F(Usage, withoutASoundServerOneLineSaysHowToStartOne) {
    expectRefusal({"devices"}, "systemctl --user start pipewire");
    expectRefusal({"devices", "--json"}, "systemctl --user start pipewire");
    expectRefusal({"live"}, "systemctl --user start pipewire");
    expectRefusal({"live", "--settings", "none.json"}, "none.json: No such file");
}

} // namespace
} // namespace quorbel
