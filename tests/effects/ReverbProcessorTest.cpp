#include "effects/ReverbProcessor.h"

#include <gtest/gtest.h>

namespace quorbel {
namespace {

using enum SpatialConfig::ReverbPreset;

TEST(ReverbProcessorTest, LoadsOnlyAnotherPresetAndLeavesTheMix) {
    ReverbProcessor processor;
    EXPECT_EQ(processor.presetReloadCount(), 1);
    processor.setMix(30.0F);
    for (const auto preset : {smallRoom, plate, plate})
        processor.setPreset(preset);
    EXPECT_EQ(processor.presetReloadCount(), 2);
    EXPECT_EQ(processor.reverb().wetDryMix(), 30.0F);
}

TEST(ReverbProcessorTest, EveryPresetIsTheFactoryRoomOfItsName) {
    const std::pair<SpatialConfig::ReverbPreset, int> numbers[] = {
        {smallRoom, 0}, {mediumRoom, 1}, {largeRoom, 2}, {mediumHall, 3},
        {largeHall, 4}, {cathedral, 8},  {plate, 5}};
    ReverbProcessor processor;
    for (const auto &[preset, number] : numbers) {
        processor.setPreset(preset);
        EXPECT_EQ(static_cast<int>(processor.reverb().factoryPreset()), number) << title(preset);
    }
}

} // namespace
} // namespace quorbel
