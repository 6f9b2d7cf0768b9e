#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "engine/MeterReadings.h"

#include <cstdint>
#include <string>

namespace quorbel {

/// The rows of the tables that a rendering can write beside its sound: what the meters and the
/// spectrum display would have shown. Numbers are written so that they read back exactly.

std::string meterNames();
/// `replacedFrames`: all so far.
std::string meterRow(double seconds, const MeterReadings &readings, std::uint64_t replacedFrames);

/// Each band is named by its centre in whole Hz.
std::string spectrumNames();
std::string spectrumRow(double seconds, const SpectrumAnalyzer::Levels &levels);

} // namespace quorbel
