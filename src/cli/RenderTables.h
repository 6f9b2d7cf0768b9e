#pragma once

#include "analysis/SpectrumAnalyzer.h"
#include "cli/OutputFile.h"
#include "engine/MeterReadings.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quorbel {

// Tables that a rendering can write: the values that the meters and the spectrum display would have
// shown. Numbers read back exactly.

/// Writes rows of comma-separated values under a row of names. The file appears at `finish`. Throws
/// CommandError with the file's name if it cannot be written.
class TableFile {
  public:
    /// `names` is the first row. Rows have no line end.
    TableFile(const std::string &path, std::string_view names);

    void addRow(std::string_view row);

    void finish();

  private:
    void flush();

    OutputFile file_;
    std::string pending_;
};

[[nodiscard]] std::string meterNames();
/// `replacedFrames` is the total so far.
[[nodiscard]] std::string meterRow(double seconds, const MeterReadings &readings,
                                   std::uint64_t replacedFrames);

/// Names each band by its centre frequency in whole Hz.
[[nodiscard]] std::string spectrumNames();
[[nodiscard]] std::string spectrumRow(double seconds, const SpectrumAnalyzer::Levels &levels);

} // namespace quorbel
