#include "ui/dotmatrix/Symbol.h"

#include "ui/dotmatrix/DotPainter.h"
#include "ui/symbols/Symbols.h"

#include <QSvgRenderer>

#include <algorithm>

namespace quorbel {

Symbol::Symbol(QQuickItem *parent) : DotItem(parent) {
    measure();
    connect(&Appearance::instance(), &Appearance::changed, this, [this] {
        measure();
        Q_EMIT colorChanged();
    });
}

void Symbol::setName(const QString &name) {
    if (take(name_, name))
        Q_EMIT nameChanged();
}

QColor Symbol::color() const { return color_.isValid() ? color_ : palette().ink; }

void Symbol::setColor(const QColor &color) {
    if (take(color_, color))
        Q_EMIT colorChanged();
}

void Symbol::resetColor() { setColor(QColor()); }

void Symbol::setSize(double size) {
    if (take(size_, size)) {
        measure();
        Q_EMIT sizeChanged();
    }
}

// Scales the symbol with the text beside it.
void Symbol::measure() {
    const double edge = size_ * Appearance::instance().textScale();
    setImplicitSize(edge, edge);
}

void Symbol::paintDots(DotPainter &painter, QSize size) {
    const int edge = std::min(size.width(), size.height());
    if (name_.isEmpty() || edge < 1)
        return;
    QSvgRenderer renderer(symbols::path(name_));
    QImage picture(edge, edge, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter onto(&picture);
    renderer.render(&onto);
    // Keeps the file's shape and replaces its colour.
    onto.setCompositionMode(QPainter::CompositionMode_SourceIn);
    onto.fillRect(picture.rect(), color());
    onto.end();
    painter->drawImage((size.width() - edge) / 2, (size.height() - edge) / 2, picture);
}

} // namespace quorbel
