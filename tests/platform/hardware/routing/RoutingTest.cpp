#include "platform/hardware/routing/ProgramDecision.h"
#include "platform/hardware/routing/RoutedStream.h"
#include "platform/hardware/routing/StreamRules.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using enum StreamTreatment;

TEST(RoutedStream, EveryLineReadsBackAsItWas) {
    const std::optional<MetadataValue> none;
    for (const auto &target :
         {none, std::optional(MetadataValue{"Spa:Id", "-1"}), std::optional(MetadataValue{"", ""}),
          std::optional(MetadataValue{"Spa:String", "a name with 100 %\n\tand more"})})
        for (const auto &node : {none, std::optional(MetadataValue{"Spa:Id", "36"})}) {
            const RoutedStream stream{7, 1'000'000'000'000, 93, 91, target, node, "a device"};
            const std::string line = stream.encoded();
            EXPECT_EQ(line.find('\n'), std::string::npos) << line;
            const auto read = RoutedStream::decode(line);
            ASSERT_TRUE(read) << line;
            EXPECT_EQ(read->streamSerial, stream.streamSerial);
            EXPECT_EQ(read->formerTapSerial, stream.formerTapSerial);
            EXPECT_EQ(read->targetObject, target);
            EXPECT_EQ(read->targetNode, node);
            EXPECT_EQ(read->remembered, stream.remembered);
            RouteLedger ledger;
            EXPECT_TRUE(ledger.take(line));
            EXPECT_TRUE(ledger.take(encodedRelease(stream)));
            EXPECT_EQ(ledger.size(), 0U);
        }
}

TEST(RoutedStream, ALineCutShortIsRefused) {
    const RoutedStream stream{
        7, 8, 9, 0, MetadataValue{"Spa:Id", "39"}, MetadataValue{"Spa:Id", "36"}};
    const std::string line = stream.encoded();
    // Every cut drops the whole last value: a truncated one is a valid shorter value.
    for (std::size_t length = 0; length + 3 < line.size(); ++length)
        EXPECT_FALSE(RoutedStream::decode(line.substr(0, length))) << line.substr(0, length);
    for (const char *text : {"routed", "routed 1 2 3 0 = - - - - -", "routed x 2 3 0 = - - - -",
                             "routed 1 2 3 0 = =a%4 =b - -", "routed 1 2 3 0 = - =b - -", "CLEAN"})
        EXPECT_FALSE(RoutedStream::decode(text)) << text;
}

TEST(RoutedStream, TheStreamWithTheRememberedTargetIsTheLastRestoredOfItsProgram) {
    ServerObjects objects;
    for (const auto &[id, name] :
         {std::pair(5U, "usb"), {10U, "player"}, {11U, "player"}, {12U, "other"}})
        objects.putNode({id, id, {{"node.name", name}}, true});
    RoutedStream pinned{.streamID = 10, .streamSerial = 10, .remembered = "usb"};
    pinned.targetNode = MetadataValue{"Spa:Id", "5"};
    const RoutedStream beside{.streamID = 11, .streamSerial = 11, .remembered = "usb"};
    const RoutedStream another{.streamID = 12, .streamSerial = 12, .remembered = "usb"};
    std::vector<std::pair<std::uint32_t, std::string>> order;
    for (const RoutedStream &stream : inOrderOfUndoing(objects, {pinned, beside, another}))
        order.emplace_back(stream.streamID, stream.remembered);
    EXPECT_EQ(order, (decltype(order){{11, ""}, {12, "usb"}, {10, "usb"}}));
}

TEST(Routing, OnlyStreamsThatMayBeMovedAre) {
    const PropertyMap ordinary{{"media.class", "Stream/Output/Audio"},
                               {"node.autoconnect", "true"}};
    const auto isTaken = [&](const char *key, const char *value) {
        NodeRecord node{.id = 1, .serial = 1, .properties = ordinary, .isComplete = true};
        node.properties[key] = value;
        return isRoutable(node);
    };
    EXPECT_TRUE(isTaken("media.role", "Music"));
    EXPECT_TRUE(isTaken("node.dont-reconnect", "false"));
    EXPECT_FALSE(isTaken("node.autoconnect", "false"));
    EXPECT_FALSE(isTaken("media.class", "Stream/Output/Audio/Internal"));
    EXPECT_FALSE(isTaken("media.class", "Stream/Input/Audio"));
    for (const char *fixed :
         {"node.dont-reconnect", "node.dont-move", "node.dont-fallback", "node.exclusive"})
        EXPECT_FALSE(isTaken(fixed, "true")) << fixed;
}

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

TEST(Programs, FollowTheFirstRuleOrElseThoseForCallsAndOthers) {
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
