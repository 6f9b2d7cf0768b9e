#include "platform/hardware/routing/ProgramDecision.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using enum StreamTreatment;

TEST(Programs, TitlesMatchTheirPatterns) {
    struct {
        const char *pattern;
        const char *text;
        bool matches;
    } const cases[] = {{"", "", true},        {"", "a", false},          {"*", "", true},
                       {"a*c", "ABBC", true}, {"a*c", "abcd", false},    {"*b*", "abc", true},
                       {"?", "", false},      {"?", "\u00e9", true},     {"a?c", "a\u00e9c", true},
                       {"*ab", "aab", true},  {"a*b*c", "axbxbc", true}, {"**", "x", true},
                       {"a*b?", "aab", false}};
    for (const auto &[pattern, text, matches] : cases)
        EXPECT_EQ(matchesPattern(pattern, text), matches) << pattern << " on " << text;
}

TEST(Programs, AreDecidedByTheFirstRuleThenAsACallThenAsTheOthers) {
    ServerObjects objects;
    objects.putClient(7, {{"application.process.binary", "films"},
                          {"pipewire.access.portal.app_id", "org.films"}});
    const auto stream = [](PropertyMap more, std::optional<SourceFormat> format = {}) {
        more.insert({{"media.class", "Stream/Output/Audio"},
                     {"node.autoconnect", "true"},
                     {"client.id", "7"},
                     {"application.name", "Films"}});
        return NodeRecord{.id = 1, .properties = std::move(more), .format = format};
    };
    const PropertyMap call{{"media.role", "Communication"}};
    const PropertyMap plain{};
    const SourceFormat surroundSound{.channels = 6};
    const CallMarks marks{.roles = {"Communication"}, .binaries = {"phone"}};
    const ProgramRule byBinary{.program = {.binary = "films"}, .isProcessed = false};
    const ProgramRule bySandbox{.program = {.sandbox = "org.films"}};
    const ProgramRule byTitle{
        .program = {.name = "Films"}, .title = "trailer*", .isProcessed = false};
    const ProgramRule inStereo{.program = {.name = "Films"}, .isMixedToStereo = true};
    const ProgramRule ofAnother{.program = {.binary = "films", .name = "Other"},
                                .isProcessed = false};
    const ProgramRule ofNobody{.isProcessed = false};
    struct {
        std::vector<ProgramRule> rules;
        NodeRecord node;
        StreamTreatment wanted;
        bool processesOthers = true;
        bool processesCalls = false;
        bool isSurroundOutput = false;
    } const cases[] = {
        {{}, stream(plain), processed},
        {{}, stream(plain), unlisted, false},
        {{}, stream(call), StreamTreatment::call},
        {{}, stream({{"application.process.binary", "phone"}}), StreamTreatment::call},
        {{}, stream(call), processed, false, true},
        {{bySandbox}, stream(call), processed},
        {{byBinary}, stream(plain), excluded},
        {{byBinary, bySandbox}, stream(plain), excluded},
        {{bySandbox, byBinary}, stream(plain), processed, false},
        {{byTitle}, stream({{"media.name", "Trailer 2"}}), excluded},
        {{byTitle}, stream({{"media.name", "The trailer"}}), processed},
        {{ofAnother, ofNobody}, stream(plain), processed},
        {{}, stream(plain, surroundSound), processed},
        {{}, stream(plain, surroundSound), surround, true, false, true},
        {{bySandbox}, stream(plain, surroundSound), surround, true, false, true},
        {{inStereo}, stream(plain, surroundSound), processed, true, false, true},
        {{}, stream(plain, SourceFormat{.channels = 2}), processed, true, false, true},
        {{inStereo}, stream(plain, SourceFormat{.channels = 2, .isEncoded = true}), encoded},
        {{inStereo}, stream({{"node.dont-move", "true"}}), unmovable},
    };
    for (const auto &each : cases)
        EXPECT_EQ(decideTreatment(objects,
                                  {.processesOthers = each.processesOthers,
                                   .processesCalls = each.processesCalls,
                                   .rules = each.rules,
                                   .callMarks = marks},
                                  each.node, each.isSurroundOutput),
                  each.wanted)
            << "case " << &each - cases;
}

} // namespace
} // namespace quorbel
