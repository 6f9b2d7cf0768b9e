#include "platform/hardware/pipewire/SessionMetadata.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace quorbel {
namespace {

/// Times of the readings after the table's arrival, in seconds. A starting session manager sets its
/// defaults within a second, later on a busy machine.
constexpr double readAgainAfterSeconds[] = {0.5, 1.5, 4.0};
/// Delay of a test, so that clients that leave together cause only one.
constexpr double testAfterSeconds = 0.3;
constexpr double testAnswerSeconds = 1.0;

/// Key of the test value, set on our own client: the server deletes it with the client.
constexpr const char *testKey = "quorbel.hearing";

} // namespace

/// One binding of the table. It collects values until `owner` is set.
struct SessionMetadata::Binding {
    Proxy<pw_metadata> proxy;
    Hook hook;
    std::map<Key, MetadataValue> collected;
    SessionMetadata *owner = nullptr;

    int propertyChanged(std::uint32_t subject, const char *key, const char *type,
                        const char *value) {
        auto &values = owner != nullptr ? owner->values_ : collected;
        if (key == nullptr) { // all values of the subject are deleted
            std::vector<std::string> keys;
            for (const auto &[where, _] : values)
                if (where.first == subject)
                    keys.push_back(where.second);
            for (const std::string &each : keys)
                propertyChanged(subject, each.c_str(), nullptr, nullptr);
            return 0;
        }
        std::optional<MetadataValue> now;
        if (value != nullptr)
            now = MetadataValue{type != nullptr ? type : "", value};
        if (owner != nullptr)
            owner->changed({subject, key}, now);
        else if (now)
            collected[{subject, key}] = *now;
        else
            collected.erase({subject, key});
        return 0;
    }
};

SessionMetadata::SessionMetadata(ServerConnection &connection, pw_registry *registry,
                                 std::uint32_t id, std::uint32_t version, Listener &listener)
    : connection_(connection), registry_(registry), id_(id), version_(version), listener_(listener),
      binding_(bind()) {
    timer_ = pw_loop_add_timer(
        pw_thread_loop_get_loop(connection_.loop()),
        [](void *self, std::uint64_t) { static_cast<SessionMetadata *>(self)->timerExpired(); },
        this);
    connection_.afterRoundTrip([weak = std::weak_ptr(self_)] {
        if (const auto self = weak.lock())
            (*self)->arrived();
    });
}

SessionMetadata::~SessionMetadata() {
    if (timer_ != nullptr)
        pw_loop_destroy_source(pw_thread_loop_get_loop(connection_.loop()), timer_);
}

std::unique_ptr<SessionMetadata::Binding> SessionMetadata::bind() {
    auto binding = std::make_unique<Binding>();
    binding->proxy.reset(static_cast<pw_metadata *>(
        pw_registry_bind(registry_, id_, PW_TYPE_INTERFACE_Metadata,
                         std::min<std::uint32_t>(version_, PW_VERSION_METADATA), 0)));
    if (!binding->proxy)
        return nullptr;
    static const pw_metadata_events events = [] {
        pw_metadata_events table{};
        table.version = PW_VERSION_METADATA_EVENTS;
        table.property = [](void *self, std::uint32_t subject, const char *key, const char *type,
                            const char *value) {
            return static_cast<Binding *>(self)->propertyChanged(subject, key, type, value);
        };
        return table;
    }();
    pw_metadata_add_listener(binding->proxy.get(), binding->hook.get(), &events, binding.get());
    return binding;
}

void SessionMetadata::arrived() {
    if (!binding_)
        return;
    values_ = std::move(binding_->collected);
    binding_->owner = this;
    hasArrived_ = true;
    const double now = monotonicSeconds();
    for (const double seconds : readAgainAfterSeconds)
        readAt_.push_back(now + seconds);
    listener_.metadataArrived();
    testHearing();
}

void SessionMetadata::changed(const Key &key, const std::optional<MetadataValue> &value) {
    if (key.second == testKey) {
        if (value && value->value == std::to_string(lastTest_) && answerUntil_) {
            answerUntil_.reset();
            isDeaf_ = false;
            pw_metadata_set_property(binding_->proxy.get(), key.first, testKey, nullptr, nullptr);
        }
        return;
    }
    if (value)
        values_[key] = *value;
    else
        values_.erase(key);
    listener_.metadataChanged(key.first, key.second, value);
}

void SessionMetadata::set(std::uint32_t subject, const char *key,
                          const std::optional<MetadataValue> &value) {
    if (!binding_)
        return;
    if (value)
        values_[{subject, key}] = *value;
    else
        values_.erase({subject, key});
    if (reading_)
        reading_->writes.insert({subject, key});
    pw_metadata_set_property(binding_->proxy.get(), subject, key,
                             value ? value->type.c_str() : nullptr,
                             value ? value->value.c_str() : nullptr);
}

bool SessionMetadata::beginReading() {
    if (!hasArrived_)
        return false;
    reading_ = Reading{++lastReading_, bind(), {}};
    if (!reading_->binding)
        reading_.reset();
    return reading_.has_value();
}

void SessionMetadata::endReading() {
    binding_ = std::move(reading_->binding);
    binding_->owner = this;
    auto fresh = std::move(binding_->collected);
    const auto writes = std::move(reading_->writes);
    reading_.reset();
    const auto valueIn = [](const auto &values, const Key &key) {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
    std::set<Key> keys;
    for (const auto *table : {&values_, &fresh})
        for (const auto &[key, value] : *table)
            if (valueIn(values_, key) != valueIn(fresh, key))
                keys.insert(key);
    for (const Key &key : writes)
        keys.erase(key);
    // A value read does not prove that changes are reported. If the reading took a test's answer,
    // the next test receives one.
    std::erase_if(keys, [](const Key &key) { return key.second == testKey; });
    // Applies changes one by one, like events: the listener may write in between.
    for (const Key &key : keys)
        changed(key, valueIn(fresh, key));
    readingEnded();
}

Status SessionMetadata::refresh(double seconds) {
    if (!beginReading())
        return hasArrived_ ? -ENOENT : statusOK;
    const std::weak_ptr<SessionMetadata *> weak = self_;
    const Status status = connection_.roundTrip(seconds);
    if (weak.expired() || !reading_) // the session manager has left meanwhile
        return status;
    if (status == statusOK) {
        endReading();
    } else {
        reading_.reset();
        readingEnded();
    }
    return status;
}

void SessionMetadata::readingEnded() {
    if (std::exchange(isAnotherWanted_, false))
        read();
    else
        listener_.metadataRead();
}

void SessionMetadata::read() {
    if (reading_) {
        isAnotherWanted_ = true;
        return;
    }
    if (!beginReading())
        return;
    connection_.afterRoundTrip([weak = std::weak_ptr(self_), number = reading_->number] {
        const auto self = weak.lock();
        if (self && (*self)->reading_ && (*self)->reading_->number == number)
            (*self)->endReading();
    });
}

void SessionMetadata::clientLeft() {
    if (!hasArrived_ || testAt_ || answerUntil_)
        return;
    testAt_ = monotonicSeconds() + testAfterSeconds;
    armTimer();
}

void SessionMetadata::testHearing() {
    const std::uint32_t client =
        pw_proxy_get_bound_id(reinterpret_cast<pw_proxy *>(pw_core_get_client(connection_.core())));
    testAt_.reset();
    if (client != SPA_ID_INVALID) {
        pw_metadata_set_property(binding_->proxy.get(), client, testKey, "",
                                 std::to_string(++lastTest_).c_str());
        answerUntil_ = monotonicSeconds() + testAnswerSeconds;
    }
    armTimer();
}

void SessionMetadata::timerExpired() {
    const double now = monotonicSeconds();
    if (answerUntil_ && now >= *answerUntil_) {
        answerUntil_.reset();
        isDeaf_ = true;
        read();
        testHearing();
    }
    if (testAt_ && now >= *testAt_)
        testHearing();
    if (std::erase_if(readAt_, [now](double time) { return time <= now; }) > 0)
        read();
    armTimer();
}

void SessionMetadata::armTimer() {
    constexpr double never = std::numeric_limits<double>::infinity();
    double next = answerUntil_ ? *answerUntil_ : testAt_.value_or(never);
    for (const double time : readAt_)
        next = std::min(time, next);
    connection_.setTimer(timer_, next - monotonicSeconds());
}

} // namespace quorbel
