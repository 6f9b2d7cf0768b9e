#include "platform/hardware/routing/RoutedStream.h"

#include "platform/hardware/routing/StreamRules.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

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
