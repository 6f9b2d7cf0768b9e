#pragma once

#include <QIcon>

namespace quorbel {

/// Icons for windows and, in one colour, for the tray. Use the icon theme's picture if there is
/// one, else our own, drawn without Qt's SVG plug-ins, which may be missing. Have a theme name only
/// if that file is installed, because a tray then loads and colours the file itself. [main]
[[nodiscard]] QIcon windowIcon();
[[nodiscard]] QIcon trayIcon();

} // namespace quorbel
