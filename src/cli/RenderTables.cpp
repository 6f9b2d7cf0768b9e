#include "cli/RenderTables.h"

#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <cstddef>

namespace quorbel {

TableFile::TableFile(const std::string &path, std::string_view names) : file_(path) {
    addRow(names);
}

void TableFile::addRow(std::string_view row) {
    constexpr std::size_t flushBytes = 65536;
    pending_ += row;
    pending_ += '\n';
    if (pending_.size() >= flushBytes)
        flush();
}

void TableFile::finish() {
    flush();
    file_.commit();
}

void TableFile::flush() {
    file_.write(pending_);
    pending_.clear();
}

std::string meterNames() {
    return "seconds,limiterReductionDB,autoGainDB,bassTrackedFrequency,voiceConfidence,"
           "replacedFrames";
}

std::string meterRow(double seconds, const MeterReadings &readings, std::uint64_t replacedFrames) {
    std::string row = fmt::format("{:.1f}", seconds);
    for (const float reading : {readings.limiterReductionDB, readings.autoGainDB,
                                readings.bassTrackedFrequency, readings.voiceConfidence}) {
        row += ',';
        appendNumber(row, reading);
    }
    return row + fmt::format(",{}", replacedFrames);
}

std::string spectrumNames() {
    std::string row = "seconds";
    for (std::size_t band = 0; band < SpectrumAnalyzer::bandCount; ++band)
        row += fmt::format(",{:.0f}Hz", SpectrumAnalyzer::bandFrequency(band));
    return row;
}

std::string spectrumRow(double seconds, const SpectrumAnalyzer::Levels &levels) {
    std::string row = fmt::format("{:.4f}", seconds);
    for (const float level : levels) {
        row += ',';
        appendNumber(row, level);
    }
    return row;
}

} // namespace quorbel
