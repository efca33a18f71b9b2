#pragma once

#include "widgets/CustomControl.h"

#include <QImage>

namespace Marlox {

/// Base of the drawn colour wheels: round, as wide as a bitmap of the look, in the middle of the
/// widget. What they show and edit is that of their mode, one of the tonal ranges: 0 master, 1 low,
/// 2 middle, 3 high.
///
/// What no drag changes is kept as a picture and made anew when the look, the screen's colours, the
/// pixel ratio or the font are others. The parts that the user moves are painted over it.
class CustomWheel : public CustomControl {
    Q_OBJECT
    Q_PROPERTY(int mode READ Mode WRITE SetMode)
    Q_PROPERTY(bool dragging READ IsDragged)
public:
    static constexpr int modes = 4;

    int Mode() const { return mode_; }
    void SetMode(int mode); // others than 0 to 3 are ignored

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// `bitmap`: its name, constant data; `use`: how the wheel is used, for the tooltip. Subclasses
    /// call Arrange.
    CustomWheel(QWidget* parent, const char* bitmap, const QString& use);

    int Diameter() const { return diameter_; }
    /// Around the wheel, in pixels of the widget.
    QRect Square() const;
    void DiscardPicture() { picture_ = QImage(); }

    /// The widget or what the look has of the wheel is of another size.
    virtual void Arrange() = 0;
    /// Another mode is to be shown; a drag is over by then.
    virtual void FollowMode() {}
    /// A square as wide as the wheel, at a device pixel ratio.
    virtual QImage MakePicture(double ratio) = 0;
    /// All but the picture below it.
    virtual void PaintParts(QPainter& painter) = 0;
    /// What lies below the picture where that lets it through.
    virtual void PaintGround(QPainter&) {}

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) final;

private:
    void FollowLook();

    const char* bitmap_;
    int diameter_ = 0;
    int mode_ = 0;
    QImage picture_; // null: to be made
    unsigned look_ = 0;
};

} // namespace Marlox
