#pragma once

#include <cmath>

namespace Marlox {

/// The rule of a sideways drag in a number field, without the field: pointer positions in, movement
/// in units out. Positions are pixels of the screen along x. A unit is one pixel, `factor` of them
/// while a modifier makes the drag coarse or fine. The movement is always computed from an anchor,
/// which is set anew when the factor changes, so that nothing jumps and nothing drifts.
class ScrubDrag {
public:
    static constexpr double threshold = 4.0; // pixels from the press before anything happens

    /// The factor for the modifiers: Shift is coarse, Ctrl fine, both cancel out.
    static constexpr double Factor(bool shift, bool ctrl)
    {
        return (shift ? 10.0 : 1.0) * (ctrl ? 0.1 : 1.0);
    }

    explicit ScrubDrag(double pressX) : anchorX_(pressX) {}

    bool HasStarted() const { return started_; }
    double Movement() const { return movement_; }

    /// The pointer moved, or the modifiers changed under it. True if the movement changed. The drag
    /// starts at the threshold, counting from there: what follows is smooth.
    bool MoveTo(double x, double factor)
    {
        if (!started_) {
            const double distance = x - anchorX_;
            if (std::abs(distance) < threshold)
                return false;
            started_ = true;
            factor_ = factor;
            anchorX_ += std::copysign(threshold, distance);
        } else if (factor != factor_) {
            Anchor(lastX_);
            factor_ = factor;
        }
        lastX_ = x;
        const double movement = anchorMovement_ + (x - anchorX_) * factor_;
        const bool changed = movement != movement_;
        movement_ = movement;
        return changed;
    }

    /// What was dragged met its end and took only this movement: turning back acts at once.
    void Correct(double movement)
    {
        movement_ = movement;
        Anchor(lastX_);
    }

private:
    void Anchor(double x)
    {
        anchorX_ = x;
        anchorMovement_ = movement_;
    }

    double anchorX_;
    double lastX_ = 0.0;
    double anchorMovement_ = 0.0;
    double movement_ = 0.0;
    double factor_ = 1.0;
    bool started_ = false;
};

} // namespace Marlox
