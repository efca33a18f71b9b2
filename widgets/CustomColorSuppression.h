#pragma once

#include "widgets/ColorSuppressionModel.h"
#include "widgets/CustomWheel.h"

#include <array>

#include <QColor>

namespace Marlox {

/// The drawn wheel of six amounts of colours: a dark disc of the hues with a knob on each of six
/// spokes, and the area of the amounts between them. It holds a record and a rotation for each
/// tonal range.
///
/// A press on a knob picks it and moves nothing; of knobs that overlap it picks the one with the
/// highest index, one that is fixed only where none moves. The drag then moves it along its spoke.
/// Ctrl goes a tenth of the way. Page Up and Page Down go between the knobs, arrow keys up and
/// right increase the amount. Alt+click resets.
///
/// The owner opens the undo entry of a drag or of keys with the first amount that it writes.
///
/// The wheel is as wide as the bitmap "Controls.ColorSuppression.Wheel", which is drawn over
/// computed colours as frame and marks.
class CustomColorSuppression : public CustomWheel {
    Q_OBJECT
    Q_PROPERTY(int draggedKnob READ DraggedKnob)
    Q_PROPERTY(int hoveredKnob READ HoveredKnob)
public:
    static constexpr int none = ColorSuppressionModel::none;
    static constexpr int knobs = ColorSuppressionModel::knobCount;
    using Record = ColorSuppressionModel::Record;
    struct Knob {
        bool shown = true;
        bool movable = true;
        QColor stateColor; // around it, tells of an expression or keys; invalid: neither
        friend bool operator==(const Knob&, const Knob&) = default;
    };

    explicit CustomColorSuppression(QWidget* parent = nullptr);

    const ColorSuppressionModel& Model() const { return model_; }
    /// What is shown in a mode; sends nothing.
    void SetRecord(int mode, const Record& record);
    /// Of a mode's wheel, in turns, counter-clockwise.
    void SetRotation(int mode, double turns);
    void SetKnob(int knob, const Knob& state);
    double Amount(int knob) const { return model_.Amount(knob); }
    int DraggedKnob() const { return dragged_; }
    int HoveredKnob() const { return hovered_; }
    /// "Red" and so on, for people.
    static QString NameOf(int knob);

    int PartCount() const override { return knobs; }
    QString DescribePart(int knob) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

signals:
    /// The user has given this knob of the shown record another amount.
    void dragWheel(int knob);
    /// The user asks for the knob's default (Alt+click).
    void resetKnob(int knob);

protected:
    bool Grab(QPoint at) override;
    void PressOn(const PointerDrag::Step&) override {}
    bool DragTo(const PointerDrag::Step& step) override;
    void BringBack() override;
    void Drop() override;
    bool ResetAt(QPoint at) override;
    void HoverAt(std::optional<QPoint> at) override;
    void Nudge(int knob, QPoint way, int level) override;

    // CustomWheel
    void Arrange() override;
    void FollowMode() override;
    QImage MakePicture(double ratio) override;
    void PaintParts(QPainter& painter) override;

private:
    void Repaint();
    int KnobAt(QPoint at) const;
    void Change(int knob, double amount);

    void PaintSpokes(QPainter& painter) const;
    void PaintNames(QPainter& painter) const;
    void PaintArea(QPainter& painter) const;
    void PaintKnob(QPainter& painter, int knob) const;
    QColor ColorOf(int knob) const;
    bool IsLit(int knob) const;

    ColorSuppressionModel model_;
    std::array<Knob, knobs> knobs_;
    int dragged_ = none;
    double start_ = 0.0; // its amount before the drag
    int hovered_ = none;
    QImage area_; // what fills the area of the amounts, made with the picture and as wide
};

} // namespace Marlox
