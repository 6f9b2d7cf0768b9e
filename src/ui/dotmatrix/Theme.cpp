#include "ui/dotmatrix/Theme.h"

#include <QGuiApplication>

namespace quorbel {

Theme::Theme(QObject *parent) : QObject(parent) {
    auto &appearance = Appearance::instance();
    connect(&appearance, &Appearance::changed, this, &Theme::changed);
    appearance.followDesktop();
}

// The desktop's own text face: the dots are the program's, the text is the user's.
QString Theme::fontFamily() const { return QGuiApplication::font().family(); }

} // namespace quorbel
