#include "endtoend/window/WindowTest.h"

#include <algorithm>
#include <fstream>

namespace quorbel {
namespace {

TEST_F(WindowTest, ImportsAndExportsThroughTheDesktopsFileDialogs) {
    const std::filesystem::path folder(server().environment().at("HOME"));
    const std::filesystem::path imported = folder / "Evening on paper.txt";
    std::filesystem::create_directories(folder);
    std::ofstream(imported) << "Preamp: -4 dB\nFilter 1: ON PK Fc 1000 Hz Gain 3 dB Q 1\n";

    open();
    goTo("Mine");
    pressButton("Import…");
    typeInto("File name:", imported);
    pressButton("Open");
    EXPECT_TRUE(soonShows({"list item", "Evening on paper"}));

    // Offers the import's folder and the preset's name with the filter's extension.
    const std::filesystem::path exported = folder / "Evening on paper.json";
    pressButton("Export preset", "Evening on paper");
    const Sought name{"text", "File name:"};
    EXPECT_TRUE(comesTrue(2.0, [&] { return read(name)["text"] == exported.filename().string(); }))
        << read(name);
    pressButton("Save");
    EXPECT_TRUE(soonShows({"alert", "Evening on paper was written to Evening on paper.json"}));
    ASSERT_TRUE(exists(exported));
    const auto preset = nlohmann::json::parse(std::ifstream(exported), nullptr, false);
    EXPECT_EQ(preset["name"], "Evening on paper");
    EXPECT_TRUE(std::ranges::any_of(preset["bands"], [](const auto &band) {
        return band["frequency"] == 1000.0 && band["gainDB"] == 3.0;
    }));
}

} // namespace
} // namespace quorbel
