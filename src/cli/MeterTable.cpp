#include "cli/MeterTable.h"

#include "cli/CommandError.h"
#include "settings/records/json/JsonLiterals.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <system_error>
#include <unistd.h>

namespace quorbel {

namespace {

constexpr std::size_t flushBytes = 65536;

} // namespace

MeterTable::MeterTable(const std::string &path)
    : path_(path), file_(path),
      pending_("seconds,limiterReductionDB,autoGainDB,bassTrackedFrequency,voiceConfidence,"
               "replacedFrames\n") {}

void MeterTable::addRow(double seconds, const MeterReadings &readings,
                        std::uint64_t replacedFrames) {
    fmt::format_to(std::back_inserter(pending_), "{:.1f}", seconds);
    for (const float reading : {readings.limiterReductionDB, readings.autoGainDB,
                                readings.bassTrackedFrequency, readings.voiceConfidence}) {
        pending_ += ',';
        appendNumber(pending_, reading);
    }
    fmt::format_to(std::back_inserter(pending_), ",{}\n", replacedFrames);
    if (pending_.size() >= flushBytes)
        flush();
}

void MeterTable::finish() {
    flush();
    file_.takeName();
}

void MeterTable::flush() {
    std::size_t done = 0;
    while (done < pending_.size()) {
        const ssize_t count =
            write(file_.descriptor(), pending_.data() + done, pending_.size() - done);
        if (count < 0 && errno != EINTR)
            throw CommandError(path_ +
                               ": cannot be written: " + std::generic_category().message(errno));
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    pending_.clear();
}

} // namespace quorbel
