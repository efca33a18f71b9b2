#pragma once

#include "widgets/ColorWheelModel.h"
#include "widgets/CustomWheel.h"
#include "widgets/HueRing.h"

namespace Marlox {

/// The drawn colour wheel: a ring that turns hues and scales the saturation, and in it a disc that
/// places a tint. It holds a record for each tonal range.
///
/// A press is a move. On the ring, turning counter-clockwise lowers the hue, as far around as one
/// likes, and the way from or to the centre scales the saturation from what it was at the press. In
/// the disc the tint's knob follows the pointer. Ctrl goes a fifth of the way, Shift keeps to one
/// of the two. Page Up and Page Down go between disc and ring, the arrow keys nudge. Alt+click
/// resets (see resetPart).
///
/// The ring's hues turn with it. Inside it a narrow band stands still: there is what each of them
/// becomes, paler where the saturation is lowered.
///
/// The wheel is as wide as the bitmap "Controls.ColorWheel.Wheel.1", its disc 48 pixels less than
/// "Controls.ColorWheel.Wheel.2"; both are drawn over computed colours.
class CustomColorWheel : public CustomWheel {
    Q_OBJECT
    Q_PROPERTY(double hue READ Hue)
    Q_PROPERTY(double saturation READ Saturation)
    Q_PROPERTY(double tintAngle READ TintAngle)
    Q_PROPERTY(double tintLength READ TintLength)
    Q_PROPERTY(bool squaredTint READ HasSquaredTint WRITE SetSquaredTint)
public:
    using Part = ColorWheelModel::Part;

    explicit CustomColorWheel(QWidget* parent = nullptr);
    ~CustomColorWheel() override;

    const ColorWheelModel& Model() const { return model_; }
    const WheelRecord& Record(int mode) const { return records_[std::size_t(mode)]; }
    const WheelRecord& Shown() const { return Record(Mode()); }
    /// What is shown in a mode; sends nothing.
    void SetRecord(int mode, const WheelRecord& record);
    double Hue() const { return Shown().hue; }
    double Saturation() const { return Shown().saturation; }
    double TintAngle() const { return Shown().tintAngle; }
    double TintLength() const { return Shown().tintLength; }
    /// Tint lengths are kept as squares: small ones have more room.
    bool HasSquaredTint() const { return model_.squaredTint; }
    void SetSquaredTint(bool on);

    int PartCount() const override { return 2; }
    QString DescribePart(int part) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

signals:
    /// The user has made the shown record another one.
    void dragWheel();
    /// The user asks for the part's default (Alt+click): 0 the tint, 1 hue and saturation.
    void resetPart(int part);

protected:
    bool Grab(QPoint at) override;
    bool DragTo(const PointerDrag::Step& step) override;
    void BringBack() override;
    void Drop() override;
    bool ResetAt(QPoint at) override;
    void HoverAt(std::optional<QPoint> at) override;
    double FineShare() const override { return ColorWheelModel::fineShare; }
    void Nudge(int part, QPoint way, int level) override;

    // CustomWheel
    void Arrange() override;
    QImage MakePicture(double ratio) override;
    void PaintGround(QPainter& painter) override;
    void PaintParts(QPainter& painter) override;

private:
    void Change(Part part, const WheelRecord& record);
    void PaintKnobs(QPainter& painter) const;
    void PaintPallor(QPainter& painter) const;
    void PaintLabels(QPainter& painter) const;
    bool IsLit(Part part) const;

    ColorWheelModel model_;
    std::array<WheelRecord, modes> records_;
    ColorWheelModel::Drag drag_;
    ColorWheelModel::Axes axes_; // that follow the pointer
    Part hovered_ = Part::None;
    HueRing ring_; // made with the picture
};

} // namespace Marlox
