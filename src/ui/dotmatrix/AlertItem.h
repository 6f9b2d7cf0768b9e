#pragma once

#include <QQuickItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace quorbel {

/// Makes screen readers announce a text when it appears or changes. Paints nothing; must be visible
/// only while it has a text.
class AlertItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)

  public:
    using QQuickItem::QQuickItem;

    [[nodiscard]] QString text() const { return text_; }
    void setText(const QString &text);

  Q_SIGNALS:
    void textChanged();
    void announced(const QString &text);

  protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;

  private:
    void announceSoon();
    void announce();

    QString text_;
    bool isPending_ = false;
    bool hasAppeared_ = false; ///< since the last announcement
};

} // namespace quorbel
