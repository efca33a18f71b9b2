#pragma once

#include "widgets/PointerDrag.h"

#include <array>

#include <QRect>

namespace Marlox {

/// How far each hue is suppressed, by tonal range, and where six knobs on a wheel say so; no
/// window.
///
/// Each range (mode) has a record of its own and its wheel a rotation. A knob lies on its spoke,
/// red's to the right unless the wheel is rotated, the others a sixth of a turn further each,
/// counter-clockwise; on the centre for the amount 0 and at `reach` of the wheel's radius for 1.
/// Pixels are the widget's, y downwards. Whatever numbers come in, knobs stay within the wheel.
class ColorSuppressionModel {
public:
    static constexpr int knobCount = 6; // red, yellow, green, cyan, blue, magenta
    static constexpr int modeCount = 4; // master, low, middle, high
    static constexpr int none = -1;
    static constexpr double reach = 7.0 / 9.0;

    struct Record {
        double offset = 0.0; // turns by which the hues are ahead of the amounts
        std::array<double, knobCount> amounts{};
        friend bool operator==(const Record&, const Record&) = default;
    };

    /// Amount at a hue from 0 to 1, linear between the six, magenta going over into red.
    static double AmountAt(const Record& record, double hue);
    /// 0 to 1; 0 for what is no number.
    static double Clamped(double amount);

    /// `diameter`: of the wheel, which lies in the middle of the widget.
    void SetPlace(int diameter, QSize widget);
    QRect Square() const { return {corner_, QSize(diameter_, diameter_)}; }
    QPointF Centre() const;
    double Radius() const { return 0.5 * diameter_; }

    void SetMode(int mode); // out of bounds: stays as it is
    int Mode() const { return mode_; }
    void SetRecord(int mode, const Record& record) { modes_[std::size_t(mode)].record = record; }
    const Record& RecordOf(int mode) const { return modes_[std::size_t(mode)].record; }
    void SetRotation(int mode, double turns); // what is no number: not rotated
    double RotationOf(int mode) const { return modes_[std::size_t(mode)].rotation; }

    // The mode that is shown.
    const Record& Shown() const { return RecordOf(mode_); }
    double Amount(int knob) const { return Shown().amounts[std::size_t(knob)]; }
    void SetAmount(int knob, double amount);
    /// The knob's spoke, in turns, counter-clockwise from the right, 0 to 1.
    double TurnOf(int knob) const;
    QPointF KnobPosition(int knob) const;
    QPoint KnobPixel(int knob) const;
    /// Whether the pointer is on the knob.
    bool Hits(int knob, QPoint pointer) const;
    /// The amount for a pointer: its foot on the knob's spoke, on the grid of amounts that the
    /// wheel tells apart; of a fine drag on one ten times as fine.
    double AmountFor(int knob, QPointF pointer, bool fine) const;
    /// The amount after `steps` of keys: a tenth, a hundredth or with level 0 a thousandth each.
    double Nudged(int knob, int steps, int level) const;

private:
    struct ModeState {
        Record record;
        double rotation = 0.0; // turns
    };
    std::array<ModeState, modeCount> modes_;
    int mode_ = 0;
    int diameter_ = 0;
    QPoint corner_;
};

} // namespace Marlox
