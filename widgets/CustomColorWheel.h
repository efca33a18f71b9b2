#pragma once

#include "widgets/ColorWheelModel.h"
#include "widgets/CustomControl.h"

#include <QImage>

namespace Marlox {

/// The drawn colour wheel: a ring that turns hues and scales the saturation, and in it a disc that
/// places a tint. It holds a record for each tonal range and shows and edits that of its mode: 0
/// master, 1 low, 2 middle, 3 high.
///
/// A press is a move. On the ring, turning counter-clockwise lowers the hue, as far around as one
/// likes, and the way from or to the centre scales the saturation from what it was at the press. In
/// the disc the tint's knob follows the pointer. Ctrl goes a fifth of the way, Shift keeps to one
/// of the two. Page Up and Page Down go between disc and ring, the arrow keys nudge. Alt+click
/// resets (see resetPart).
///
/// The wheel is as wide as the bitmap "Controls.ColorWheel.Wheel.1", its disc 48 pixels less than
/// "Controls.ColorWheel.Wheel.2"; both are drawn over computed colours, which are kept as a
/// picture.
class CustomColorWheel : public CustomControl {
    Q_OBJECT
    Q_PROPERTY(int mode READ Mode WRITE SetMode)
    Q_PROPERTY(double hue READ Hue)
    Q_PROPERTY(double saturation READ Saturation)
    Q_PROPERTY(double tintAngle READ TintAngle)
    Q_PROPERTY(double tintLength READ TintLength)
    Q_PROPERTY(bool squaredTint READ HasSquaredTint WRITE SetSquaredTint)
    Q_PROPERTY(bool dragging READ IsDragged)
public:
    static constexpr int modes = 4;
    using Part = ColorWheelModel::Part;

    explicit CustomColorWheel(QWidget* parent = nullptr);
    ~CustomColorWheel() override;

    const ColorWheelModel& Model() const { return model_; }
    int Mode() const { return mode_; }
    void SetMode(int mode); // others than 0 to 3 are ignored
    const WheelRecord& Record(int mode) const { return records_[std::size_t(mode)]; }
    const WheelRecord& Shown() const { return Record(mode_); }
    /// What is shown in a mode; sends nothing.
    void SetRecord(int mode, const WheelRecord& record);
    double Hue() const { return Shown().hue; }
    double Saturation() const { return Shown().saturation; }
    double TintAngle() const { return Shown().tintAngle; }
    double TintLength() const { return Shown().tintLength; }
    /// Tint lengths are kept as squares: small ones have more room.
    bool HasSquaredTint() const { return model_.squaredTint; }
    void SetSquaredTint(bool on);
    /// One sentence on what is edited, for the tooltip, above how the wheel is used.
    void SetHelp(const QString& help);

    int PartCount() const override { return 2; }
    QString DescribePart(int part) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user has made the shown record another one.
    void dragWheel();
    /// The user asks for the part's default (Alt+click): 0 the tint, 1 hue and saturation.
    void resetPart(int part);

protected:
    bool Grab(QPoint at) override;
    bool DragTo(const PointerDrag::Step& step) override;
    void Drop() override;
    bool ResetAt(QPoint at) override;
    void HoverAt(std::optional<QPoint> at) override;
    double FineShare() const override { return ColorWheelModel::fineShare; }
    void Nudge(int part, QPoint way, int level) override;

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void FollowLook();
    void Change(Part part, const WheelRecord& record);
    void MakePicture(double ratio);
    void PaintKnobs(QPainter& painter) const;
    void PaintLabels(QPainter& painter) const;
    bool IsLit(Part part) const;

    ColorWheelModel model_;
    std::array<WheelRecord, modes> records_;
    int mode_ = 0;
    ColorWheelModel::Drag drag_;
    ColorWheelModel::Axes axes_; // that follow the pointer
    Part hovered_ = Part::None;
    QImage picture_; // of the wheel without knobs; null: to be made
    unsigned look_ = 0;
};

} // namespace Marlox
