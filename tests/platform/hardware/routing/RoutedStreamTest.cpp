#include "platform/hardware/routing/RouteLog.h"
#include "platform/hardware/routing/StreamRules.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

bool equal(const RoutedStream &a, const RoutedStream &b) { return a.encoded() == b.encoded(); }

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
        }
}

TEST(RoutedStream, ALineCutShortIsRefused) {
    const RoutedStream stream{
        7, 8, 9, 0, MetadataValue{"Spa:Id", "39"}, MetadataValue{"Spa:Id", "36"}};
    const std::string line = stream.encoded();
    // Only the last value could lose characters unnoticed, as a shorter value.
    for (std::size_t length = 0; length + 3 < line.size(); ++length)
        EXPECT_FALSE(RoutedStream::decode(line.substr(0, length))) << line.substr(0, length);
    for (const char *text : {"routed", "routed 1 2 3 0 = - - - - -", "routed x 2 3 0 = - - - -",
                             "routed 1 2 3 0 = =a%4 =b - -", "routed 1 2 3 0 = - =b - -", "CLEAN"})
        EXPECT_FALSE(RoutedStream::decode(text)) << text;
}

TEST(RouteLedger, HoldsWhatIsStillRouted) {
    const RoutedStream first{1, 11, 5};
    const RoutedStream second{2, 12, 5, 0, MetadataValue{"Spa:Id", "39"}};
    const RoutedStream sameID{1, 13, 5};
    RouteLedger ledger;
    EXPECT_TRUE(ledger.take(first.encoded()));
    EXPECT_TRUE(ledger.take(second.encoded()));
    EXPECT_TRUE(ledger.take(encodedRelease(first)));
    EXPECT_TRUE(ledger.take(sameID.encoded()));
    EXPECT_FALSE(ledger.take("released 2"));
    ASSERT_EQ(ledger.streams().size(), 2U);
    EXPECT_TRUE(equal(ledger.streams()[0], sameID));
    EXPECT_TRUE(equal(ledger.streams()[1], second));
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

} // namespace
} // namespace quorbel
