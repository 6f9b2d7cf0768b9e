#include "ui/app/ProgramIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>

#include <utility>

namespace quorbel {

namespace {

class ProgramIconEngine final : public QIconEngine {
  public:
    /// `file`: path relative to the theme's folder and to :/quorbel/icons.
    ProgramIconEngine(QString name, QString file)
        : name_(std::move(name)), file_(std::move(file)), themed_(QIcon::fromTheme(name_)) {}

    void paint(QPainter *painter, const QRect &area, QIcon::Mode, QIcon::State) override {
        QSvgRenderer(":/quorbel/icons/" + file_).render(painter, QRectF(area));
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        // The theme may name an SVG file that Qt cannot read.
        QPixmap picture = themed_.pixmap(size, 1.0, mode, state);
        if (picture.isNull()) {
            picture = QPixmap(size);
            picture.fill(Qt::transparent);
            QPainter painter(&picture);
            paint(&painter, QRect(QPoint(), size), mode, state);
        }
        return picture;
    }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        QList<QSize> sizes;
        for (const int side : {16, 22, 24, 32, 48, 64, 128})
            sizes.append(QSize(side, side));
        return sizes;
    }
    QString iconName() override {
        const QString installed =
            QStandardPaths::locate(QStandardPaths::GenericDataLocation, "icons/hicolor/" + file_);
        return installed.isEmpty() ? QString() : name_;
    }
    bool isNull() override { return false; }
    [[nodiscard]] QIconEngine *clone() const override { return new ProgramIconEngine(*this); }

  private:
    QString name_;
    QString file_;
    QIcon themed_;
};

} // namespace

QIcon windowIcon() {
    return QIcon(
        new ProgramIconEngine("com.quorbel.Ostrafine", "scalable/apps/com.quorbel.Ostrafine.svg"));
}

QIcon trayIcon() {
    return QIcon(new ProgramIconEngine("com.quorbel.Ostrafine-symbolic",
                                       "symbolic/apps/com.quorbel.Ostrafine-symbolic.svg"));
}

} // namespace quorbel
