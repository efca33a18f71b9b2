#pragma once

#include <cmath>

#include <QPoint>
#include <QPointF>
#include <Qt>

namespace Marlox {

/// The pointer in a drag of a drawn widget: where it was pressed, and where it counts as being. In
/// fine mode (Ctrl) it goes a part of the way only, from where it was when Ctrl went down; without
/// Ctrl it is where it is. Pixels of the widget; no window.
class PointerDrag {
public:
    /// One place of the pointer, the press included.
    struct Step {
        QPointF at;           // where it counts as being
        QPoint press;         // where the drag began
        bool fine = false;    // Ctrl
        bool oneAxis = false; // Shift: a drag along two axes follows one of them
    };

    /// `fineShare`: of the pointer's way, in fine mode.
    PointerDrag(QPoint press, double fineShare)
        : press_(press), anchor_(press), last_(press), fineShare_(fineShare)
    {
    }

    /// The step for a pointer at `at`.
    Step MoveTo(QPoint at, Qt::KeyboardModifiers modifiers)
    {
        const bool fine = modifiers & Qt::ControlModifier;
        if (!fine)
            anchor_ = at;
        last_ = at;
        modifiers_ = modifiers;
        return {QPointF(anchor_) + (fine ? fineShare_ : 1.0) * QPointF(at - anchor_), press_, fine,
                bool(modifiers & Qt::ShiftModifier)};
    }
    /// Whether a move there would change nothing.
    bool IsAt(QPoint at, Qt::KeyboardModifiers modifiers) const
    {
        return at == last_ && modifiers == modifiers_;
    }

private:
    QPoint press_;
    QPoint anchor_; // where the pointer was without Ctrl
    QPoint last_;
    double fineShare_;
    Qt::KeyboardModifiers modifiers_;
};

/// How far an arrow key moves a value of the range 0 to 1, at its level: 0 fine, 1 plain, 2 coarse;
/// others are taken for the nearest.
inline double NudgeOf(int level)
{
    return level <= 0 ? 0.001 : level == 1 ? 0.01 : 0.1;
}

/// The grid of values that are worth telling apart on an axis of `pixels` pixels: 10 to the number
/// of digits it takes to count them. Values are kept to its inverse.
inline double StepsOf(double pixels)
{
    return pixels > 1.0 ? std::pow(10.0, std::ceil(std::log10(pixels))) : 1.0;
}

/// `value` on that grid, halves upwards.
inline double OnSteps(double value, double steps)
{
    return std::floor(steps * value + 0.5) / steps;
}

} // namespace Marlox
