#pragma once

#include "system/shapes/PolyLine.h"
#include "system/viewer/OverlayPainter.h"

#include <span>
#include <vector>

namespace Marlox {

/// Where normalised image coordinates lie in a view: scaled, then moved. View pixels, y upwards.
struct MARLOXSYSTEM_EXPORT CurveView {
    ShapePlace scale{1.0, 1.0};
    ShapePlace offset;
    double width = 1.0; // the view's
    double height = 1.0;
    double margin = 16.0; // around the view; what lies beyond is not drawn

    static CurveView Of(const PreviewInfo& view);
    ShapePlace Out(ShapePlace at) const
    {
        return {at.x * scale.x + offset.x, at.y * scale.y + offset.y};
    }
    friend bool operator==(const CurveView&, const CurveView&) = default;
};

/// Lines through places of a view, several one behind the other in one buffer.
class MARLOXSYSTEM_EXPORT ViewStrips {
public:
    void Clear();
    void Add(OverlayPoint at) { points_.push_back(at); }
    /// What was added since the last call is one strip; a single place is none.
    void EndStrip();

    int Count() const { return int(ends_.size()); }
    std::span<const OverlayPoint> Strip(int index) const;
    std::span<const OverlayPoint> Points() const { return points_; } // of all strips
    void Draw(OverlayPainter& painter) const;
    /// The same lines in dashes, which run on over corners. Lengths in view pixels, above 0.
    void Dash(double dash, double gap, ViewStrips& dashes) const;

private:
    std::vector<OverlayPoint> points_;
    std::vector<std::size_t> ends_;
};

/// A shape's curve as the lines that a view needs: nowhere half a pixel from the curve, no more
/// places than that takes, without gaps of the shape and what lies outside the view. A curve with
/// more segments than pixels becomes a few places. Keeps its lines until another shape or view
/// comes.
class MARLOXSYSTEM_EXPORT ThinCurve {
public:
    /// The lines; valid until the next call. A shape that was changed in place is taken for the
    /// same unless Forget was called.
    const ViewStrips& Make(const Ref<PolyLine>& shape, const CurveView& view);
    void Forget() { shape_ = {}; }

private:
    Ref<PolyLine> shape_; // held, so that no other one can get its address
    CurveView view_;
    ViewStrips strips_;
};

/// What ThinCurve makes, for shapes that change with each call.
MARLOXSYSTEM_EXPORT void MakeThinCurve(const PolyLine& shape, const CurveView& view,
                                       ViewStrips& strips);

} // namespace Marlox
