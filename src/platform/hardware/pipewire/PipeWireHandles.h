#pragma once

#include <pipewire/pipewire.h>

#include <memory>

namespace quorbel {

/// Holds the lock of a thread loop, required for all access to the sound server's objects.
/// Callbacks already have it: the loop's thread holds it. Recursive.
class LoopLock {
  public:
    explicit LoopLock(pw_thread_loop *loop) : loop_(loop) { pw_thread_loop_lock(loop_); }
    ~LoopLock() { pw_thread_loop_unlock(loop_); }
    LoopLock(const LoopLock &) = delete;
    LoopLock &operator=(const LoopLock &) = delete;

  private:
    pw_thread_loop *loop_;
};

/// A listener's hook that removes itself. Not movable: PipeWire's library keeps its address.
class Hook {
  public:
    Hook() = default;
    ~Hook() { remove(); }
    Hook(const Hook &) = delete;
    Hook &operator=(const Hook &) = delete;

    spa_hook *get() { return &hook_; }
    void remove() {
        if (hook_.link.next != nullptr)
            spa_hook_remove(&hook_);
        hook_ = {};
    }

  private:
    spa_hook hook_{};
};

struct ProxyDeleter {
    template <typename T> void operator()(T *proxy) const {
        pw_proxy_destroy(reinterpret_cast<pw_proxy *>(proxy));
    }
};
template <typename T> using Proxy = std::unique_ptr<T, ProxyDeleter>;

/// Owns a stream. Clears the pointer after `pw_stream_destroy`, unlike std::unique_ptr: the data
/// thread uses the pointer until that call has removed the stream from its loop.
class StreamHandle {
  public:
    StreamHandle() = default;
    explicit StreamHandle(pw_stream *stream) : stream_(stream) {}
    ~StreamHandle() { reset(); }
    StreamHandle(const StreamHandle &) = delete;
    StreamHandle &operator=(const StreamHandle &) = delete;

    [[nodiscard]] pw_stream *get() const { return stream_; }

    void reset(pw_stream *stream = nullptr) {
        if (stream_ != nullptr)
            pw_stream_destroy(stream_);
        stream_ = stream;
    }

  private:
    pw_stream *stream_ = nullptr;
};

struct ThreadLoopDeleter {
    void operator()(pw_thread_loop *loop) const { pw_thread_loop_destroy(loop); }
};
struct ContextDeleter {
    void operator()(pw_context *context) const { pw_context_destroy(context); }
};
struct CoreDeleter {
    void operator()(pw_core *core) const { pw_core_disconnect(core); }
};

} // namespace quorbel
