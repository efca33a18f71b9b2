#pragma once

#include "widgets/ColorAxes.h"

#include <optional>

#include <QAbstractButton>

namespace Marlox {

/// A patch of the colour that is edited, as the viewer shows it: opaque at the left, and with an
/// alpha over a chequer at the right. Small arrows in its corners tell of components above 1 (up)
/// and below 0 (down), which the screen can't show. A click asks for the colour dialog; dragging it
/// away carries the colour.
class CustomSwatch : public QAbstractButton {
    Q_OBJECT
public:
    explicit CustomSwatch(QWidget* parent = nullptr);

    /// Scene-linear; alpha 0 to 1, not multiplied in; without one there is none to show.
    void SetColor(const RgbColor& rgb, std::optional<double> alpha);
    const RgbColor& Color() const { return rgb_; }
    /// The patch for the pointer of a drag.
    QPixmap DragPicture() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The pointer has left the place where it was pressed.
    void dragAway();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintPatch(QPainter& painter, const QRect& inner) const;

    RgbColor rgb_{};
    std::optional<double> alpha_;
    QPoint press_;
};

} // namespace Marlox
