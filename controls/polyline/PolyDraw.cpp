#include "controls/polyline/PolyDraw.h"

#include "controls/polyline/PolyDigits.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapeDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Marlox {

namespace {

constexpr double restOpacity =
    0.75; // of the active polygon's points, so that selected ones stand out
constexpr double hullOpacity = 0.6;
constexpr double otherOpacity = 0.5;   // of the polygon that is not active
constexpr double leastHandle = 4.0;    // mark pixels; a shorter one lies below its point
constexpr double leastStep = 3.0;      // mark pixels between marks that can be told apart
constexpr double numberDistance = 7.0; // of a number's corner from its point, mark pixels

// Shapes of marks, in pixels of the mark.
constexpr std::array<OverlayPoint, 4> smallSquare{{{-2, -2}, {2, -2}, {2, 2}, {-2, 2}}};
constexpr std::array<OverlayPoint, 4> largeSquare{{{-3, -3}, {3, -3}, {3, 3}, {-3, 3}}};
constexpr std::array<OverlayPoint, 4> frame{{{-6, -6}, {6, -6}, {6, 6}, {-6, 6}}};
constexpr std::array<OverlayPoint, 4> diamond{{{-2, 0}, {0, -2}, {2, 0}, {0, 2}}};
constexpr std::array<OverlayPoint, 4> cross{{{-5, -5}, {5, 5}, {-5, 5}, {5, -5}}};
constexpr std::array<OverlayPoint, 4> plus{{{-4, 0}, {4, 0}, {0, -4}, {0, 4}}};
constexpr std::array<OverlayPoint, 8> ring{
    {{6, 2}, {2, 6}, {-2, 6}, {-6, 2}, {-6, -2}, {-2, -6}, {2, -6}, {6, -2}}};
constexpr std::array<OverlayPoint, 3> triangle{{{-7, -5}, {7, -5}, {0, 8}}};

using Points = std::span<const OverlayPoint>;

MxColor ColorOf(u32 rgb)
{
    return MxColor(u8(rgb >> 16), u8(rgb >> 8), u8(rgb));
}

/// A colour that was chosen, or the view's; one that lets the picture through for what stands back.
void SetColor(OverlayPainter& painter, const PreviewInfo& view, u32 rgb, double opacity)
{
    if (rgb == 0 && opacity >= 1.0) {
        painter.SetColor(OverlayColor::Normal);
        return;
    }
    MxColor color = rgb == 0 ? view.Color(OverlayColor::Normal) : ColorOf(rgb);
    color.alpha = u8(std::lround(255.0 * opacity));
    painter.SetColor(color);
}

/// Marks along a shape, without those that would only cover the one before.
struct SparseMarks {
    explicit SparseMarks(double least) : step(least) {}
    void Add(OverlayPoint at)
    {
        if (!places.empty() && std::abs(at.x - places.back().x) < step &&
            std::abs(at.y - places.back().y) < step)
            return;
        places.push_back(at);
    }

    double step; // view pixels
    std::vector<OverlayPoint> places;
};

/// One polygon, with all that belongs to it.
class PolygonDrawing {
public:
    PolygonDrawing(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view,
                   int polygon)
        : control_(control), settings_(control.Settings()), editor_(control.Editor()),
          painter_(painter), view_(view), polygon_(polygon), shape_(*editor_.Shape(polygon)),
          isActive_(polygon == editor_.ActivePolygon() || !editor_.IsDouble()),
          opacity_(isActive_ ? 1.0 : otherOpacity),
          isSpline_(shape_.GetDataType() == MxID(CLSID_DataType_BSplinePolyline))
    {
    }

    void Draw()
    {
        const ReadLock lock(shape_);
        const bool edits = control_.Mode() != PolyDrawMode::Done;
        if (settings_.showHull || (isSpline_ && edits))
            DrawHull();
        if (settings_.showPolyLine && settings_.drawStyle != PolyDrawStyle::Null)
            DrawCurve();
        if (edits)
            DrawHandles();
        DrawPoints(edits);
        DrawNumbers();
    }

private:
    OverlayPoint At(ShapePlace place) const { return view_.ToView(place); }
    double Scale() const { return view_.Info().controlScale; }

    void DrawHull()
    {
        std::vector<OverlayPoint> places;
        for (const PolyPoint& point : shape_.Points())
            places.push_back(At(point.Place()));
        SetColor(painter_, view_.Info(), 0, opacity_ * hullOpacity);
        painter_.SetDashed(true);
        if (shape_.IsClosed())
            painter_.Loop(places);
        else
            painter_.Strip(places);
        painter_.SetDashed(false);
    }

    void DrawCurve()
    {
        SetColor(painter_, view_.Info(), settings_.splineColor, opacity_);
        painter_.SetDashed(settings_.drawStyle == PolyDrawStyle::Dash);
        editor_.CurveOf(polygon_, view_).Draw(painter_);
        painter_.SetDashed(false);
    }

    void DrawHandles()
    {
        if (!HasHandles(shape_))
            return;
        std::vector<OverlayPoint> lines;
        std::vector<OverlayPoint> ends;
        std::vector<OverlayPoint> brokenEnds;
        for (int i = 0; i < shape_.GetCount(); ++i) {
            if (!editor_.ShowsHandles(polygon_, i))
                continue;
            const PolyPoint& point = *shape_.GetPoint(i);
            const OverlayPoint at = At(point.Place());
            for (const ShapePlace place : {point.In(), point.Out()}) {
                const OverlayPoint end = At(place);
                if (std::abs(end.x - at.x) < leastHandle * Scale() &&
                    std::abs(end.y - at.y) < leastHandle * Scale())
                    continue; // below the point's mark
                lines.push_back(at);
                lines.push_back(end);
                (point.Has(PPF_Broken) ? brokenEnds : ends).push_back(end);
            }
        }
        SetColor(painter_, view_.Info(), settings_.handleColor, opacity_ * restOpacity);
        painter_.Lines(lines);
        painter_.Marks(OverlayPainter::Shape::Fill, diamond, ends, Scale());
        painter_.Marks(OverlayPainter::Shape::Loop, diamond, brokenEnds, Scale());
        const PolyHit& hovered = editor_.Hovered();
        if (hovered.IsHandle() && hovered.polygon == polygon_) {
            painter_.SetColor(OverlayColor::Highlight);
            const OverlayPoint at[] = {At(hovered.place)};
            painter_.Marks(OverlayPainter::Shape::Fill, diamond, at, Scale() * 1.5);
        }
    }

    void DrawPoints(bool edits)
    {
        const double step = leastStep * Scale();
        SparseMarks plain(step);
        SparseMarks selected(step);
        std::vector<OverlayPoint> locked;
        std::vector<OverlayPoint> published;
        std::vector<OverlayPoint> following;
        const SelMask& mask = editor_.Selection(polygon_);
        for (int i = 0; i < shape_.GetCount(); ++i) {
            const PolyPoint& point = shape_.Points()[std::size_t(i)];
            const bool isSelected = edits && mask.GetSetItem(i);
            const OverlayPoint at = At(point.Place());
            if (isSelected)
                selected.Add(at);
            else if (settings_.showKeyPoints && edits)
                plain.Add(at);
            if (point.Has(PPF_Locked) && edits)
                locked.push_back(at);
        }
        for (const PointLink& link : shape_.Links()) {
            if (const PolyPoint* point = shape_.GetPoint(shape_.GetIndex(link.point)))
                (link.kind == PointLink::Kind::Published ? published : following)
                    .push_back(At(point->Place()));
        }
        using Shape = OverlayPainter::Shape;
        SetColor(painter_, view_.Info(), settings_.keyPointColor, opacity_ * restOpacity);
        painter_.Marks(Shape::Loop, smallSquare, plain.places, Scale());
        painter_.Marks(Shape::Lines, cross, locked, Scale());
        painter_.Marks(Shape::Loop, ring, published, Scale());
        painter_.Marks(Shape::Loop, triangle, following, Scale());
        painter_.SetColor(OverlayColor::Highlight, isActive_ ? 1.0 : otherOpacity);
        painter_.Marks(Shape::Fill, largeSquare, selected.places, Scale());
        DrawSingles(edits);
    }

    /// The point selected last, the one that closes the shape, what the pointer is on.
    void DrawSingles(bool edits)
    {
        using Shape = OverlayPainter::Shape;
        const auto mark = [this](Shape form, std::span<const OverlayPoint> points, ShapePlace at,
                                 double scale) {
            const OverlayPoint places[] = {At(at)};
            painter_.Marks(form, points, places, Scale() * scale);
        };
        if (!edits)
            return;
        const SelMask& mask = editor_.Selection(polygon_);
        if (const PolyPoint* last = mask.SetCount() > 1 ? shape_.GetPoint(mask.Last()) : nullptr)
            mark(Shape::Loop, frame, last->Place(), 1.0);
        const PolyHit& hovered = editor_.Hovered();
        if (!hovered.Any() || hovered.polygon != polygon_)
            return;
        painter_.SetColor(OverlayColor::Highlight);
        const bool closes = control_.Mode() == PolyDrawMode::ClickAppend && hovered.index == 0 &&
                            !shape_.IsClosed() && shape_.GetCount() > 1;
        if (hovered.IsPoint())
            mark(Shape::Loop, closes ? Points(ring) : Points(largeSquare), hovered.place,
                 closes ? 1.0 : 1.4);
        else if (hovered.kind == PolyHit::Curve && control_.Mode() == PolyDrawMode::InsertAndModify)
            mark(Shape::Lines, plus, hovered.place, 1.0);
    }

    void DrawNumbers()
    {
        if (!settings_.showNumbers && !settings_.showTaggedPointIDs)
            return;
        PolyDigits digits;
        const double off = numberDistance * Scale();
        for (int i = 0; i < shape_.GetCount(); ++i) {
            const PolyPoint& point = shape_.Points()[std::size_t(i)];
            const OverlayPoint at = At(point.Place());
            const OverlayPoint corner{at.x + off, at.y + off};
            if (settings_.showTaggedPointIDs && point.Has(PPF_Tagged))
                digits.Add(corner, point.id, Scale());
            else if (settings_.showNumbers)
                digits.Add(corner, u32(i), Scale());
        }
        SetColor(painter_, view_.Info(), 0, opacity_);
        digits.Draw(painter_, Scale());
    }

    const PolyLineControl& control_;
    const PolySettings& settings_;
    const PolyEditor& editor_;
    OverlayPainter& painter_;
    const PolyView& view_;
    int polygon_;
    const PolyLine& shape_;
    bool isActive_;
    double opacity_;
    bool isSpline_;
};

} // namespace

void DrawPolyLines(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const OverlayPainter::Saved saved(painter);
    DrawSkins(control, painter, view);
    const PolyEditor& editor = control.Editor();
    for (const int polygon : {OtherPolygon(editor.ActivePolygon()), editor.ActivePolygon()}) {
        if (editor.IsShown(polygon))
            PolygonDrawing(control, painter, view, polygon).Draw();
    }
    DrawShapeBox(control, painter, view);
    DrawTrackPoints(control, painter, view);
}

} // namespace Marlox
