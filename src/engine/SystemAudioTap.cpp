#include "engine/SystemAudioTap.h"

#include "engine/AudioRingBuffer.h"
#include "engine/ChainFormat.h"
#include "platform/core/Log.h"
#include "platform/dsp/Denormals.h"
#include "settings/records/Uuid.h"

#include <fmt/format.h>

#include <cerrno>
#include <cmath>
#include <unistd.h>
#include <utility>

namespace quorbel {
namespace {

/// Longest pause between two cycles before the ring's content is stale, as after a suspend.
constexpr double longestGapSeconds = 0.25;

std::string inHertz(double rate) { return fmt::format("{} Hz", rate); }

} // namespace

using Error = SystemAudioTap::Error;

Error Error::osStatus(std::string_view step, Status status) {
    return Error(
        fmt::format("System audio capture failed: couldn't {} (OSStatus {}).", step, status));
}

Error Error::captureStartFailed(Status status) {
    return Error(fmt::format(
        "Couldn't start system audio capture (OSStatus {}). If you denied the permission prompt, "
        "enable Quorbel under System Settings → Privacy & Security → Screen & System Audio "
        "Recording, then try again.",
        status));
}

Error Error::invalidTapFormat() {
    return Error("System audio capture failed: the audio tap reported an invalid stream format.");
}

SystemAudioTap::SystemAudioTap(AudioHardware &hardware) : hardware_(hardware) {}

SystemAudioTap::~SystemAudioTap() { cleanup(); }

void SystemAudioTap::activate(AudioRingBuffer &ring, const StreamFormat &chain) {
    ring_ = &ring;
    chainFormat_ = chain;
    leadWritten_ = false;

    const std::string uuid = Uuid::random().text();
    createTap(uuid);
    StreamFormat tapFormat;
    if (hardware_.tapFormat(tapID, tapFormat) != statusOK || !tapFormat.isValid())
        throw Error::invalidTapFormat();
    builtWithDefaultUID_ = defaultOutputDeviceUID();
    createAggregate(uuid);

    const std::optional<double> rataAgregat = aggregateRate();
    const StreamFormat source = formatSursa(tapFormat, rataAgregat);
    try {
        install(std::make_unique<CaptureConversion>(source, chain));
    } catch (const std::invalid_argument &) {
        throw Error::invalidTapFormat();
    }
    logLine("SystemAudioTap", ratesLine(rataAgregat, tapFormat.sampleRate, *conversion_));

    Status status = hardware_.createIOProc(aggregateID, *this, ioProcID);
    if (status != statusOK || ioProcID == 0)
        throw Error::osStatus("create capture IO proc", status);
    status = hardware_.startDevice(aggregateID, ioProcID);
    if (status != statusOK)
        throw Error::captureStartFailed(status);
    isRunning_ = true;
    logLine("SystemAudioTap",
            fmt::format("running: tap={} aggregate={} format={}, {} canale", tapID, aggregateID,
                        inHertz(source.sampleRate), source.channelCount));
}

void SystemAudioTap::cleanup() {
    if (aggregateID != 0 && ioProcID != 0) {
        hardware_.stopDevice(aggregateID, ioProcID);
        hardware_.destroyIOProc(aggregateID, ioProcID);
    }
    ioProcID = 0;
    active_.store(nullptr, std::memory_order_release);
    conversion_.reset();
    retired_.reset();
    if (aggregateID != 0)
        hardware_.destroyAggregateDevice(std::exchange(aggregateID, 0));
    if (tapID != 0)
        hardware_.destroyProcessTap(std::exchange(tapID, 0));
}

void SystemAudioTap::markStopped() {
    isRunning_ = false;
    builtWithDefaultUID_.reset();
}

StreamFormat SystemAudioTap::formatSursa(const StreamFormat &tap,
                                         std::optional<double> rataAgregat) {
    StreamFormat source = tap;
    if (rataAgregat && std::abs(*rataAgregat - tap.sampleRate) > sampleRateTolerance)
        source.sampleRate = *rataAgregat;
    return source;
}

AudioObjectID SystemAudioTap::translatePIDToProcessObject(std::int32_t pid) {
    AudioObjectID process = 0;
    const Status status = hardware_.processObject(pid, process);
    if (status != statusOK || process == 0)
        throw Error::osStatus("identify own audio process", status);
    return process;
}

std::string SystemAudioTap::defaultOutputDeviceUID() {
    AudioObjectID device = 0;
    const Status status = hardware_.defaultOutputDevice(device);
    if (status != statusOK || device == 0)
        throw Error::osStatus("find default output device", status);
    auto uid = hardware_.deviceUID(device);
    if (!uid)
        throw Error::osStatus("read default output device UID", -ENODATA);
    return *std::move(uid);
}

void SystemAudioTap::createTap(const std::string &uuid) {
    const TapDescription description{
        .excludedProcesses = {translatePIDToProcessObject(::getpid())},
        .name = "Quorbel System Tap",
        .uuid = uuid,
        .muteBehavior = TapDescription::MuteBehavior::mutedWhenTapped,
        .isPrivate = true,
    };
    const Status status = hardware_.createProcessTap(description, tapID);
    if (status != statusOK || tapID == 0)
        throw Error::osStatus("create system audio tap", status);
}

void SystemAudioTap::createAggregate(const std::string &tapUUID) {
    const AggregateDescription description{
        .name = "Quorbel Capture",
        .uid = "com.quorbel.aggregate." + tapUUID,
        .mainDeviceUID = *builtWithDefaultUID_,
        .isPrivate = true,
        .isStacked = false,
        .tapAutoStart = true,
        .subdeviceUIDs = {*builtWithDefaultUID_},
        .taps = {{.uuid = tapUUID, .driftCompensation = true}},
    };
    const Status status = hardware_.createAggregateDevice(description, aggregateID);
    if (status != statusOK || aggregateID == 0)
        throw Error::osStatus("create capture aggregate device", status);
}

std::optional<double> SystemAudioTap::aggregateRate() {
    double rate = 0.0;
    if (hardware_.nominalSampleRate(aggregateID, rate) != statusOK || !(rate > 0.0))
        return std::nullopt;
    return rate;
}

void SystemAudioTap::install(std::unique_ptr<CaptureConversion> conversion) {
    active_.store(conversion.get(), std::memory_order_release);
    conversions_.fetch_add(1, std::memory_order_release);
    retired_ = std::exchange(conversion_, std::move(conversion));
}

std::string SystemAudioTap::ratesLine(std::optional<double> aggregate, double tap,
                                      const CaptureConversion &conversion) const {
    return fmt::format("rate: agregat {} | tap declarat {} | sursa convertorului {} | lanț {} → {}",
                       aggregate ? inHertz(*aggregate) : "necitită", inHertz(tap),
                       inHertz(conversion.source().sampleRate), inHertz(chainFormat_.sampleRate),
                       conversion.copies() ? "copiere" : "reeșantionare");
}

void SystemAudioTap::logFormatChange() {
    std::string line;
    {
        const std::lock_guard guard(changeMutex_);
        line = std::exchange(formatChange_, {});
    }
    if (!line.empty())
        logLine("SystemAudioTap", line);
}

void SystemAudioTap::ioFormatChanged(const StreamFormat &format) {
    if (conversion_ != nullptr && conversion_->source().channelCount == format.channelCount &&
        std::abs(conversion_->source().sampleRate - format.sampleRate) <= sampleRateTolerance)
        return;
    try {
        if (!format.isValid())
            throw std::invalid_argument("no sound has this format");
        install(std::make_unique<CaptureConversion>(format, chainFormat_));
    } catch (const std::invalid_argument &) {
        install(nullptr); // its cycles are counted as lost
        if (onRateRefused)
            onRateRefused(format.sampleRate);
        return;
    }
    // After a change, aggregate and tap both have the cycles' rate.
    const std::lock_guard guard(changeMutex_);
    formatChange_ = ratesLine(format.sampleRate, format.sampleRate, *conversion_);
}

void SystemAudioTap::ioCycle(const IOCycle &cycle) noexcept {
    droppedCycles_.fetch_add(static_cast<std::int32_t>(cycle.missedCycles),
                             std::memory_order_relaxed);
    if (cycle.frames == 0 || cycle.input.bufferCount == 0)
        return;
    const DenormalsFlushed denormalsFlushed;
    if (cycle.hostSeconds - lastCycleEnd_ > longestGapSeconds) {
        ring_->discard();
        leadWritten_ = false;
    }
    lastCycleEnd_ = cycle.hostSeconds + cycle.frames / cycle.format.sampleRate;
    CaptureConversion *conversion = active_.load(std::memory_order_acquire);
    // Drops stale frames: another conversion's lead, or the last block of a replaced output.
    const std::uint32_t number = conversions_.load(std::memory_order_acquire);
    const bool isOtherConversion = std::exchange(lastConversion_, number) != number;
    if (isOtherConversion || (cycle.isAllPlayed && conversion != nullptr && conversion->copies())) {
        ring_->discard();
        leadWritten_ = leadWritten_ && !isOtherConversion;
    }
    const PCMBuffer *block = nullptr;
    PCMBuffer input = PCMBuffer::wrapping(cycle.format, cycle.input, cycle.frames);
    if (conversion != nullptr && cycle.willPlay)
        block = conversion->convert(input);
    if (block == nullptr) {
        droppedCycles_.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    if (!leadWritten_ && conversion->lead() != nullptr) {
        ring_->write(*conversion->lead());
        leadWritten_ = true;
    }
    ring_->write(*block);
}

} // namespace quorbel
