#include "ui/dotmatrix/DotText.h"

#include "ui/dotmatrix/DotFont.h"
#include "ui/dotmatrix/DotPainter.h"

#include <algorithm>
#include <cmath>

namespace quorbel {

DotText::DotText(QQuickItem *parent) : DotItem(parent) {
    measure();
    connect(&Appearance::instance(), &Appearance::changed, this, &DotText::colorChanged);
}

void DotText::setText(const QString &text) {
    if (take(text_, text)) {
        Q_EMIT textChanged();
    }
    measure();
}

void DotText::setDotSize(double size) {
    if (take(dotSize_, size)) {
        Q_EMIT dotSizeChanged();
    }
    measure();
}

QColor DotText::color() const { return color_.isValid() ? color_ : palette().ink; }

void DotText::setColor(const QColor &color) {
    if (take(color_, color)) {
        Q_EMIT colorChanged();
    }
}

void DotText::resetColor() { setColor(QColor()); }

void DotText::setShowUnlit(bool show) {
    if (take(showUnlit_, show)) {
        Q_EMIT showUnlitChanged();
    }
}

void DotText::measure() {
    setImplicitSize(dotFont::columns(text_) * dotSize_, dotFont::rows * dotSize_);
}

void DotText::paintDots(DotPainter &painter, QSize size) {
    // Rounded down: at odd scales the text is rather a little smaller than cut off.
    const int pitch = std::max(1, static_cast<int>(dotSize_ * painter.scale() + 0.01));
    // Below three pixels a gap would cost more light than it gives shape.
    const int diameter = pitch < 3 ? pitch : pitch - std::max(1, pitch / 6);
    const QPixmap lit = dotSprite(diameter, color());
    const QPixmap unlit = dotSprite(diameter, palette().dot);
    const int top = (size.height() - dotFont::rows * pitch) / 2;
    int left = 0;
    for (const QChar character : std::as_const(text_)) {
        const auto glyph = dotFont::glyph(character);
        for (int row = 0; row < dotFont::rows; ++row) {
            for (int column = 0; column < glyph.width; ++column) {
                const QPoint at(left + column * pitch, top + row * pitch);
                if (glyph.lit(column, row)) {
                    painter->drawPixmap(at, lit);
                } else if (showUnlit_) {
                    painter->drawPixmap(at, unlit);
                }
            }
        }
        left += (glyph.width + 1) * pitch;
    }
}

} // namespace quorbel
