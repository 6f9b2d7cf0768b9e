#pragma once

namespace quorbel {

/// Opens the program's folder inside the user's runtime folder and makes it if it is missing.
/// Returns a descriptor, which the caller closes. Returns -1 without a runtime folder, or if ours
/// is a link, another user's, or open to others.
int openRuntimeFolder();

/// Opens a file in `folder` with `flags` of open(2), never through a link and never waiting.
/// Returns -1 unless it is a regular file of this user. A new file is readable by this user only.
int openRuntimeFile(int folder, const char *name, int flags);

} // namespace quorbel
