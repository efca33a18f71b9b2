#pragma once

#include "controls/polyline/PolyGesture.h"
#include "system/viewer/OverlayCommands.h"

#include <cmath>
#include <optional>

namespace Marlox {

/// How far a drag has moved something since its press, in the shape's coordinates: Shift holds the
/// axis along which it moved less, in pixels as seen; Ctrl moves a tenth of the way from where it
/// went down.
class PolyMoveRule {
public:
    explicit PolyMoveRule(const PolyPointer& pointer) : start_(pointer.view.Cursor())
    {
        if (pointer.modifiers & KeyControl)
            fineFrom_ = Fine{};
    }

    ShapePlace Movement(const PolyPointer& pointer)
    {
        const ShapePlace raw = pointer.view.Cursor() - start_;
        const bool fine = pointer.modifiers & KeyControl;
        if (fine && !fineFrom_)
            fineFrom_ = Fine{raw, Scaled(raw)};
        ShapePlace by = Scaled(raw);
        if (!fine && fineFrom_) {
            rest_ = by - raw;
            fineFrom_.reset();
        }
        if (pointer.modifiers & KeyShift)
            Hold(by, pointer.view);
        return by;
    }

private:
    struct Fine {
        ShapePlace raw; // where Ctrl went down
        ShapePlace by;
    };
    ShapePlace Scaled(ShapePlace raw) const
    {
        if (!fineFrom_)
            return raw + rest_;
        const ShapePlace since = raw - fineFrom_->raw;
        return {fineFrom_->by.x + since.x / 10.0, fineFrom_->by.y + since.y / 10.0};
    }
    static void Hold(ShapePlace& by, const PolyView& view)
    {
        const ShapePlace across = view.Placement().OutVector(by);
        if (std::abs(across.x) >= std::abs(across.y) * view.HeightsPerWidth())
            by = view.Placement().InVector({across.x, 0.0});
        else
            by = view.Placement().InVector({0.0, across.y});
    }

    ShapePlace start_;
    ShapePlace rest_; // what fine movement left behind the pointer
    std::optional<Fine> fineFrom_;
};

} // namespace Marlox
