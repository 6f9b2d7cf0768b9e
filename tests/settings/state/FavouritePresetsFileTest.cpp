#include "settings/state/FavouritePresetsFile.h"

#include "settings/records/SettingsFile.h"
#include "settings/state/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorbel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class FavouritePresetsFileTest : public ::testing::Test {
  protected:
    [[nodiscard]] FavouritePresetsFile program() const {
        return FavouritePresetsFile(folder.path() / "state.json");
    }
    [[nodiscard]] std::string content() const { return contentOf(file); }
    [[nodiscard]] std::vector<Uuid> saved() const {
        FavouritePresetsFile reader = program();
        EXPECT_FALSE(reader.read());
        return reader.ids();
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "favourite-presets.json";
    const Uuid a = Uuid::random();
    const Uuid b = Uuid::random();
    const Uuid c = Uuid::random();
};

TEST_F(FavouritePresetsFileTest, KeepsFavouritesInOrderAndKeysThatItDoesNotKnow) {
    EXPECT_THAT(saved(), IsEmpty());
    write(file, R"({"later":{"x":[1.5,null]},"version":1,"favourites":[")" + a.text() + "\"]}");
    FavouritePresetsFile favourites = program();
    EXPECT_FALSE(favourites.read());
    EXPECT_THAT(favourites.ids(), ElementsAre(a));
    favourites.write({c, a, b});
    EXPECT_THAT(saved(), ElementsAre(a, c, b));
    EXPECT_THAT(content(), HasSubstr(R"("later":{"x":[1.5,null]})"));
}

TEST_F(FavouritePresetsFileTest, TwoProgramsKeepEachOthersChanges) {
    FavouritePresetsFile one = program();
    FavouritePresetsFile other = program();
    one.write({a, b});
    other.write({c});
    EXPECT_THAT(saved(), ElementsAre(a, b, c));
    one.write({b}); // without having seen c
    EXPECT_THAT(one.ids(), ElementsAre(b, c));
    std::filesystem::remove(file);
    one.write({b, c, a});
    EXPECT_THAT(saved(), ElementsAre(b, c, a)) << "a file that was lost";
}

TEST_F(FavouritePresetsFileTest, DamagedFilesAreSetAsideAndOthersLeftAsTheyAre) {
    for (const std::string text :
         {"{", "[]", "{}", R"({"version":1})", R"({"version":"1","favourites":[]})",
          R"({"version":1,"favourites":["Flat"]})", R"({"version":1,"favourites":[1]})"}) {
        write(file, text);
        FavouritePresetsFile favourites = program();
        const auto warning = favourites.read();
        ASSERT_TRUE(warning) << text;
        EXPECT_FALSE(exists(file));
        constexpr const char *name = "favourite-presets.corrupt-";
        const std::size_t start = warning->find(name);
        ASSERT_NE(start, std::string::npos) << *warning;
        const std::string aside = warning->substr(start, warning->find(".json") + 5 - start);
        EXPECT_EQ(contentOf(folder.path() / aside), text) << *warning;
        favourites.write({a});
        EXPECT_THAT(saved(), ElementsAre(a));
    }

    const std::string later = R"({"version":2,"favourites":{}})";
    write(file, later);
    FavouritePresetsFile favourites = program();
    EXPECT_THROW(favourites.read(), SettingsFileError);
    EXPECT_THROW(favourites.write({a}), SettingsFileError);
    EXPECT_EQ(content(), later);
    EXPECT_THAT(favourites.ids(), IsEmpty());
}

} // namespace
} // namespace quorbel::testing
