// Side files of the settings file: the common contract first.

#include "settings/records/SettingsFile.h"
#include "settings/state/FavouritePresetsFile.h"
#include "settings/state/KnownPrograms.h"
#include "settings/state/OutputProfilesFile.h"
#include "settings/state/PresetGainsFile.h"
#include "settings/state/ProgramRulesFile.h"
#include "settings/state/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace quorbel::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAreArray;

/// Entries of a file by the name of their preset, output or program.
using Names = std::vector<std::string>;
const std::string a = Uuid::random().text(), b = Uuid::random().text(), c = Uuid::random().text();

auto each(const auto &list, auto convert) {
    std::vector<decltype(convert(*list.begin()))> results;
    std::ranges::transform(list, std::back_inserter(results), convert);
    return results;
}

struct Favourites {
    using File = FavouritePresetsFile;
    static constexpr const char *name = "favourite-presets";
    static Names damaged() {
        return {"[]",
                "{}",
                R"({"version":1})",
                R"({"version":"1","favourites":[]})",
                R"({"version":1,"favourites":["Flat"]})",
                R"({"version":1,"favourites":[1]})"};
    }
    static Names in(const File &file) {
        return each(file.ids(), [](const Uuid &id) { return id.text(); });
    }
    static auto write(File &file, const Names &names) {
        return file.write(each(names, [](const auto &text) { return *Uuid::fromText(text); }));
    }
};

struct Gains {
    using File = PresetGainsFile;
    static constexpr const char *name = "preset-gains";
    static Names damaged() {
        return {"[]",
                R"({"gainsDB":{}})",
                R"({"version":1,"gainsDB":[]})",
                R"({"version":1,"gainsDB":{"x":1}})",
                R"({"version":1,"applied":{"gainDB":1}})",
                R"({"version":1,"gainsDB":{")" + a + R"(":1e300}})"};
    }
    static Names in(const File &file) {
        return each(file.gains.ofPresets, [](const auto &entry) { return entry.first; });
    }
    static auto write(File &file, const Names &names) {
        file.gains = {};
        for (const std::string &text : names)
            file.gains.set(*Uuid::fromText(text), -2.5F);
        return file.write();
    }
};

struct Profiles {
    using File = OutputProfilesFile;
    static constexpr const char *name = "profiles";
    static Names damaged() {
        return {"{}",
                R"({"version":1,"profiles":[{"use":"flat"}]})",
                R"({"version":1,"profiles":[{"output":{"card":1},"use":"flat"}]})",
                R"({"version":1,"profiles":[{"output":{"bluetooth":"none"},"use":"flat"}]})",
                R"({"version":1,"profiles":[{"output":{},"use":"loud"}]})",
                R"({"version":1,"profiles":[{"output":{},"use":"flat","own":{"bands":[]}}]})"};
    }
    static Names in(const File &file) {
        return each(file.profiles(), [](const auto &profile) { return *profile.key.node; });
    }
    static auto write(File &file, const Names &names) {
        return file.write(each(names, [](const std::string &node) {
            return OutputProfile{.key = {.node = node}, .use = OutputProfile::Use::flat};
        }));
    }
};

struct Rules {
    using File = ProgramRulesFile;
    static constexpr const char *name = "programs";
    static Names damaged() {
        return {R"({"version":1,"others":true})", R"({"version":1,"calls":"no"})",
                R"({"version":1,"programs":[{"isProcessed":true}]})"};
    }
    static Names in(const File &file) {
        return each(file.rules().rules, [](const auto &rule) { return rule.program.binary; });
    }
    static auto write(File &file, const Names &names) {
        ProgramRules rules = file.rules();
        rules.rules = each(names, [](const std::string &binary) {
            return ProgramRule{.program = {.binary = binary}};
        });
        return file.write(rules);
    }
};

template <class Kind> class SideFiles : public ::testing::Test {
  protected:
    using File = typename Kind::File;

    [[nodiscard]] File program() const { return File(folder.path() / "state.json"); }
    [[nodiscard]] Names saved() const {
        File reader = program();
        EXPECT_FALSE(reader.read());
        return Kind::in(reader);
    }

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / (Kind::name + std::string(".json"));
};

using Kinds = ::testing::Types<Favourites, Gains, Profiles, Rules>;
TYPED_TEST_SUITE(SideFiles, Kinds);

TYPED_TEST(SideFiles, KeepTheChangesOfTwoProgramsAndUnknownKeys) {
    using Kind = TypeParam;
    EXPECT_THAT(this->saved(), IsEmpty());
    EXPECT_FALSE(exists(this->file)) << "reading makes no file";
    auto one = this->program();
    auto other = this->program();
    Kind::write(one, {a, b});
    Kind::write(other, {c});
    EXPECT_THAT(this->saved(), UnorderedElementsAreArray({a, b, c}));
    write(this->file, contentOf(this->file).replace(0, 1, R"({"later":[1.5,null],)"));
    Kind::write(one, {b}); // has not read c
    EXPECT_THAT(Kind::in(one), UnorderedElementsAreArray({b, c}));
    EXPECT_THAT(this->saved(), UnorderedElementsAreArray({b, c}));
    EXPECT_THAT(contentOf(this->file), HasSubstr(R"("later":[1.5,null])"));
    std::filesystem::remove(this->file);
    Kind::write(one, {b, c, a});
    EXPECT_THAT(this->saved(), UnorderedElementsAreArray({a, b, c})) << "a file that was lost";
}

TYPED_TEST(SideFiles, AreSetAsideIfDamagedAndLeftAsTheyAreIfOfALaterVersion) {
    using Kind = TypeParam;
    const auto content = [this](const std::string &warning) {
        const std::size_t start = warning.find(Kind::name + std::string(".corrupt-"));
        return start == std::string::npos
                   ? "no file name in: " + warning
                   : contentOf(this->folder.path() /
                               warning.substr(start, warning.find(".json") + 5 - start));
    };
    Names damaged = Kind::damaged();
    damaged.emplace_back("{");
    for (const std::string &text : damaged) {
        write(this->file, text);
        auto reader = this->program();
        const auto warning = reader.read();
        ASSERT_TRUE(warning) << text;
        EXPECT_THAT(*warning, EndsWith(" now.")) << "its consequence";
        EXPECT_EQ(content(*warning), text);
        EXPECT_FALSE(exists(this->file));

        Kind::write(reader, {a});
        write(this->file, text);
        const auto savingWarning = Kind::write(reader, {a, b});
        ASSERT_TRUE(savingWarning);
        EXPECT_THAT(*savingWarning, EndsWith(".json.")) << "nothing is lost";
        EXPECT_EQ(content(*savingWarning), text);
        EXPECT_THAT(this->saved(), UnorderedElementsAreArray({a, b}));
    }
    const std::string later = R"({"version":2,"profiles":{},"favourites":1,"gainsDB":1})";
    write(this->file, later);
    auto reader = this->program();
    EXPECT_THROW(reader.read(), SettingsFileError);
    EXPECT_THROW(Kind::write(reader, {a}), SettingsFileError);
    EXPECT_EQ(contentOf(this->file), later);
}

// Behaviour of single files

using FavouritesFile = SideFiles<Favourites>;
TEST_F(FavouritesFile, KeepsTheirOrder) {
    auto one = program();
    Favourites::write(one, {a});
    Favourites::write(one, {c, a, b});
    EXPECT_THAT(Favourites::in(one), ElementsAre(a, c, b));
    EXPECT_THAT(saved(), ElementsAre(a, c, b));
}

using ProfilesFile = SideFiles<Profiles>;
TEST_F(ProfilesFile, KeepsEveryFieldAndTheUnknownKeysOfAProfile) {
    const OutputProfile profileOfHeadset{
        .key = {.card = "bluez_card.00", .bluetooth = OutputIdentity::Bluetooth::music},
        .label = "Headset",
        .use = OutputProfile::Use::preset,
        .presetID = Uuid::random(),
        .presetName = "Bass \"Boost\"",
        .own = OutputSound{.bands = EQBand::defaultBands(), .presetGainDB = -2.5F}};
    const OutputProfile profileOfSpeaker{.key = {.card = "pci", .route = "speaker"},
                                         .use = OutputProfile::Use::leaveAlone};
    const auto profiles = [this] {
        OutputProfilesFile reader = program();
        EXPECT_FALSE(reader.read());
        return reader.profiles();
    };
    OutputProfilesFile one = program();
    one.write({profileOfHeadset, profileOfSpeaker});
    EXPECT_THAT(profiles(), ElementsAre(profileOfHeadset, profileOfSpeaker));
    OutputProfile louder = profileOfSpeaker;
    louder.use = OutputProfile::Use::flat;
    OutputProfilesFile other = program();
    other.read();
    other.write({louder});
    louder.label = "Desk";
    one.write({profileOfHeadset, louder});
    EXPECT_THAT(profiles(), ElementsAre(louder)) << "both have changed it, and one is gone";

    write(file, R"({"profiles":[{"output":{"node":"hdmi","later":1},"use":"flat","later":2},)"
                R"({"output":{},"use":"flat"}],"version":1})");
    OutputProfilesFile third = program();
    EXPECT_FALSE(third.read());
    ASSERT_THAT(third.profiles(), SizeIs(2));
    OutputProfile hdmi = third.profiles().front();
    hdmi.use = OutputProfile::Use::leaveAlone;
    third.write({third.profiles().back(), hdmi});
    EXPECT_THAT(contentOf(file), HasSubstr(R"({"label":"","later":2,"output":{"later":1,)"
                                           R"("node":"hdmi"},"use":"leaveAlone"})"));
}

using RulesFile = SideFiles<Rules>;
TEST_F(RulesFile, KeepsEveryRuleOthersChangesAndUnknownKeys) {
    const ProgramRule game{
        .program = {.binary = "wine64", .name = "Game"}, .title = "*menu", .isProcessed = false};
    const ProgramRule films{.program = {.sandbox = "org.films"}, .isMixedToStereo = true};
    ProgramRulesFile one = program();
    ProgramRules rules = one.rules();
    EXPECT_TRUE(rules.processesOthers);
    EXPECT_FALSE(rules.processesCalls);
    EXPECT_THAT(rules.callMarks.roles, Contains("Communication"));
    rules.processesOthers = false;
    rules.rules = {game};
    one.write(rules);
    EXPECT_EQ(one.rules(), rules);

    write(file, R"({"calls":"process","others":"leaveAlone","programs":[)"
                R"({"isProcessed":false,"later":1,"program":{"binary":"wine64","later":2,)"
                R"("name":"Game"},"title":"*menu"}],"version":1})");
    rules.rules.push_back(films);
    one.write(rules);
    EXPECT_THAT(contentOf(file), HasSubstr(R"("later":1)"));
    EXPECT_THAT(contentOf(file), HasSubstr(R"("later":2)"));
    rules.processesCalls = true;
    ProgramRulesFile reader = program();
    EXPECT_FALSE(reader.read());
    EXPECT_EQ(reader.rules(), rules) << "with what the other program has changed";
}

TEST(KnownPrograms, AreFoundAgainByTheirMostSpecificName) {
    const struct {
        ProgramNames program, rule;
    } cases[] = {
        {{"org.a", "a", "id", "Name"}, {.sandbox = "org.a"}},
        {{"", "a", "id", "Name"}, {.binary = "a"}},
        {{"", "python3.11", "id", "Name"}, {.binary = "python3.11", .name = "Name"}},
        {{"", "pythonic", "id", "Name"}, {.binary = "pythonic"}},
        {{"", "", "id", "Name"}, {.applicationID = "id"}},
        {{"", "", "", "Name"}, {.name = "Name"}},
    };
    for (const auto &[program, rule] : cases)
        EXPECT_EQ(namesForRule(program), rule) << program.sandbox << program.binary;
}

} // namespace
} // namespace quorbel::testing
