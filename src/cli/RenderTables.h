#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "cli/OutputFile.h"
#include "engine/MeterReadings.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quorbel {

// The tables that a rendering can write beside its sound: the values that the meters and the
// spectrum display would have shown. Numbers are written so that they read back exactly.

/// Rows of comma-separated values under a row of names. The file appears when it is finished.
/// Throws CommandError, naming it, when it cannot be written.
class TableFile {
  public:
    /// `names` is the first row. All rows are given without their line end.
    TableFile(const std::string &path, std::string_view names);

    void addRow(std::string_view row);

    void finish();

  private:
    void flush();

    OutputFile file_;
    std::string pending_;
};

[[nodiscard]] std::string meterNames();
/// `replacedFrames`: all so far.
[[nodiscard]] std::string meterRow(double seconds, const MeterReadings &readings,
                                   std::uint64_t replacedFrames);

/// Each band is named by its centre in whole Hz.
[[nodiscard]] std::string spectrumNames();
[[nodiscard]] std::string spectrumRow(double seconds, const SpectrumAnalyzer::Levels &levels);

} // namespace quorbel
