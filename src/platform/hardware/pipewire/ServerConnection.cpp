#include "platform/hardware/pipewire/ServerConnection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <utility>

namespace quorbel {
namespace {

/// Configuration file that loads the module for the data thread's real-time priority. From 1.3.81
/// on the default file loads it, and this one no longer exists.
const char *configName() {
    int major = 0;
    int minor = 0;
    int micro = 0;
    if (std::sscanf(pw_get_library_version(), "%d.%d.%d", &major, &minor, &micro) != 3)
        return nullptr;
    const int version = major * 1'000'000 + minor * 1'000 + micro;
    return version < 1'003'081 ? "client-rt.conf" : nullptr;
}

Status lastError() { return errno > 0 ? -errno : -EIO; }

} // namespace

std::unique_ptr<ServerConnection> ServerConnection::open(Status &status) {
    static std::once_flag initialised;
    std::call_once(initialised, [] { pw_init(nullptr, nullptr); });

    std::unique_ptr<ServerConnection> connection(new ServerConnection);
    connection->loop_.reset(pw_thread_loop_new("quorbel-control", nullptr));
    if (!connection->loop_) {
        status = lastError();
        return nullptr;
    }
    pw_properties *properties = pw_properties_new(nullptr, nullptr);
    if (const char *name = configName())
        pw_properties_set(properties, PW_KEY_CONFIG_NAME, name);
    connection->context_.reset(
        pw_context_new(pw_thread_loop_get_loop(connection->loop_.get()), properties, 0));
    if (!connection->context_ || pw_thread_loop_start(connection->loop_.get()) < 0) {
        status = lastError();
        return nullptr;
    }
    const LoopLock lock(connection->loop());
    connection->core_ = connection->connectCore();
    if (connection->core_)
        connection->streamCore_ = connection->connectCore();
    if (!connection->streamCore_) {
        status = lastError();
        return nullptr;
    }
    static const pw_core_events events = [] {
        pw_core_events table{};
        table.version = PW_VERSION_CORE_EVENTS;
        table.info = [](void *self, const pw_core_info *info) {
            static_cast<ServerConnection *>(self)->serverCookie_ = info->cookie;
        };
        table.done = [](void *self, std::uint32_t id, int sequence) {
            if (id == PW_ID_CORE)
                static_cast<ServerConnection *>(self)->coreDone(sequence);
        };
        table.error = [](void *self, std::uint32_t id, int, int result, const char *) {
            static_cast<ServerConnection *>(self)->coreError(id, result);
        };
        return table;
    }();
    pw_core_add_listener(connection->core(), connection->coreHook_.get(), &events,
                         connection.get());
    static const pw_core_events streamEvents = [] {
        pw_core_events table{};
        table.version = PW_VERSION_CORE_EVENTS;
        table.error = events.error;
        return table;
    }();
    pw_core_add_listener(connection->streamCore(), connection->streamCoreHook_.get(), &streamEvents,
                         connection.get());
    status = statusOK;
    return connection;
}

/// Returns null on failure, with the cause in `errno`.
ServerConnection::Core ServerConnection::connectCore() const {
    // Session managers let a sandboxed client change other clients' objects only if it declares
    // itself a manager.
    return Core(pw_context_connect(context_.get(),
                                   pw_properties_new(PW_KEY_APP_NAME, "Ostrafine", PW_KEY_APP_ID,
                                                     "com.quorbel.Ostrafine", PW_KEY_MEDIA_CATEGORY,
                                                     "Manager", nullptr),
                                   0));
}

ServerConnection::~ServerConnection() {
    if (!loop_)
        return;
    {
        const LoopLock lock(loop());
        streamCoreHook_.remove();
        coreHook_.remove();
        streamCore_.reset();
        core_.reset();
    }
    pw_thread_loop_stop(loop());
    context_.reset();
}

void ServerConnection::coreDone(int sequence) {
    doneSequence_ = sequence;
    const auto waiting = std::exchange(afterRoundTrip_, {});
    for (const auto &entry : waiting)
        if (entry.first > sequence)
            afterRoundTrip_.push_back(entry);
    for (const auto &[awaited, done] : waiting)
        if (awaited <= sequence)
            done();
    wakeWaiters();
}

void ServerConnection::coreError(std::uint32_t id, int result) {
    // Only these errors mean that the connection has ended. The core also receives errors of
    // requests for objects that are gone.
    constexpr std::array final{-EPIPE, -ECONNRESET, -ENOTCONN, -EPROTO, -EBADMSG, -EIO, -ENOMEM};
    if (id != PW_ID_CORE || lost_ || std::find(final.begin(), final.end(), result) == final.end())
        return;
    lost_ = true;
    wakeWaiters();
    if (lostHandler_)
        lostHandler_(result);
}

Status ServerConnection::roundTrip(double seconds) {
    if (lost_)
        return -EPIPE;
    const int sequence = pw_core_sync(core(), PW_ID_CORE, ++pendingSequence_);
    // The server answers in order, so a later answer implies this one.
    return waitUntil([&] { return doneSequence_ >= sequence; }, seconds);
}

Status ServerConnection::waitUntil(const std::function<bool()> &condition, double seconds,
                                   double lookSeconds) {
    const auto in = [this](double wait) {
        timespec time{};
        pw_thread_loop_get_time(loop(), &time, static_cast<std::int64_t>(wait * 1e9));
        return time;
    };
    const auto isBefore = [](const timespec &a, const timespec &b) {
        return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
    };
    const timespec deadline = in(seconds);
    while (!condition()) {
        if (lost_)
            return -EPIPE;
        timespec wake = lookSeconds > 0.0 ? in(lookSeconds) : deadline;
        const bool isLast = !isBefore(wake, deadline);
        if (isLast)
            wake = deadline;
        if (pw_thread_loop_timed_wait_full(loop(), &wake) != 0 && isLast)
            return condition() ? statusOK : -ETIMEDOUT;
    }
    return statusOK;
}

void ServerConnection::setTimer(spa_source *timer, double seconds) const {
    constexpr double shortestWaitSeconds = 1e-3; // 0 would disarm it
    timespec wait{};
    if (std::isfinite(seconds)) {
        seconds = std::max(seconds, shortestWaitSeconds);
        wait.tv_sec = static_cast<time_t>(seconds);
        wait.tv_nsec = static_cast<long>((seconds - std::floor(seconds)) * 1e9);
    }
    pw_loop_update_timer(pw_thread_loop_get_loop(loop()), timer, &wait, nullptr, false);
}

void ServerConnection::afterRoundTrip(std::function<void()> done) {
    if (lost_)
        return;
    afterRoundTrip_.emplace_back(pw_core_sync(core(), PW_ID_CORE, ++pendingSequence_),
                                 std::move(done));
}

} // namespace quorbel
