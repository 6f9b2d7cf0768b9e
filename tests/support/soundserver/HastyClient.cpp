#include "support/soundserver/HastyClient.h"

#include "soundserver/Waiting.h"

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include <cstring>

namespace quorbel::soundserver {
namespace {

struct HastyClient {
    pw_registry *registry = nullptr;
    pw_proxy *metadata = nullptr;

    void globalAdded(std::uint32_t id, const char *type, const spa_dict *properties) {
        const char *name =
            properties == nullptr ? nullptr : spa_dict_lookup(properties, PW_KEY_METADATA_NAME);
        if (std::strcmp(type, PW_TYPE_INTERFACE_Metadata) == 0 && name != nullptr &&
            std::strcmp(name, "default") == 0) {
            metadata = static_cast<pw_proxy *>(
                pw_registry_bind(registry, id, type, PW_VERSION_METADATA, 0));
        }
    }
};

pw_core *connect(pw_context *context, const PrivateSoundServer &server) {
    pw_core *core = pw_context_connect(
        context, pw_properties_new(PW_KEY_REMOTE_NAME, server.socket().c_str(), nullptr), 0);
    if (core == nullptr)
        throw ServerError("a hasty client cannot connect");
    return core;
}

/// Returns once the server has answered `core`, and so has handled all earlier requests.
void roundTrip(pw_loop *loop, pw_core *core) {
    int answered = -1;
    pw_core_events events{};
    events.version = PW_VERSION_CORE_EVENTS;
    events.done = [](void *result, std::uint32_t, int sequence) {
        *static_cast<int *>(result) = sequence;
    };
    spa_hook hook{};
    pw_core_add_listener(core, &hook, &events, &answered);
    const int asked = pw_core_sync(core, PW_ID_CORE, 0);
    waitFor("the server answers", 5.0, [&] {
        pw_loop_iterate(loop, 10);
        return answered == asked;
    });
    spa_hook_remove(&hook);
}

} // namespace

void bindMetadataAndLeave(const PrivateSoundServer &server) {
    pw_init(nullptr, nullptr);
    pw_main_loop *mainLoop = pw_main_loop_new(nullptr);
    pw_loop *loop = pw_main_loop_get_loop(mainLoop);
    pw_context *context = pw_context_new(loop, nullptr, 0);
    pw_core *core = connect(context, server);
    pw_core *onlooker = connect(context, server);
    HastyClient client;
    client.registry = pw_core_get_registry(core, PW_VERSION_REGISTRY, 0);
    pw_registry_events events{};
    events.version = PW_VERSION_REGISTRY_EVENTS;
    events.global = [](void *self, std::uint32_t id, std::uint32_t, const char *type, std::uint32_t,
                       const spa_dict *properties) {
        static_cast<HastyClient *>(self)->globalAdded(id, type, properties);
    };
    spa_hook hook{};
    pw_registry_add_listener(client.registry, &hook, &events, &client);

    server.pauseSessionManager();
    pw_loop_enter(loop);
    waitFor("the session manager's metadata", 5.0, [&] {
        pw_loop_iterate(loop, 10);
        return client.metadata != nullptr;
    });
    roundTrip(loop, onlooker); // sends the binding too
    roundTrip(loop, onlooker);
    spa_hook_remove(&hook);
    pw_core_disconnect(core);
    roundTrip(loop, onlooker);
    roundTrip(loop, onlooker);
    server.resumeSessionManager();
    pw_loop_leave(loop);
    pw_context_destroy(context);
    pw_main_loop_destroy(mainLoop);
}

} // namespace quorbel::soundserver
