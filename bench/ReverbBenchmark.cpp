#include "StageBenchmark.h"
#include "reverb/ReverbNode.h"

namespace quorbel::bench {
namespace {

Stage reverb(RoomModel model, float mix) {
    auto node = std::make_shared<ReverbNode>();
    node->loadFactoryPreset(model);
    node->setWetDryMix(mix);
    return stageOf(node);
}

Stage plainReverb() {
    auto plain = std::make_shared<Reverb>(ReverbTank::Code::plain);
    plain->setMixPercent(30.0F);
    plain->prepare(48000.0);
    return [plain](float *left, float *right, std::uint32_t frames) {
        plain->process(left, right, frames);
    };
}

const StageBenchmark dry("reverb, mix 0", [] { return reverb(RoomModel::mediumHall, 0.0F); });
const StageBenchmark small("reverb, small room",
                           [] { return reverb(RoomModel::smallRoom, 30.0F); });
const StageBenchmark hall("reverb, medium hall",
                          [] { return reverb(RoomModel::mediumHall, 30.0F); });
const StageBenchmark cathedral("reverb, cathedral",
                               [] { return reverb(RoomModel::cathedral, 30.0F); });
const StageBenchmark plain("reverb, plain code", plainReverb);

} // namespace
} // namespace quorbel::bench
