#include "platform/core/Version.h"

namespace quorbel {

const char *const version = QUORBEL_VERSION;

} // namespace quorbel
