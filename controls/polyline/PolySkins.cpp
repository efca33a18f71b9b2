// Onion skins: the shape at other times, before and after in two tints.

#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyGesture.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeDrawing.h"
#include "system/viewer/OverlayCommands.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Marlox {

namespace {

constexpr int nearestAlpha = 150; // of the skin next to the current time
constexpr int furthestAlpha = 60;
constexpr double skinCasing = 0.4;
constexpr std::array<OverlayPoint, 4> dot{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};

OnionSkinTimes TimesOf(const PolyLineControl& control)
{
    const PolySettings& settings = control.Settings();
    const MarloxDoc* document = control.GetDoc();
    const Input* input = control.ShapeInput(control.Editor().ActivePolygon());
    if (!settings.onionSkin || settings.currentTimeOnly || !document || !input ||
        !input->IsAnimated())
        return {};
    std::vector<double> keys;
    for (const auto& [time, key] : input->GetAnimation().Keys())
        keys.push_back(time);
    const double now = control.CurrentTime();
    return OnionSkinsAt(settings.onion, now, settings.onionAnchor.value_or(now), keys,
                        document->FirstFrame(), document->LastFrame());
}

PolyView ViewAt(const PolyLineControl& control, const PolyView& view, double time)
{
    return PolyView(view.Info(), control.PlacementAt(time));
}

void DrawSkin(const PolyLineControl& control, OverlayPainter& painter, const PolyView& now,
              double time)
{
    const OnionSkinSettings& settings = control.Settings().onion;
    const PolyView view = ViewAt(control, now, time);
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const Ref<PolyLine> shape =
            control.Editor().IsShown(polygon) ? control.Editor().ShapeAt(polygon, time) : nullptr;
        if (!shape)
            continue;
        std::vector<OverlayPoint> places;
        for (const PolyPoint& point : shape->Points())
            places.push_back(view.ToView(point.Place()));
        if (settings.Has(OnionSkinSettings::PointPlot)) {
            painter.Marks(OverlayPainter::Shape::Fill, dot, places, view.Info().controlScale);
        } else {
            ViewStrips strips;
            const ShapePlacement& placement = view.Placement();
            MakeThinCurve(placement.IsIdentity() ? *shape : *PlacedShape(*shape, placement),
                          CurveView::Of(view.Info()), strips);
            strips.Draw(painter);
        }
        if (!settings.Has(OnionSkinSettings::ShowHull))
            continue;
        painter.SetDashed(true);
        if (shape->IsClosed())
            painter.Loop(places);
        else
            painter.Strip(places);
        painter.SetDashed(false);
    }
}

void DrawSide(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view,
              const std::vector<double>& times, MxColor tint)
{
    const auto count = int(times.size());
    for (int i = count - 1; i >= 0; --i) { // the nearest one last, above the others
        const double away = count > 1 ? double(i) / (count - 1) : 0.0;
        tint.alpha = u8(std::lround(std::lerp(nearestAlpha, furthestAlpha, away)));
        painter.SetColor(tint);
        DrawSkin(control, painter, view, times[std::size_t(i)]);
    }
}

} // namespace

void DrawSkins(const PolyLineControl& control, OverlayPainter& painter, const PolyView& view)
{
    const OnionSkinTimes times = TimesOf(control);
    if (times.before.empty() && times.after.empty())
        return;
    const u32 chosen = control.Settings().prevSkinColor;
    const MxColor before =
        chosen ? MxColor(int(chosen >> 16 & 0xff), int(chosen >> 8 & 0xff), int(chosen & 0xff))
               : PrevSkinColor();
    painter.SetCasing(skinCasing);
    DrawSide(control, painter, view, times.before, before);
    DrawSide(control, painter, view, times.after, NextSkinColor());
    painter.SetCasing(1.0);
    if (control.HoveredTime() > TimeNone) {
        painter.SetColor(OverlayColor::Highlight);
        DrawSkin(control, painter, view, control.HoveredTime());
    }
}

double SkinTimeAt(const PolyLineControl& control, const PolyView& view)
{
    if (!control.Settings().onion.clickSetsTime)
        return TimeNone;
    const OnionSkinTimes times = TimesOf(control);
    double nearest = TimeNone;
    double distance = view.Tolerance();
    const auto test = [&](double time) {
        const Ref<PolyLine> shape =
            control.Editor().ShapeAt(control.Editor().ActivePolygon(), time);
        if (!shape)
            return;
        const PolyView then = ViewAt(control, view, time);
        const double size = std::abs(then.Placement().size);
        const CurveFoot foot =
            DistancePointToPolygon(then.Cursor(), *shape, shape->IsClosed(),
                                   {then.PixelSize().x * size, then.PixelSize().y * size});
        if (foot.segment < 0 || !(foot.distance < distance))
            return;
        distance = foot.distance;
        nearest = time;
    };
    std::for_each(times.before.begin(), times.before.end(), test);
    std::for_each(times.after.begin(), times.after.end(), test);
    return nearest;
}

bool ClickSkin(PolyLineControl& control, const PolyPointer& pointer)
{
    const PolyHit hit = control.Editor().HitAt(pointer.view);
    const double time = hit.Any() ? TimeNone : SkinTimeAt(control, pointer.view);
    MarloxDoc* const document = control.GetDoc();
    if (time == TimeNone || !document)
        return false;
    document->SetCurrentTime(time);
    return true;
}

} // namespace Marlox
