#pragma once

namespace quorbel {

/// Opens the program's own folder inside the user's runtime folder, making it if it is missing.
/// Returns a descriptor, or -1 if there is no runtime folder or ours cannot be trusted: it is a
/// link, another user's, or open to others. The caller closes it.
int openRuntimeFolder();

/// Opens a file in `folder` with `flags` of open(2), never through a link and never waiting.
/// Returns -1 if it is no regular file of this user's. A file that is made can be read by this user
/// alone.
int openRuntimeFile(int folder, const char *name, int flags);

} // namespace quorbel
