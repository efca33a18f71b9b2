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

constexpr double hullOpacity = 0.6;
constexpr double handleOpacity = 0.8; // of the lines to handles
constexpr double otherOpacity = 0.55; // of the polygon that is not active
constexpr double otherCasing = 0.6;
constexpr double linkOpacity = 0.5;
constexpr int mostLinks = 24;          // between the polygons, before they are a tangle
constexpr double leastHandle = 4.0;    // mark pixels; a shorter one lies below its point
constexpr double leastStep = 3.0;      // mark pixels between marks that can be told apart
constexpr double numberDistance = 7.0; // of a number's corner from its point, mark pixels
constexpr double hoverScale = 1.5;     // of what the pointer is on

// Shapes of marks, in pixels of the mark.
constexpr std::array<OverlayPoint, 4> smallSquare{{{-2, -2}, {2, -2}, {2, 2}, {-2, 2}}};
constexpr std::array<OverlayPoint, 4> largeSquare{{{-3, -3}, {3, -3}, {3, 3}, {-3, 3}}};
constexpr std::array<OverlayPoint, 16> brackets{{{-7, -4},
                                                 {-7, -7},
                                                 {-7, -7},
                                                 {-4, -7},
                                                 {7, -4},
                                                 {7, -7},
                                                 {7, -7},
                                                 {4, -7},
                                                 {-7, 4},
                                                 {-7, 7},
                                                 {-7, 7},
                                                 {-4, 7},
                                                 {7, 4},
                                                 {7, 7},
                                                 {7, 7},
                                                 {4, 7}}};
constexpr std::array<OverlayPoint, 4> diamond{{{-4, 0}, {0, -4}, {4, 0}, {0, 4}}};
constexpr std::array<OverlayPoint, 8> disc{
    {{2.5, 1}, {1, 2.5}, {-1, 2.5}, {-2.5, 1}, {-2.5, -1}, {-1, -2.5}, {1, -2.5}, {2.5, -1}}};
constexpr std::array<OverlayPoint, 4> cross{{{-5, -5}, {5, 5}, {-5, 5}, {5, -5}}};
constexpr std::array<OverlayPoint, 4> plus{{{-5, 0}, {5, 0}, {0, -5}, {0, 5}}};
constexpr std::array<OverlayPoint, 12> ring{{{7, 0},
                                             {6.06, 3.5},
                                             {3.5, 6.06},
                                             {0, 7},
                                             {-3.5, 6.06},
                                             {-6.06, 3.5},
                                             {-7, 0},
                                             {-6.06, -3.5},
                                             {-3.5, -6.06},
                                             {0, -7},
                                             {3.5, -6.06},
                                             {6.06, -3.5}}};
constexpr std::array<OverlayPoint, 3> triangle{{{-8, -5}, {8, -5}, {0, 9}}};
constexpr std::array<OverlayPoint, 8> pivot{
    {{-7, 0}, {-2, 0}, {2, 0}, {7, 0}, {0, -7}, {0, -2}, {0, 2}, {0, 7}}};
constexpr std::array<OverlayPoint, 3> arrow{{{7, 0}, {-5, 5}, {-5, -5}}};

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
          edits_(control.Mode() != PolyDrawMode::Done), opacity_(isActive_ ? 1.0 : otherOpacity)
    {
    }

    /// Below all marks.
    void DrawLines()
    {
        const ReadLock lock(shape_);
        const bool isSpline = shape_.GetDataType() == MxID(CLSID_DataType_BSplinePolyline);
        painter_.SetCasing(isActive_ ? 1.0 : otherCasing);
        if (settings_.showHull || (isSpline && edits_))
            DrawHull();
        if (settings_.showPolyLine && settings_.drawStyle != PolyDrawStyle::Null)
            DrawCurve();
        if (edits_)
            DrawHandleLines();
        painter_.SetCasing(1.0);
    }
    void DrawMarks()
    {
        const ReadLock lock(shape_);
        if (isActive_) // those of the other one would only lie on these
            DrawNumbers();
        if (edits_)
            DrawKnobs();
        DrawPoints();
        if (!edits_)
            return;
        DrawSingles();
        DrawLocked();
    }

private:
    using Shape = OverlayPainter::Shape;
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

    /// The ends of the handles that show.
    template <class Use>
    void ForHandles(const Use& use) const
    {
        if (!HasHandles(shape_))
            return;
        for (int i = 0; i < shape_.GetCount(); ++i) {
            if (!editor_.ShowsHandles(polygon_, i))
                continue;
            const PolyPoint& point = *shape_.GetPoint(i);
            const OverlayPoint at = At(point.Place());
            for (const ShapePlace place : {point.In(), point.Out()}) {
                const OverlayPoint end = At(place);
                const double least = leastHandle * Scale();
                if (std::abs(end.x - at.x) >= least || std::abs(end.y - at.y) >= least)
                    use(point, at, end); // else below the point's mark
            }
        }
    }

    void DrawHandleLines()
    {
        std::vector<OverlayPoint> lines;
        ForHandles([&](const PolyPoint&, OverlayPoint at, OverlayPoint end) {
            lines.push_back(at);
            lines.push_back(end);
        });
        SetColor(painter_, view_.Info(), settings_.handleColor, opacity_ * handleOpacity);
        painter_.Lines(lines);
    }

    /// Round ones where both ends lie in one line, diamonds where each is free.
    void DrawKnobs()
    {
        std::vector<OverlayPoint> ends;
        std::vector<OverlayPoint> brokenEnds;
        ForHandles([&](const PolyPoint& point, OverlayPoint, OverlayPoint end) {
            (point.Has(PPF_Broken) ? brokenEnds : ends).push_back(end);
        });
        SetColor(painter_, view_.Info(), settings_.handleColor, opacity_);
        painter_.Marks(Shape::Fill, disc, ends, Scale());
        painter_.Marks(Shape::Fill, diamond, brokenEnds, Scale());
    }

    void DrawPoints()
    {
        const double step = leastStep * Scale();
        SparseMarks plain(step);
        SparseMarks selected(step);
        std::vector<OverlayPoint> published;
        std::vector<OverlayPoint> following;
        const SelMask& mask = editor_.Selection(polygon_);
        for (int i = 0; i < shape_.GetCount(); ++i) {
            const PolyPoint& point = shape_.Points()[std::size_t(i)];
            const bool isSelected = mask.GetSetItem(i); // keys change them in Done too
            const OverlayPoint at = At(point.Place());
            if (isSelected)
                selected.Add(at);
            else if (settings_.showKeyPoints && edits_)
                plain.Add(at);
        }
        for (const PointLink& link : shape_.Links()) {
            if (const PolyPoint* point = shape_.GetPoint(shape_.GetIndex(link.point)))
                (link.Follows() ? following : published).push_back(At(point->Place()));
        }
        SetColor(painter_, view_.Info(), settings_.keyPointColor, opacity_);
        painter_.Marks(Shape::Loop, ring, published, Scale());
        painter_.Marks(Shape::Loop, triangle, following, Scale());
        painter_.Marks(Shape::Loop, smallSquare, plain.places, Scale());
        painter_.SetColor(OverlayColor::Highlight, isActive_ ? 1.0 : otherOpacity);
        painter_.Marks(Shape::Fill, largeSquare, selected.places, Scale());
    }

    /// Above what the points show besides, and what the pointer makes grow.
    void DrawLocked()
    {
        std::vector<OverlayPoint> locked;
        for (const PolyPoint& point : shape_.Points()) {
            if (point.Has(PPF_Locked))
                locked.push_back(At(point.Place()));
        }
        MxColor white(255, 255, 255); // which stands out from what it crosses out
        white.alpha = u8(std::lround(255.0 * opacity_));
        painter_.SetColor(white);
        painter_.Marks(Shape::Lines, cross, locked, Scale());
    }

    void DrawMark(Shape form, Points points, ShapePlace at, double scale = 1.0)
    {
        const OverlayPoint places[] = {At(at)};
        painter_.Marks(form, points, places, Scale() * scale);
    }

    /// The point selected last is held by brackets; what the pointer is on grows, and what closes
    /// the shape has a ring.
    void DrawSingles()
    {
        const SelMask& mask = editor_.Selection(polygon_);
        painter_.SetColor(OverlayColor::Highlight);
        if (const PolyPoint* last = mask.SetCount() > 1 ? shape_.GetPoint(mask.Last()) : nullptr)
            DrawMark(Shape::Lines, brackets, last->Place());
        const PolyHit& hovered = editor_.Hovered();
        if (!hovered.Any() || hovered.polygon != polygon_)
            return;
        const PolyPoint* point = shape_.GetPoint(hovered.index);
        if (hovered.kind == PolyHit::Curve) {
            if (control_.Mode() == PolyDrawMode::InsertAndModify)
                DrawMark(Shape::Lines, plus, hovered.place);
        } else if (hovered.IsHandle() && point) {
            DrawMark(Shape::Fill, point->Has(PPF_Broken) ? Points(diamond) : Points(disc),
                     hovered.place, hoverScale);
        } else if (hovered.IsPoint()) {
            const bool closes = control_.Mode() == PolyDrawMode::ClickAppend &&
                                hovered.index == 0 && !shape_.IsClosed() && shape_.GetCount() > 1;
            if (closes)
                DrawMark(Shape::Loop, ring, hovered.place, hoverScale);
            if (!mask.GetSetItem(hovered.index))
                painter_.SetColor(MxColor(255, 255, 255));
            DrawMark(Shape::Fill, largeSquare, hovered.place, hoverScale);
        }
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
        digits.Draw(painter_, view_.Info().Color(OverlayColor::Normal), Scale());
    }

    const PolyLineControl& control_;
    const PolySettings& settings_;
    const PolyEditor& editor_;
    OverlayPainter& painter_;
    const PolyView& view_;
    int polygon_;
    const PolyLine& shape_;
    bool isActive_;
    bool edits_;
    double opacity_;
};

/// From the points that are worked on to those of the other polygon that belong to them.
void DrawLinks(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const PolyEditor& editor = control.Editor();
    if (!editor.IsDouble() || !editor.IsMatched() || control.Mode() == PolyDrawMode::Done)
        return;
    SelMask mask = editor.ActiveSelection();
    if (const PolyHit& hit = editor.Hovered(); hit.IsPoint())
        mask.DoSet(hit.index, SelMask::Select);
    if (mask.SetCount() > mostLinks)
        return;
    std::vector<OverlayPoint> lines;
    for (const int index : mask.Items()) {
        for (const int polygon : {InnerPolygon, OuterPolygon})
            lines.push_back(view.ToView(editor.Shape(polygon)->GetPoint(index)->Place()));
    }
    SetColor(painter, view.Info(), 0, linkOpacity);
    painter.SetCasing(otherCasing);
    painter.Lines(lines);
    painter.SetCasing(1.0);
}

/// What the shape is turned and scaled about, where inputs do so.
void DrawPivot(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const bool turns = control.BoundInput(PLCID_Center) &&
                       (control.BoundInput(PLCID_Angle) || control.BoundInput(PLCID_Size));
    if (!turns || !control.Editor().HasPoints(InnerPolygon) || control.Mode() == PolyDrawMode::Done)
        return;
    const OverlayPoint at[] = {view.ToView({0.5, 0.5})};
    painter.SetColor(OverlayColor::Normal);
    painter.Marks(OverlayPainter::Shape::Lines, pivot, at, view.Info().controlScale);
}

/// On a path the place that is reached at the current time: an arrowhead that points ahead.
void DrawReached(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const PolyLine* shape = control.Editor().Shape(InnerPolygon);
    const Input* input = control.BoundInput(PLCID_CurrentTimePoint);
    if (!input)
        input = control.BoundInput(PLCID_Displacement);
    ShapePlace place;
    ShapePlace ahead;
    if (!input || !shape ||
        !shape->GetPointOnPath(input->GetNumber(control.CurrentTime()), view.HeightsPerWidth(),
                               place, &ahead))
        return;
    const OverlayPoint at = view.ToView(place);
    const OverlayPoint further = view.ToView(place + ahead);
    const double angle = std::atan2(further.y - at.y, further.x - at.x);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    std::array<OverlayPoint, 3> turned = arrow;
    for (OverlayPoint& point : turned)
        point = {point.x * cosine - point.y * sine, point.x * sine + point.y * cosine};
    painter.SetColor(OverlayColor::PathKey);
    painter.Marks(OverlayPainter::Shape::Fill, turned, {&at, 1}, view.Info().controlScale);
}

} // namespace

void DrawPolyLines(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const OverlayPainter::Saved saved(painter);
    const PolyEditor& editor = control.Editor();
    std::vector<PolygonDrawing> polygons; // the active one last, above the other
    for (const int polygon : {OtherPolygon(editor.ActivePolygon()), editor.ActivePolygon()}) {
        if (editor.IsShown(polygon))
            polygons.emplace_back(control, painter, view, polygon);
    }
    DrawSkins(control, painter, view);
    painter.Flush();
    for (PolygonDrawing& polygon : polygons)
        polygon.DrawLines();
    DrawLinks(control, painter, view);
    DrawNextSegment(control, painter, view);
    DrawShapeBoxFrame(control, painter, view);
    DrawTrackPoints(control, painter, view);
    painter.Flush();
    DrawPivot(control, painter, view);
    DrawReached(control, painter, view);
    DrawShapeBoxKnobs(control, painter, view);
    for (PolygonDrawing& polygon : polygons)
        polygon.DrawMarks();
}

} // namespace Marlox
