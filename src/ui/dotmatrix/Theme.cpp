#include "ui/dotmatrix/Theme.h"

#include <QGuiApplication>

namespace quorbel {

Theme::Theme(QObject *parent) : QObject(parent) {
    auto &appearance = Appearance::instance();
    connect(&appearance, &Appearance::changed, this, &Theme::changed);
    appearance.followDesktop();
}

// The desktop's font: only the dot font is the program's own.
QString Theme::fontFamily() const { return QGuiApplication::font().family(); }

} // namespace quorbel
