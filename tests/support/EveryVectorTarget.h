#pragma once

#include "platform/dsp/VectorTargets.h"

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quorbel {

/// Runs a test once per vector target of the machine, with the code dispatched to that target.
class EveryVectorTarget : public ::testing::TestWithParam<std::int64_t> {
  public:
    [[nodiscard]] static std::vector<std::int64_t> compiled() {
        std::vector<std::int64_t> result;
        for (std::uint64_t rest = HWY_TARGETS; rest != 0; rest &= rest - 1)
            result.push_back(static_cast<std::int64_t>(rest & (~rest + 1)));
        return result;
    }
    [[nodiscard]] static std::string
    nameOf(const ::testing::TestParamInfo<std::int64_t> &parameter) {
        return hwy::TargetName(parameter.param);
    }

  protected:
    void SetUp() override {
        if ((hwy::SupportedTargets() & GetParam()) == 0)
            GTEST_SKIP() << "not on this machine";
        useTarget(GetParam());
    }
    void TearDown() override { useTarget(0); }

    /// 0 selects the best target of the machine.
    static void useTarget(std::int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

} // namespace quorbel
