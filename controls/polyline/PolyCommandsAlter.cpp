// Points in other places, more of them, or fewer.

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "controls/polyline/PolyNumbers.h"
#include "controls/polyline/PolyValuesDlg.h"
#include "system/controls/HostDialogs.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

using Values = PolyValuesDlg::Values;
using Shapes = std::span<const Ref<PolyLine>>;
using Scope = PolyEditor::Scope;

constexpr double percent = 100.0;

PolyValueField SliderField(const char* name, const char* label, const char* unit, const char* help,
                           double value, double minimum, double end)
{
    PolyValueField field{name, QString::fromLatin1(label), QString::fromLatin1(unit),
                         QString::fromLatin1(help)};
    field.kind = PolyValueField::Slider;
    field.value = value;
    field.minimum = minimum;
    field.maximum = field.sliderEnd = end;
    return field;
}

void Tell(const QString& text)
{
    HostDialogs::Get().Message(HostDialogs::Kind::Warning, text);
}

bool IsAnyMade(const std::vector<ShapeList>& made)
{
    return std::any_of(made.begin(), made.end(),
                       [](const ShapeList& shapes) { return !shapes.empty(); });
}

ShapeList Copies(Shapes shapes)
{
    ShapeList copies;
    for (const Ref<PolyLine>& shape : shapes)
        copies.push_back(shape->CopyShape());
    return copies;
}

// Numbers of points -------------------------------------------------------------------------------

std::vector<ShapeList> Divided(const std::vector<PolygonKeys>& all, int parts, ShapePlace pixels)
{
    return OperateOn(all, [=](Shapes shapes, const SelMask& mask) {
        return Subdivide(shapes, mask, parts - 1, pixels);
    });
}

/// Into how many parts each segment is to be divided; nothing: cancelled.
std::optional<int> AskParts()
{
    HostDialogs::TextRequest request;
    request.title = QStringLiteral("Subdivide");
    request.label = QStringLiteral("Please choose a number higher than 1:");
    request.preset = QStringLiteral("2");
    for (;;) {
        const std::optional<QString> text = HostDialogs::Get().AskText(request);
        if (!text)
            return {};
        if (const int parts = LeadingNumber(*text); parts > 1)
            return parts;
        request.preset = *text;
    }
}

std::vector<ShapeList> Reduced(const std::vector<PolygonKeys>& all, double error, ShapePlace pixels)
{
    return OperateOn(all, [=](Shapes shapes, const SelMask& mask) {
        return ReducePoints(shapes, mask, {error, pixels});
    });
}

QString PointsLeft(const std::vector<PolygonKeys>& all, const std::vector<ShapeList>& made)
{
    int before = 0;
    int after = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        before += all[i].shapes.front()->GetCount();
        after += (made[i].empty() ? all[i].shapes : made[i]).front()->GetCount();
    }
    return QStringLiteral("%1 of %2 points are left").arg(after).arg(before);
}

// Motion ------------------------------------------------------------------------------------------

/// Times for further keys, at whole frames: an eased way needs about eight steps, where there are
/// not as many keys already.
std::vector<double> TimesToEase(const std::vector<double>& times)
{
    constexpr int steps = 8;
    std::vector<double> more;
    const double step = (times.back() - times.front()) / steps;
    for (int i = 1; i < steps; ++i) {
        const double time = std::round(times.front() + step * i);
        const auto isNear = [&](double other) { return std::abs(other - time) < step / 2.0; };
        const bool within = time > times.front() && time < times.back();
        const bool taken = std::any_of(times.begin(), times.end(), isNear) ||
                           (!more.empty() && more.back() == time);
        if (within && !taken)
            more.push_back(time);
    }
    return more;
}

/// Polygons that move, with the keys that easing needs.
std::vector<PolygonKeys> TakeMotion(const PolyLineControl& control)
{
    std::vector<PolygonKeys> all = TakeKeys(control, TakePoints::Selected);
    std::erase_if(
        all, [](const PolygonKeys& keys) { return !keys.IsAnimated() || keys.times.size() < 2; });
    return all;
}

/// `keys` get further keys.
std::vector<ShapeList> Eased(std::vector<PolygonKeys>& all, const Values& percents)
{
    std::vector<ShapeList> made;
    const bool eases = percents[0] != 0.0 || percents[1] != 0.0;
    for (PolygonKeys& keys : all) {
        if (eases)
            AddKeys(keys, TimesToEase(keys.times));
        made.push_back(eases ? Copies(keys.shapes) : ShapeList());
        EaseAnimation(made.back(), keys.times, keys.mask, percents[0] / percent,
                      percents[1] / percent);
    }
    return made;
}

QString KeysMade(const std::vector<PolygonKeys>& before, const std::vector<PolygonKeys>& after)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        count = std::max(count, after[i].times.size() - before[i].times.size());
    return count == 0   ? QString()
           : count == 1 ? QStringLiteral("1 key is added on the way")
                        : QStringLiteral("%1 keys are added on the way").arg(count);
}

// Places ------------------------------------------------------------------------------------------

void SmoothBy(PolyLineControl& control, double strength)
{
    const double tall = HeightsPerWidth(control);
    ChangePoints(
        control, Scope::Frames, "Smooth points",
        [=](PolyLine& shape, const SelMask& mask) { SmoothPoints(shape, mask, strength, tall); });
}

} // namespace

void SubdivideShape(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const ShapePlace pixels = ShapePixels(control);
    const auto divided = [&](const std::vector<PolygonKeys>& all, int parts) {
        return Divided(all, parts, pixels);
    };
    if (!IsAnyMade(divided(TakeKeys(control, TakePoints::Selected), 2)))
        return Tell(QStringLiteral("There is no segment between selected points."));
    const std::optional<int> parts = AskParts();
    if (!parts)
        return;
    const std::vector<PolygonKeys> all = TakeKeys(control, TakePoints::Selected);
    if (all.empty()) // the tool, or what it had, went while the dialog was open
        return;
    const std::vector<ShapeList> made = divided(all, *parts);
    if (IsAnyMade(made))
        WriteKeys(control, "Subdivide", all, made);
    else
        Tell(QStringLiteral("A shape can have %1 points at most.").arg(PolyLine::maxPoints));
}

void ReducePoints(PolyLineControl& control)
{
    constexpr double usual = 1.0; // pixels
    constexpr double most = 10.0; // of the slider
    constexpr double least = 0.01;
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const ShapePlace pixels = ShapePixels(control);
    double error = 0.0;
    {
        PolyPreview preview(control);
        const std::vector<PolygonKeys> all = TakeKeys(control, TakePoints::Selected);
        if (all.empty())
            return;
        PolyValueField field = SliderField(
            "Error", "Error:", "pixels",
            "How far the curve may come to lie from where it was, in pixels of the image.", usual,
            least, most);
        field.maximum = 10000.0;
        field.step = 0.1;
        PolyValuesDlg dialog(QStringLiteral("Reduce Points"), {field}, [&](const Values& now) {
            const auto made = Reduced(all, now[0], pixels);
            preview.Show(all, made);
            return PointsLeft(all, made);
        });
        if (dialog.exec() != QDialog::Accepted)
            return;
        error = dialog.GetValues()[0];
    }
    const std::vector<PolygonKeys> all = TakeKeys(control, TakePoints::Selected);
    WriteKeys(control, "Reduce points", all, Reduced(all, error, pixels));
}

void SmoothPointsDefault(PolyLineControl& control)
{
    SmoothBy(control, defaultSmoothing);
}

void SmoothPointsDialog(PolyLineControl& control)
{
    const auto alive = Ref<PolyLineControl>::Share(&control);
    const PolyEditor& editor = control.Editor();
    const double tall = HeightsPerWidth(control);
    double strength = 0.0;
    {
        PolyPreview preview(control);
        std::array<Ref<PolyLine>, PolygonCount> before;
        PolyEditor::Masks masks;
        for (int polygon = 0; polygon < PolygonCount; ++polygon) {
            if (!editor.HasPoints(polygon))
                continue;
            before[std::size_t(polygon)] = editor.Shape(polygon)->CopyShape();
            masks[std::size_t(polygon)] = editor.CommandMask(polygon);
        }
        const auto show = [&](const Values& now) {
            int count = 0;
            for (int polygon = 0; polygon < PolygonCount; ++polygon) {
                const SelMask& mask = masks[std::size_t(polygon)];
                if (!mask.IsAnySet())
                    continue;
                const Ref<PolyLine> shape = before[std::size_t(polygon)]->CopyShape();
                SmoothPoints(*shape, mask, now[0] / percent, tall);
                preview.Show(polygon, shape);
                count += mask.SetCount();
            }
            return count == 1 ? QStringLiteral("1 point is smoothed")
                              : QStringLiteral("%1 points are smoothed").arg(count);
        };
        PolyValuesDlg dialog(
            QStringLiteral("Smooth Points"),
            {SliderField("Strength", "Strength:", "%",
                         "How far points go towards the middle of their neighbours.",
                         defaultSmoothing * percent, 0.0, percent)},
            show);
        if (dialog.exec() != QDialog::Accepted)
            return;
        strength = dialog.GetValues()[0] / percent;
    }
    SmoothBy(control, strength);
}

void AveragePoints(PolyLineControl& control)
{
    ChangePoints(control, Scope::Frames, "Average points",
                 [](PolyLine& shape, const SelMask& mask) { AveragePoints(shape, mask); });
}

void SmoothAnimation(PolyLineControl& control)
{
    const std::vector<PolygonKeys> all = TakeMotion(control);
    std::vector<ShapeList> made;
    for (const PolygonKeys& keys : all) {
        made.push_back(Copies(keys.shapes));
        SmoothAnimation(made.back(), keys.times, keys.mask, defaultSmoothing);
    }
    WriteKeys(control, "Smooth animation", all, made);
}

void EaseInOut(PolyLineControl& control)
{
    constexpr double usual = 50.0; // percent
    const auto alive = Ref<PolyLineControl>::Share(&control);
    Values percents;
    {
        PolyPreview preview(control);
        const std::vector<PolygonKeys> before = TakeMotion(control);
        if (before.empty())
            return Tell(QStringLiteral("Only points with at least two keys can be eased."));
        const auto show = [&](const Values& now) {
            std::vector<PolygonKeys> all = before;
            preview.Show(all, Eased(all, now));
            return KeysMade(before, all);
        };
        PolyValuesDlg dialog(
            QStringLiteral("Ease In / Out"),
            {SliderField("In", "Ease In:", "%", "How slowly the points leave their first key.",
                         usual, 0.0, percent),
             SliderField("Out", "Ease Out:", "%", "How slowly the points reach their last key.",
                         usual, 0.0, percent)},
            show);
        if (dialog.exec() != QDialog::Accepted)
            return;
        percents = dialog.GetValues();
    }
    std::vector<PolygonKeys> all = TakeMotion(control);
    const std::vector<ShapeList> made = Eased(all, percents);
    WriteKeys(control, "Ease Control Points", all, made);
}

} // namespace Marlox
