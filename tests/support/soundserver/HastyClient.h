#pragma once

#include "soundserver/PrivateSoundServer.h"

namespace quorbel::soundserver {

/// A client that binds the session manager's metadata and leaves before the session manager has
/// answered, which is paused for it. Throws `ServerError` if it cannot connect.
void bindMetadataAndLeave(const PrivateSoundServer &server);

} // namespace quorbel::soundserver
