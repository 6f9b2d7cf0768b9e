#include "support/soundserver/Player.h"

namespace quorbel::soundserver {

Player::Player(GraphClient &client, Sound &sound, const Options &options)
    : ClientStream(client, options.name), sound_(sound) {
    pw_properties *properties = pw_properties_new(PW_KEY_MEDIA_CATEGORY, "Playback", nullptr);
    if (!options.target.empty())
        pw_properties_set(properties, PW_KEY_TARGET_OBJECT, options.target.c_str());
    for (const auto &[key, value] : options.properties)
        pw_properties_set(properties, key.c_str(), value.c_str());
    connect(PW_DIRECTION_OUTPUT, properties, options.sampleRate, options.channels);
}

} // namespace quorbel::soundserver
