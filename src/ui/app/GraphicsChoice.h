#pragma once

namespace quorbel {

/// Has the window drawn by the processor where there is no graphics hardware to do it. An OpenGL
/// that is itself emulated counts as none: drawing directly costs a fraction of it. What the user's
/// environment says (QT_QUICK_BACKEND, QSG_RHI_BACKEND) goes first. After the application is made,
/// before the first window. [main]
void chooseGraphics();

} // namespace quorbel
