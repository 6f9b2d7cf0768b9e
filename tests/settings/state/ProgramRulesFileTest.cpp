#include "settings/state/ProgramRulesFile.h"

#include "settings/records/SettingsFile.h"
#include "settings/state/KnownPrograms.h"
#include "settings/state/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorbel::testing {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

class ProgramRulesFileTest : public ::testing::Test {
  protected:
    [[nodiscard]] ProgramRulesFile program() const {
        return ProgramRulesFile(folder.path() / "state.json");
    }
    [[nodiscard]] ProgramRules saved() const {
        ProgramRulesFile reader = program();
        EXPECT_FALSE(reader.read());
        return reader.rules();
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "programs.json";
    const ProgramRule game{
        .program = {.binary = "wine64", .name = "Game"}, .title = "*menu", .isProcessed = false};
    const ProgramRule films{.program = {.sandbox = "org.films"}, .isMixedToStereo = true};
};

TEST_F(ProgramRulesFileTest, KeepsEveryRuleOthersChangesAndUnknownKeys) {
    ProgramRules rules = saved();
    EXPECT_TRUE(rules.processesOthers);
    EXPECT_FALSE(rules.processesCalls);
    EXPECT_THAT(rules.callMarks.roles, Contains("Communication"));
    ProgramRulesFile one = program();
    rules.processesOthers = false;
    rules.rules = {game};
    one.write(rules);
    EXPECT_EQ(saved(), rules);

    write(file, R"({"calls":"process","later":1,"others":"leaveAlone","programs":[)"
                R"({"isProcessed":false,"later":2,"program":{"binary":"wine64","name":"Game"},)"
                R"("title":"*menu"}],"version":1})");
    rules.rules.push_back(films);
    one.write(rules);
    EXPECT_THAT(contentOf(file), HasSubstr(R"("later":1)"));
    EXPECT_THAT(contentOf(file), HasSubstr(R"("later":2)"));
    rules.processesCalls = true;
    EXPECT_EQ(saved(), rules) << "with what the other program has changed";
}

TEST_F(ProgramRulesFileTest, DamagedFilesAreSetAsideAndLaterOnesLeftAsTheyAre) {
    for (const std::string text :
         {"{", R"({"version":1,"others":true})", R"({"version":1,"calls":"no"})",
          R"({"version":1,"programs":[{"isProcessed":true}]})"}) {
        write(file, text);
        const auto warning = program().read();
        ASSERT_TRUE(warning) << text;
        EXPECT_THAT(*warning, HasSubstr("All programs but calls are processed now."));
        EXPECT_FALSE(exists(file));
    }
    const std::string later = R"({"version":2})";
    write(file, later);
    EXPECT_THROW(program().read(), SettingsFileError);
    EXPECT_THROW(program().write({}), SettingsFileError);
    EXPECT_EQ(contentOf(file), later);
}

TEST(KnownPrograms, AreFoundAgainByTheirMostSpecificName) {
    const ProgramNames all{
        .sandbox = "org.a", .binary = "a", .applicationID = "id", .name = "Name"};
    const auto without = [](ProgramNames names, auto member) {
        (names.*member).clear();
        return names;
    };
    EXPECT_EQ(namesForRule(all), ProgramNames{.sandbox = "org.a"});
    ProgramNames native = without(all, &ProgramNames::sandbox);
    EXPECT_EQ(namesForRule(native), ProgramNames{.binary = "a"});
    native.binary = "python3.11";
    EXPECT_EQ(namesForRule(native), (ProgramNames{.binary = "python3.11", .name = "Name"}));
    native.binary = "pythonic";
    EXPECT_EQ(namesForRule(native), ProgramNames{.binary = "pythonic"});
    native = without(native, &ProgramNames::binary);
    EXPECT_EQ(namesForRule(native), ProgramNames{.applicationID = "id"});
    EXPECT_EQ(namesForRule(without(native, &ProgramNames::applicationID)),
              ProgramNames{.name = "Name"});
}

} // namespace
} // namespace quorbel::testing
