#pragma once

#include "ui/dotmatrix/Appearance.h"

#include <QFont>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <cmath>

namespace quorbel {

/// Colours, sizes and durations of the window, for QML. Sizes are in device-independent pixels.
/// Sizes of items with text follow the desktop's text size; margins and drawings do not.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor paper READ paper NOTIFY changed FINAL)
    Q_PROPERTY(QColor card READ card NOTIFY changed FINAL)
    Q_PROPERTY(QColor rule READ rule NOTIFY changed FINAL)
    Q_PROPERTY(QColor pressed READ pressed NOTIFY changed FINAL)
    Q_PROPERTY(QColor edge READ edge NOTIFY changed FINAL)
    Q_PROPERTY(QColor ink READ ink NOTIFY changed FINAL)
    Q_PROPERTY(QColor inkSoft READ inkSoft NOTIFY changed FINAL)
    Q_PROPERTY(QColor dot READ dot NOTIFY changed FINAL)
    Q_PROPERTY(QColor dotMid READ dotMid NOTIFY changed FINAL)
    // `signal` is a Qt keyword, hence the getter's name.
    Q_PROPERTY(QColor signal READ signalColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor signalInk READ signalInk NOTIFY changed FINAL)
    Q_PROPERTY(QColor signalDim READ signalDim NOTIFY changed FINAL)
    Q_PROPERTY(QColor onSignal READ onSignal NOTIFY changed FINAL)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed FINAL)
    Q_PROPERTY(QColor veil READ veil NOTIFY changed FINAL)
    Q_PROPERTY(double unit READ unit CONSTANT FINAL)
    Q_PROPERTY(double radius READ radius CONSTANT FINAL)
    Q_PROPERTY(double hairline READ hairline NOTIFY changed FINAL)
    Q_PROPERTY(double dotPitch READ dotPitch CONSTANT FINAL)
    Q_PROPERTY(double textScale READ textScale NOTIFY changed FINAL)
    Q_PROPERTY(double textUnit READ textUnit NOTIFY changed FINAL)
    Q_PROPERTY(int titleSize READ titleSize NOTIFY changed FINAL)
    Q_PROPERTY(int headingSize READ headingSize NOTIFY changed FINAL)
    Q_PROPERTY(int bodySize READ bodySize NOTIFY changed FINAL)
    Q_PROPERTY(int captionSize READ captionSize NOTIFY changed FINAL)
    Q_PROPERTY(QString fontFamily READ fontFamily NOTIFY changed FINAL)
    Q_PROPERTY(double controlHeight READ controlHeight NOTIFY changed FINAL)
    Q_PROPERTY(double fieldHeight READ fieldHeight NOTIFY changed FINAL)
    Q_PROPERTY(double rowHeight READ rowHeight NOTIFY changed FINAL)
    Q_PROPERTY(double headHeight READ headHeight NOTIFY changed FINAL)
    Q_PROPERTY(double sidebarWidth READ sidebarWidth NOTIFY changed FINAL)
    Q_PROPERTY(double stripWidth READ stripWidth NOTIFY changed FINAL)
    Q_PROPERTY(double labelWidth READ labelWidth NOTIFY changed FINAL)
    Q_PROPERTY(double valueWidth READ valueWidth NOTIFY changed FINAL)
    Q_PROPERTY(double expanderWidth READ expanderWidth NOTIFY changed FINAL)
    Q_PROPERTY(double readingWidth READ readingWidth NOTIFY changed FINAL)
    Q_PROPERTY(double indent READ indent CONSTANT FINAL)
    Q_PROPERTY(int duration READ duration NOTIFY changed FINAL)
    Q_PROPERTY(double disabledOpacity READ disabledOpacity CONSTANT FINAL)
    Q_PROPERTY(bool highContrast READ highContrast NOTIFY changed FINAL)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed FINAL)

  public:
    explicit Theme(QObject *parent = nullptr);

    [[nodiscard]] QColor paper() const { return palette().paper; }
    [[nodiscard]] QColor card() const { return palette().card; }
    [[nodiscard]] QColor rule() const { return palette().rule; }
    [[nodiscard]] QColor pressed() const { return palette().pressed; }
    [[nodiscard]] QColor edge() const { return palette().edge; }
    [[nodiscard]] QColor ink() const { return palette().ink; }
    [[nodiscard]] QColor inkSoft() const { return palette().inkSoft; }
    [[nodiscard]] QColor dot() const { return palette().dot; }
    [[nodiscard]] QColor dotMid() const { return palette().dotMid; }
    [[nodiscard]] QColor signalColor() const { return palette().signal; }
    [[nodiscard]] QColor signalInk() const { return palette().signalInk; }
    [[nodiscard]] QColor signalDim() const { return palette().signalDim; }
    [[nodiscard]] QColor onSignal() const { return palette().onSignal; }
    [[nodiscard]] QColor warning() const { return palette().warning; }
    [[nodiscard]] QColor veil() const { return palette().veil; }

    [[nodiscard]] double unit() const { return 8; }
    [[nodiscard]] double radius() const { return 4; }
    [[nodiscard]] double hairline() const { return highContrast() ? 2 : 1; }
    [[nodiscard]] double dotPitch() const { return 8; }

    /// 1 to 2; see `Appearance`.
    [[nodiscard]] double textScale() const { return Appearance::instance().textScale(); }
    /// Layout unit of text containers, in pixels; scales with the text.
    [[nodiscard]] double textUnit() const { return unit() * textScale(); }
    [[nodiscard]] int titleSize() const { return scaled(24); }
    [[nodiscard]] int headingSize() const { return scaled(15); }
    [[nodiscard]] int bodySize() const { return scaled(13); }
    [[nodiscard]] int captionSize() const { return scaled(11); }
    [[nodiscard]] QString fontFamily() const;

    /// Heights of one line of text with its padding: in buttons and boxes, in small fields and
    /// chips, in rows of the sidebar, in heads of screens.
    [[nodiscard]] double controlHeight() const { return 16 + scaled(16); }
    [[nodiscard]] double fieldHeight() const { return 8 + scaled(16); }
    [[nodiscard]] double rowHeight() const { return 20 + scaled(16); }
    [[nodiscard]] double headHeight() const { return 24 + scaled(16); }

    [[nodiscard]] double sidebarWidth() const { return 27 * textUnit(); }
    /// Minimum width of a band's strip; ten strips and their scale fit the smallest window.
    [[nodiscard]] double stripWidth() const { return 5.7 * textUnit(); }
    /// Column widths of a card: names of values, values, and the button that expands it.
    [[nodiscard]] double labelWidth() const { return 22 * textUnit(); }
    [[nodiscard]] double valueWidth() const { return 13 * textUnit(); }
    [[nodiscard]] double expanderWidth() const { return 15 * textUnit(); }
    /// Maximum width of a line of prose.
    [[nodiscard]] double readingWidth() const { return 88 * textUnit(); }
    /// Distance from a card's edge to its texts, beside a switch or a number.
    [[nodiscard]] double indent() const { return 7 * unit(); }
    /// Duration of a transition in milliseconds; 0 if the desktop asks for reduced motion.
    [[nodiscard]] int duration() const { return reducedMotion() ? 0 : 120; }
    [[nodiscard]] double disabledOpacity() const { return 0.4; }
    [[nodiscard]] bool highContrast() const { return Appearance::instance().highContrast(); }
    [[nodiscard]] bool reducedMotion() const { return Appearance::instance().reducedMotion(); }

  Q_SIGNALS:
    void changed();

  private:
    [[nodiscard]] int scaled(double pixels) const {
        return static_cast<int>(std::lround(pixels * textScale()));
    }
    static const Palette &palette() { return Appearance::instance().palette(); }
};

} // namespace quorbel
