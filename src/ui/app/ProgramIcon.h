#pragma once

#include <QIcon>

namespace quorbel {

/// The program's icon for windows, and for the tray in one colour. The icon theme's picture where
/// there is one, else our own, drawn without Qt's SVG plug-ins, which may not be installed. Carries
/// its theme name only where a file of that name is installed: a tray then loads and colours the
/// file itself. [main]
[[nodiscard]] QIcon windowIcon();
[[nodiscard]] QIcon trayIcon();

} // namespace quorbel
