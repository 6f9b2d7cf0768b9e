#pragma once

class QApplication;

namespace quorbel {

/// What both programs with the window do to the application before anything is shown: names,
/// icons, the light look, the wording of this system, how the window is drawn. [main]
void setUpApplication(QApplication &application);

} // namespace quorbel
