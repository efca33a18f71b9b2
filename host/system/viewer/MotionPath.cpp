#include "system/viewer/MotionPath.h"

#include "system/values/Input.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

constexpr double mostSteps = 500.0; // segments of one path, whatever its length in frames
constexpr double tickRoom = 5.0;    // view pixels between frames, for each to have its tick

OverlayPoint PlaceAt(const PreviewInfo& view, const Parameter* value, OverlayPoint offset)
{
    OverlayPoint place;
    if (const auto* point = dynamic_cast<const Point*>(value))
        view.TransformOut(point->X() + offset.x, point->Y() + offset.y, place.x, place.y);
    return place;
}

void DrawSquare(OverlayPainter& painter, OverlayPoint at, double half, double scale, bool filled)
{
    const OverlayPainter::Mark mark(painter, at, scale);
    const OverlayPoint corners[] = {{-half, -half}, {half, -half}, {half, half}, {-half, half}};
    if (filled)
        painter.Fill(corners);
    else
        painter.Loop(corners);
}

} // namespace

void DrawMotionPath(const PreviewInfo& view, const Input& point, OverlayPoint offset)
{
    OverlayPainter& painter = *view.painter;
    const OverlayPainter::Saved saved(painter);
    const Animation& animation = point.GetAnimation();
    const double first = animation.Keys().begin()->first;
    const double last = animation.Keys().rbegin()->first;
    const double step = std::max(1.0, (last - first) / mostSteps);
    std::vector<OverlayPoint> path;
    for (double time = first; time < last; time += step)
        path.push_back(PlaceAt(view, animation.Evaluate(time).Get(), offset));
    path.push_back(PlaceAt(view, animation.Evaluate(last).Get(), offset));

    painter.SetColor(OverlayColor::Path);
    painter.Strip(path);
    for (std::size_t i = 1; step == 1.0 && i + 1 < path.size(); ++i) {
        const double gap = std::hypot(path[i].x - path[i - 1].x, path[i].y - path[i - 1].y);
        if (gap >= tickRoom * view.controlScale)
            DrawSquare(painter, path[i], 1.0, view.controlScale, true);
    }
    painter.SetColor(OverlayColor::PathKey);
    for (const auto& [time, key] : animation.Keys())
        DrawSquare(painter, PlaceAt(view, key.value.Get(), offset), 3.0, view.controlScale, false);
}

} // namespace Marlox
