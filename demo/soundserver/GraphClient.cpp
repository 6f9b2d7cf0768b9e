#include "soundserver/GraphClient.h"

#include "soundserver/PrivateSoundServer.h"
#include "soundserver/Waiting.h"

#include <pipewire/pipewire.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <tuple>
#include <unistd.h>

namespace quorbel::soundserver {
namespace {

/// Libraries before 1.3.81 give a plain client no real-time thread.
bool needsRealTimeConfiguration() {
    int major = 0;
    int minor = 0;
    int micro = 0;
    std::sscanf(pw_get_library_version(), "%d.%d.%d", &major, &minor, &micro);
    return std::tuple(major, minor, micro) < std::tuple(1, 3, 81);
}

/// The server's socket is given explicitly, independent of this process's environment.
int connectTo(const std::string &path) {
    const int socketFile = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw ServerError("too long for a socket: " + path);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (connect(socketFile, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close(socketFile);
        throw ServerError("cannot connect to " + path + ": " + std::strerror(errno));
    }
    return socketFile;
}

} // namespace

GraphClient::GraphClient(const PrivateSoundServer &server) {
    pw_init(nullptr, nullptr);
    const int playingSocket = connectTo(server.socket());
    const int recordingSocket = connectTo(server.socket());
    loop_ = pw_thread_loop_new("soundserver", nullptr);
    pw_properties *properties = pw_properties_new(nullptr, nullptr);
    if (needsRealTimeConfiguration())
        pw_properties_set(properties, PW_KEY_CONFIG_NAME, "client-rt.conf");
    context_ = pw_context_new(pw_thread_loop_get_loop(loop_), properties, 0);
    if (context_ != nullptr) {
        playingCore_ = pw_context_connect_fd(context_, playingSocket, nullptr, 0);
        recordingCore_ = pw_context_connect_fd(context_, recordingSocket, nullptr, 0);
    }
    if (playingCore_ == nullptr || recordingCore_ == nullptr || pw_thread_loop_start(loop_) != 0) {
        if (context_ != nullptr)
            pw_context_destroy(context_);
        pw_thread_loop_destroy(loop_);
        throw ServerError(std::string("no PipeWire client: ") + std::strerror(errno));
    }
}

GraphClient::~GraphClient() {
    pw_thread_loop_stop(loop_);
    pw_core_disconnect(playingCore_);
    pw_core_disconnect(recordingCore_);
    pw_context_destroy(context_);
    pw_thread_loop_destroy(loop_);
}

GraphClient::Guard::Guard(GraphClient &client) : loop_(client.loop_) { pw_thread_loop_lock(loop_); }
GraphClient::Guard::~Guard() { pw_thread_loop_unlock(loop_); }

} // namespace quorbel::soundserver
