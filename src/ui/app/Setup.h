#pragma once

class QApplication;

namespace quorbel {

/// Prepares the application of both programs with a window: names, icons, light style, the wording
/// of this system, the graphics backend, ignored signals. To be called before anything is shown.
/// [main]
void setUpApplication(QApplication &application);

} // namespace quorbel
