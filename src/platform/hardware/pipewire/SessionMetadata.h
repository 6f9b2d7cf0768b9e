#pragma once

#include "platform/hardware/pipewire/ServerConnection.h"
#include "platform/hardware/routing/ServerObjects.h"

#include <pipewire/extensions/metadata.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quorbel {

/// The session manager's "default" metadata table, bound.
///
/// Servers lose its changes (0.3.65 to 1.4 at least). While a client binds the table, the others
/// receive no changes. After a client has left in the middle of binding, no client receives any
/// until the session manager restarts: the table is deaf. Hence:
///  1. Reads the table again after its arrival: at that time every client binds it and the session
///     manager sets its defaults.
///  2. Writes a test value after a client has left. Reads the table again and repeats the test if
///     no event reports the value within a second.
///  3. Our write for a new stream may replace a value that was never reported; `read` reports it.
///
/// Everything needs the loop's lock. [control], `refresh` [main]
class SessionMetadata {
  public:
    using Key = std::pair<std::uint32_t, std::string>; ///< subject and key

    class Listener {
      public:
        virtual void metadataArrived() = 0; ///< all values of the table have been received
        /// Reports the end of a reading that began after the last `read`. Follows the changes it
        /// found; a failed `refresh` reports none.
        virtual void metadataRead() = 0;
        virtual void metadataChanged(std::uint32_t subject, const std::string &key,
                                     const std::optional<MetadataValue> &value) = 0;

      protected:
        ~Listener() = default;
    };

    /// `id` and `version` are the table's in `registry`, which must outlive this object.
    SessionMetadata(ServerConnection &connection, pw_registry *registry, std::uint32_t id,
                    std::uint32_t version, Listener &listener);
    ~SessionMetadata();
    SessionMetadata(const SessionMetadata &) = delete;
    SessionMetadata &operator=(const SessionMetadata &) = delete;

    [[nodiscard]] std::uint32_t id() const { return id_; }
    [[nodiscard]] const std::map<Key, MetadataValue> &values() const { return values_; }

    /// Sets a value, or deletes the key without one.
    void set(std::uint32_t subject, const char *key, const std::optional<MetadataValue> &value);

    /// Reads the table again and reports the differences to the listener. Waits `seconds` at most;
    /// statuses as `ServerConnection::roundTrip`.
    Status refresh(double seconds);

    /// As `refresh`, without waiting.
    void read();

    void clientLeft();
    /// True while the server is known to report no changes.
    [[nodiscard]] bool isDeaf() const { return isDeaf_; }

  private:
    struct Binding;
    /// A second binding; its values replace those of the first once it is complete.
    struct Reading {
        int number = 0;
        std::unique_ptr<Binding> binding;
        std::set<Key> writes; ///< keys that we wrote meanwhile: newer than the values read
    };

    [[nodiscard]] std::unique_ptr<Binding> bind();
    void arrived();
    void changed(const Key &key, const std::optional<MetadataValue> &value);
    bool beginReading();
    void endReading();
    void readingEnded();
    void testHearing();
    void timerExpired();
    void armTimer();

    ServerConnection &connection_;
    pw_registry *registry_;
    std::uint32_t id_;
    std::uint32_t version_;
    Listener &listener_;
    std::unique_ptr<Binding> binding_;
    std::map<Key, MetadataValue> values_; ///< including our own writes, reported or not
    bool hasArrived_ = false;
    std::optional<Reading> reading_;
    int lastReading_ = 0;
    bool isAnotherWanted_ = false; ///< start another reading once `reading_` has ended
    spa_source *timer_ = nullptr;

    std::vector<double> readAt_;        ///< times on the monotonic clock
    std::optional<double> testAt_;      ///< of the next test of hearing
    std::optional<double> answerUntil_; ///< deadline of the test under way
    bool isDeaf_ = false;               ///< the last test had no answer
    int lastTest_ = 0;

    /// Expires with this object; round trips, which may outlive it, test that.
    std::shared_ptr<SessionMetadata *> self_ = std::make_shared<SessionMetadata *>(this);
};

} // namespace quorbel
