#include "ui/app/GraphicsChoice.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>
#include <QSGRendererInterface>

namespace quorbel {

namespace {

bool hasGraphicsHardware() {
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    if (!surface.isValid() || !context.create() || !context.makeCurrent(&surface))
        return false;
    const auto *name =
        reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    const QString renderer = QString::fromLatin1(name).toLower();
    context.doneCurrent();
    return !renderer.contains(QLatin1String("llvmpipe")) &&
           !renderer.contains(QLatin1String("softpipe")) &&
           !renderer.contains(QLatin1String("swrast"));
}

} // namespace

void chooseGraphics() {
    if (qEnvironmentVariableIsSet("QT_QUICK_BACKEND") ||
        qEnvironmentVariableIsSet("QSG_RHI_BACKEND"))
        return;
    if (!hasGraphicsHardware())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace quorbel
