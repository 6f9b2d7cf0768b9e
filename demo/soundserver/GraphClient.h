#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct pw_context;
struct pw_core;
struct pw_thread_loop;

namespace quorbel::soundserver {

class PrivateSoundServer;

/// This process's connections to a private sound server: one for playback streams and one for
/// recording streams, because a client that has both counts as one that may play its recording. All
/// run on one data thread and, once linked to the same device, in the same cycles of the same
/// clock.
class GraphClient {
  public:
    /// Throws `ServerError` if the connection fails.
    explicit GraphClient(const PrivateSoundServer &server);
    ~GraphClient();
    GraphClient(const GraphClient &) = delete;
    GraphClient &operator=(const GraphClient &) = delete;

    /// Holds the loop's lock, which calls on streams need.
    class Guard {
      public:
        explicit Guard(GraphClient &client);
        ~Guard();
        Guard(const Guard &) = delete;
        Guard &operator=(const Guard &) = delete;

      private:
        pw_thread_loop *loop_;
    };

    [[nodiscard]] pw_core *playingCore() const { return playingCore_; }
    [[nodiscard]] pw_core *recordingCore() const { return recordingCore_; }

  private:
    pw_thread_loop *loop_ = nullptr;
    pw_context *context_ = nullptr;
    pw_core *playingCore_ = nullptr;
    pw_core *recordingCore_ = nullptr;
};

} // namespace quorbel::soundserver
