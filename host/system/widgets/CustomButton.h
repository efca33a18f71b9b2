#pragma once

#include "system/base/Types.h"

#include <QAbstractButton>

namespace Marlox {

/// A flat push button with a text, a bitmap of the look pack, or both. The bitmap comes as a pair:
/// the normal one, and the highlighted one under the pointer, while pressed and when checked.
class MARLOXSYSTEM_EXPORT CustomButton : public QAbstractButton {
    Q_OBJECT
    Q_PROPERTY(QByteArray bitmap READ Bitmap)
public:
    explicit CustomButton(QWidget* parent = nullptr);
    explicit CustomButton(const QString& text, QWidget* parent = nullptr);

    /// Resource names of the pair; with an empty second name the first serves for both. Names that
    /// the look pack lacks leave the text alone.
    void SetBitmaps(const QByteArray& normal, const QByteArray& highlighted = {});
    QByteArray Bitmap() const { return normal_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QByteArray normal_;
    QByteArray highlighted_;
};

} // namespace Marlox
