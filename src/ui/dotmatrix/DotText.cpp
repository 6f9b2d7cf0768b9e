#include "ui/dotmatrix/DotText.h"

#include "ui/dotmatrix/DotFont.h"
#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

DotText::DotText(QQuickItem *parent) : DotItem(parent) {
    measure();
    connect(&Appearance::instance(), &Appearance::changed, this, [this] {
        measure();
        Q_EMIT colorChanged();
    });
}

void DotText::setText(const QString &text) {
    if (take(text_, text))
        Q_EMIT textChanged();
    measure();
}

void DotText::setDotSize(double size) {
    if (take(dotSize_, size))
        Q_EMIT dotSizeChanged();
    measure();
}

QColor DotText::color() const { return color_.isValid() ? color_ : palette().ink; }

void DotText::setColor(const QColor &color) {
    if (take(color_, color))
        Q_EMIT colorChanged();
}

void DotText::resetColor() { setColor(QColor()); }

void DotText::setShowUnlit(bool show) {
    if (take(showUnlit_, show))
        Q_EMIT showUnlitChanged();
}

double DotText::pitch() const { return dotSize_ * Appearance::instance().textScale(); }

void DotText::measure() {
    setImplicitSize(dotFont::columns(text_) * pitch(), dotFont::rows * pitch());
}

void DotText::paintDots(DotPainter &painter, QSize size) {
    // Rounds down: at fractional scales a slightly smaller text is better than a clipped one.
    const int step = std::max(1, static_cast<int>(pitch() * painter.scale() + 0.01));
    // Omits the gap below three pixels, where it would dim the text more than shape its dots.
    const int diameter = step < 3 ? step : step - std::max(1, step / 6);
    const QPixmap lit = dotSprite(diameter, color());
    const QPixmap unlit = dotSprite(diameter, palette().dot);
    const int top = (size.height() - dotFont::rows * step) / 2;
    int left = 0;
    for (const QChar character : std::as_const(text_)) {
        const auto glyph = dotFont::glyph(character);
        for (int row = 0; row < dotFont::rows; ++row) {
            for (int column = 0; column < glyph.width; ++column) {
                const QPoint at(left + column * step, top + row * step);
                if (glyph.lit(column, row))
                    painter->drawPixmap(at, lit);
                else if (showUnlit_)
                    painter->drawPixmap(at, unlit);
            }
        }
        left += (glyph.width + 1) * step;
    }
}

} // namespace quorbel
