// Where the handle of an angle lies, and what it looks like.

#include "controls/viewer/AngleControl.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr double leverLength = 50.0; // pixels of the mark

/// A radius of 3, anticlockwise from the bottom.
constexpr OverlayPoint ring[] = {{0.0F, -3.0F}, {1.5F, -2.598F},  {2.598F, -1.5F},
                                 {3.0F, 0.0F},  {2.598F, 1.5F},   {1.5F, 2.598F},
                                 {0.0F, 3.0F},  {-1.5F, 2.598F},  {-2.598F, 1.5F},
                                 {-3.0F, 0.0F}, {-2.598F, -1.5F}, {-1.5F, -2.598F}};

void DrawRingAt(OverlayPainter& painter, OverlayPoint at, double scale)
{
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
    DrawRingAt(painter, handle, view.pixelRatio); // not with the control's scale: this is meant
    if (dragState_ == DragType::Dragged && view.showGhosts && start_) {
        OverlayPoint ghost;
        view.TransformOut(start_->x, start_->y, ghost.x, ghost.y);
        painter.SetColor(OverlayColor::Ghost);
        DrawRingAt(painter, ghost, view.pixelRatio);
    }
}

void AngleControl::DrawLever(const PreviewInfo& view, double brightness) const
{
    OverlayPainter& painter = *view.painter;
    const double scale = view.controlScale;
    const auto drawLever = [&painter, scale](OverlayPoint foot, double angle) {
        const OverlayPoint direction = DirectionOf(angle);
        painter.Line(foot, Along(foot, direction, (leverLength - 3.0) * scale));
        DrawRingAt(painter, Along(foot, direction, leverLength * scale), scale);
    };
    const OverlayPoint centre = CentreInView(view);
    const bool active = hovered_ || dragState_ != DragType::None;
    painter.SetColor(active ? OverlayColor::Highlight : OverlayColor::Normal, brightness);
    drawLever(centre, angle_);
    for (const double side : {1.0, -1.0}) { // arrows both ways on the circle of the tip
        const auto place = [this, centre, side, scale](double ahead, double outside) {
            return Along(centre, DirectionOf(angle_ + side * ahead),
                         (leverLength + outside) * scale);
        };
        painter.Strip({place(8.0, 0.0), place(12.0, 0.0), place(16.0, 0.0), place(20.0, 0.0),
                       place(24.0, 0.0)});
        painter.Fill({place(24.0, 3.0), place(32.0, 0.0), place(24.0, -3.0)});
    }
    if (dragState_ == DragType::Dragged && view.showGhosts && start_) {
        OverlayPoint ghost;
        view.TransformOut(start_->x, start_->y, ghost.x, ghost.y);
        painter.SetColor(OverlayColor::Ghost);
        drawLever(ghost, startAngle_);
    }
}

} // namespace Marlox
