#pragma once

#include "cli/NamelessFile.h"
#include "engine/MeterReadings.h"

#include <cstdint>
#include <string>

namespace quorbel {

/// The read-outs of a rendering as comma-separated values, one row for each 0.1 s of the stream,
/// after a row of names. The file appears when it is finished. Throws CommandError, naming it, when
/// it cannot be written.
class MeterTable {
  public:
    explicit MeterTable(const std::string &path);

    /// `replacedFrames`: all so far.
    void addRow(double seconds, const MeterReadings &readings, std::uint64_t replacedFrames);

    void finish();

  private:
    void flush();

    std::string path_;
    NamelessFile file_;
    std::string pending_;
};

} // namespace quorbel
