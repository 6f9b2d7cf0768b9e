#include "cli/CliTest.h"

#include <gmock/gmock.h>

namespace quorbel {
namespace {

using testing::HasSubstr;

class ImportExport : public CliTest {
  protected:
    const std::string text = "Preamp: -6 dB\n"
                             "Filter 1: ON PK Fc 105 Hz Gain -3.1 dB Q 0.7\n"
                             "Filter 2: ON XX Fc 1000 Hz Gain 2 dB Q 1\n";
};

TEST_F(ImportExport, AnImportedPresetIsHeardListedAndExported) {
    const std::string input = file("cans.txt", text);
    const Result import = run({"import", input, "--name", "Cans"});
    ASSERT_EQ(import.status, 0) << import.errors;
    EXPECT_THAT(import.output, HasSubstr("line 3: "));
    EXPECT_THAT(run({"presets"}).output, HasSubstr("Cans"));

    // `render` starts from the user's settings.
    const std::string input48 = file("in.wav", noise(4800));
    ASSERT_EQ(run({"render", input48, path("out.wav")}).status, 0);
    EXPECT_NEAR(gain(0, 4800), -6.0, 0.4) << "the preamp";

    EXPECT_EQ(run({"export", "--preset", "Cans", path("again.txt")}).output, "");
    const std::string again = bytes(path("again.txt"));
    EXPECT_THAT(again, HasSubstr("Preamp: -6 dB"));
    EXPECT_THAT(again, HasSubstr("Filter 3: ON PK Fc 105 Hz Gain -3.1 dB Q 0.7"))
        << "by frequency, among the flat ones";

    EXPECT_THAT(run({"export", "--preset", "Cans", path("cans.json")}).output,
                HasSubstr("cans.json is written without its gain of -6.0 dB"));
    const std::string marked = file("marked.json", "\xEF\xBB\xBF" + bytes(path("cans.json")));
    EXPECT_EQ(run({"import", marked, "--name", "Twin"}).status, 0);
    EXPECT_THAT(run({"presets"}).output, HasSubstr("Twin"));
}

TEST_F(ImportExport, ARefusedImportChangesNothing) {
    const std::string good = file("cans.txt", text);
    expectRefusal({"import", path("absent.txt")}, "does not exist");
    expectRefusal({"import", file("prose.txt", "no filter here\n")}, "prose.txt");
    expectRefusal({"import", file("cut.json", "{\"name\": \"x\"")}, "cut.json");
    expectRefusal({"import", good, "--name", " "}, "the preset needs a name");
    expectRefusal({"export", "--preset", "Nobody's", path("out.txt")}, "no preset is named");
    expectRefusal({"export", "--preset", "Flat", path("cans.txt/out.txt")}, "cannot be written");
    file("../Quorbel", "a file in the place of the settings' folder");
    expectRefusal({"import", good}, "cannot be written");
}

} // namespace
} // namespace quorbel
