#pragma once

#include <QString>

namespace quorbel {

/// Names of the window's program on the session bus, by which D-Bus and desktops start it.
namespace activation {
inline const QString service = QStringLiteral("com.quorbel.Ostrafine");
inline const QString path = QStringLiteral("/com/quorbel/Ostrafine");
inline const QString interface = QStringLiteral("org.freedesktop.Application");
/// The action of a login; the others are those of the desktop entry.
inline const QString resumeAction = QStringLiteral("Resume");
} // namespace activation

/// Has the session bus start the window's program without a window, if it does not run, and the
/// program continue what the last one did. Waits until it has taken the request, half a minute at
/// most. Needs an application object. Throws std::runtime_error with a line for the user. [main]
void resumeProgram();

} // namespace quorbel
