// Where the handle of an angle lies, and what it looks like.

#include "controls/viewer/AngleControl.h"

#include <algorithm>
#include <array>

namespace Marlox {

namespace {

constexpr double leverLength = 50.0; // pixels of the mark

/// A radius of 3, anticlockwise from the bottom.
constexpr float ringTable[12][2] = {{0.0F, -3.0F}, {1.5F, -2.598F},  {2.598F, -1.5F},
                                    {3.0F, 0.0F},  {2.598F, 1.5F},   {1.5F, 2.598F},
                                    {0.0F, 3.0F},  {-1.5F, 2.598F},  {-2.598F, 1.5F},
                                    {-3.0F, 0.0F}, {-2.598F, -1.5F}, {-1.5F, -2.598F}};

void DrawRingAt(OverlayPainter& painter, OverlayPoint at, double scale)
{
    std::array<OverlayPoint, std::size(ringTable)> ring;
    std::transform(std::begin(ringTable), std::end(ringTable), ring.begin(), [](const float* xy) {
        return OverlayPoint{double(xy[0]), double(xy[1])};
    });
    const OverlayPainter::Mark mark(painter, at, scale);
    painter.Loop(ring);
}

OverlayPoint Along(OverlayPoint from, OverlayPoint direction, double length)
{
    return {from.x + direction.x * length, from.y + direction.y * length};
}

} // namespace

OverlayPoint AngleControl::CentreInView(const PreviewInfo& view) const
{
    OverlayPoint at;
    view.TransformOut(centre_.x + BaseOffsetX(), centre_.y + BaseOffsetY(), at.x, at.y);
    return at;
}

OverlayPoint AngleControl::HandleInView(const PreviewInfo& view) const
{
    const double radius = std::max(radius_ * radiusScale_, minRadius_);
    const OverlayPoint direction = DirectionOf(angle_);
    OverlayPoint at;
    view.TransformOut(centre_.x + view.AspectScaleXOut(direction.x * radius) + BaseOffsetX(),
                      centre_.y + view.AspectScaleYOut(direction.y * radius) + BaseOffsetY(), at.x,
                      at.y);
    return at;
}

OverlayPoint AngleControl::LeverInView(const PreviewInfo& view) const
{
    return Along(CentreInView(view), DirectionOf(angle_), leverLength * view.controlScale);
}

void AngleControl::GLDrawControls(PreviewInfo* view, TagList* tags)
{
    if (view->drawMode != DrawIdle && view->drawMode != DrawDragging)
        return;
    const bool dragging = dragState_ == DragType::Dragged;
    const double brightness = fade_.Brightness(*view, view->currentControl == this || dragging);
    if (dragging && HidesWhileDragging())
        return;
    if (view->painter && handleStyle_ == 0)
        DrawRing(*view, brightness);
    else if (view->painter)
        DrawLever(*view, brightness);
    PreviewControl::GLDrawControls(view, tags);
}

void AngleControl::DrawRing(const PreviewInfo& view, double brightness) const
{
    OverlayPainter& painter = *view.painter;
    const OverlayPoint handle = HandleInView(view);
    painter.SetColor(OverlayColor::Normal, brightness);
    {
        const OverlayPainter::Saved saved(painter);
        painter.SetDashed(true);
        painter.Line(CentreInView(view), handle);
    }
    if (hovered_ || dragState_ != DragType::None)
        painter.SetColor(OverlayColor::Highlight, brightness);
    DrawRingAt(painter, handle, 1.0); // of the same size on every screen: this is meant
    if (dragState_ == DragType::Dragged && view.showGhosts && start_) {
        OverlayPoint ghost;
        view.TransformOut(start_->x, start_->y, ghost.x, ghost.y);
        painter.SetColor(OverlayColor::Ghost);
        DrawRingAt(painter, ghost, 1.0);
    }
}

void AngleControl::DrawLever(const PreviewInfo& view, double brightness) const
{
    OverlayPainter& painter = *view.painter;
    const auto lever = [&painter, &view](OverlayPoint foot, double angle) {
        const OverlayPoint direction = DirectionOf(angle);
        {
            const OverlayPainter::Mark mark(painter, foot, view.controlScale);
            painter.Line({0.0, 0.0}, Along({0.0, 0.0}, direction, leverLength - 3.0));
        }
        DrawRingAt(painter, Along(foot, direction, leverLength * view.controlScale),
                   view.controlScale);
    };
    const bool active = hovered_ || dragState_ != DragType::None;
    painter.SetColor(active ? OverlayColor::Highlight : OverlayColor::Normal, brightness);
    lever(CentreInView(view), angle_);
    {
        // Arrows both ways on the circle of the tip.
        const OverlayPainter::Mark mark(painter, CentreInView(view), view.controlScale);
        for (const double side : {1.0, -1.0}) {
            std::array<OverlayPoint, 5> arc;
            for (std::size_t i = 0; i < arc.size(); ++i)
                arc[i] =
                    Along({}, DirectionOf(angle_ + side * (8.0 + 4.0 * double(i))), leverLength);
            painter.Strip(arc);
            const OverlayPoint outward = DirectionOf(angle_ + side * 24.0);
            painter.Fill({Along({}, outward, leverLength + 3.0),
                          Along({}, DirectionOf(angle_ + side * 32.0), leverLength),
                          Along({}, outward, leverLength - 3.0)});
        }
    }
    if (dragState_ == DragType::Dragged && view.showGhosts && start_) {
        OverlayPoint ghost;
        view.TransformOut(start_->x, start_->y, ghost.x, ghost.y);
        painter.SetColor(OverlayColor::Ghost);
        lever(ghost, startAngle_);
    }
}

} // namespace Marlox
