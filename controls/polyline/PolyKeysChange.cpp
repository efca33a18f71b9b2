#include "controls/polyline/PolyKeysChange.h"

#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/ShapePublish.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

bool ChangePoints(PolyLineControl& control, PolyEditor::Scope scope, const char* text,
                  const std::function<void(PolyLine& shape, const SelMask& mask)>& change)
{
    PolyEditor& editor = control.Editor();
    if (!control.CanEdit())
        return false;
    const PolyNest nest(control, text);
    PolyEditor::Masks masks;
    for (int polygon = 0; polygon < PolygonCount; ++polygon)
        masks[std::size_t(polygon)] = editor.CommandMask(polygon);
    bool changed = false;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const SelMask& mask = masks[std::size_t(polygon)];
        if (mask.IsAnySet())
            changed |= editor.Change(polygon, scope, [&](PolyLine& shape) { change(shape, mask); });
    }
    return changed;
}

namespace {

/// Without the flag a corner is a point whose handles have no length, or whose tension is full.
void SetFlags(PolyLine& shape, const std::vector<u32>& flags)
{
    for (int i = 0; i < shape.GetCount(); ++i) {
        PolyPoint& point = *shape.GetPoint(i);
        if (point.Has(PPF_Linear) && !(flags[std::size_t(i)] & PPF_Linear)) {
            point.inX = point.inY = point.outX = point.outY = 0.0;
            point.tension = HasHandles(shape) ? point.tension : 1.0;
        }
        point.flags = flags[std::size_t(i)];
    }
}

} // namespace

void UniteFlags(Input::State& state)
{
    std::vector<std::pair<double, const PolyLine*>> shapes;
    for (const auto& [time, key] : state.animation.Keys())
        shapes.emplace_back(time, dynamic_cast<const PolyLine*>(key.value.Get()));
    std::vector<u32> flags;
    bool isOne = true;
    for (const auto& [time, shape] : shapes) {
        if (!shape || (!flags.empty() && shape->Points().size() != flags.size()))
            return;
        const bool isFirst = flags.empty();
        flags.resize(shape->Points().size());
        for (std::size_t i = 0; i < flags.size(); ++i) {
            const u32 own = shape->Points()[i].flags;
            isOne = isOne && (isFirst || own == flags[i]);
            flags[i] =
                isFirst ? own : (flags[i] & own & PPF_Linear) | ((flags[i] | own) & ~PPF_Linear);
        }
    }
    for (const auto& [time, shape] : shapes) {
        if (isOne)
            return;
        const Ref<PolyLine> copy = shape->CopyShape();
        SetFlags(*copy, flags);
        state.animation.SetKey(time, copy);
    }
}

namespace {

bool AreBothMatched(const PolyEditor& editor)
{
    return editor.IsMatched() &&
           editor.Shape(InnerPolygon)->IsClosed() == editor.Shape(OuterPolygon)->IsClosed();
}

SelMask MaskOf(const PolyEditor& editor, int polygon, TakePoints which)
{
    if (which == TakePoints::All)
        return SelMask(editor.Shape(polygon)->GetCount(), true);
    SelMask mask = editor.CommandMask(polygon);
    if (AreBothMatched(editor)) {
        for (const int index : editor.CommandMask(OtherPolygon(polygon)).Items())
            mask.DoSet(index, SelMask::Select);
    }
    return mask;
}

void TakeShape(const Input& input, const Ref<Parameter>& value, double time, PolygonKeys& keys)
{
    const auto* shape = dynamic_cast<const PolyLine*>(value.Get());
    if (!shape)
        return;
    const Ref<PolyLine> copy = shape->CopyShape();
    PlaceLinkedPoints(input, time, *copy);
    keys.times.push_back(time);
    keys.shapes.push_back(copy);
}

Input::State StateWith(const PolygonKeys& keys, const ShapeList& made)
{
    Input::State state = keys.state;
    if (!keys.IsAnimated())
        state.value = made.front();
    for (std::size_t i = 0; keys.IsAnimated() && i < keys.times.size(); ++i)
        state.animation.SetKey(keys.times[i], made[i]);
    return state;
}

bool Fits(const PolygonKeys& keys, const ShapeList& made)
{
    return !made.empty() && made.size() == keys.times.size();
}

/// Whether an operation can take the shapes of both together.
bool AreOne(const std::vector<PolygonKeys>& all)
{
    if (all.size() != 2 || all[0].shapes.empty() || all[1].shapes.empty())
        return false;
    const PolyLine& a = *all[0].shapes.front();
    const PolyLine& b = *all[1].shapes.front();
    return a.GetDataType() == b.GetDataType() && a.GetCount() == b.GetCount() &&
           a.IsClosed() == b.IsClosed() && all[0].mask.Items() == all[1].mask.Items();
}

} // namespace

std::vector<PolygonKeys> TakeKeys(const PolyLineControl& control, TakePoints which)
{
    const PolyEditor& editor = control.Editor();
    std::vector<PolygonKeys> all;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (!editor.HasPoints(polygon) || !control.IsShapeFree(polygon))
            continue;
        PolygonKeys keys;
        keys.polygon = polygon;
        keys.mask = MaskOf(editor, polygon, which);
        if (!keys.mask.IsAnySet())
            continue;
        const Input& input = *editor.InputOf(polygon);
        keys.state = input.GetState();
        if (!keys.IsAnimated())
            TakeShape(input, keys.state.value, control.CurrentTime(), keys);
        for (const auto& [time, key] : keys.state.animation.Keys())
            TakeShape(input, key.value, time, keys);
        all.push_back(std::move(keys));
    }
    return all;
}

void AddKeys(PolygonKeys& keys, const std::vector<double>& times)
{
    Animation& animation = keys.state.animation;
    for (const double time : times) {
        const std::optional<double> before = animation.KeyBefore(time);
        const Ref<Parameter> value = animation.Evaluate(time);
        const auto* shape = dynamic_cast<const PolyLine*>(value.Get());
        if (!shape || !before || animation.HasKeyAt(time))
            continue;
        const Ref<PolyLine> copy = shape->CopyShape();
        const auto at = std::lower_bound(keys.times.begin(), keys.times.end(), time);
        keys.shapes.insert(keys.shapes.begin() + (at - keys.times.begin()), copy);
        keys.times.insert(at, time);
        animation.SetKey(time, copy, animation.Keys().at(*before).interpolation);
    }
}

std::vector<ShapeList> OperateOn(const std::vector<PolygonKeys>& all,
                                 const KeysOperation& operation)
{
    std::vector<ShapeList> made;
    if (!AreOne(all)) {
        for (const PolygonKeys& keys : all)
            made.push_back(operation(keys.shapes, keys.mask));
        return made;
    }
    ShapeList shapes = all[0].shapes;
    shapes.insert(shapes.end(), all[1].shapes.begin(), all[1].shapes.end());
    const ShapeList both = operation(shapes, all[0].mask);
    if (both.size() != shapes.size())
        return {{}, {}};
    const auto middle = both.begin() + std::ptrdiff_t(all[0].shapes.size());
    return {ShapeList(both.begin(), middle), ShapeList(middle, both.end())};
}

PolyPreview::PolyPreview(PolyLineControl& control) : control_(Ref<PolyLineControl>::Share(&control))
{
}

PolyPreview::~PolyPreview()
{
    for (int polygon = 0; polygon < PolygonCount; ++polygon)
        control_->Editor().Preview(polygon, {});
}

void PolyPreview::Show(const std::vector<PolygonKeys>& all, const std::vector<ShapeList>& made)
{
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!Fits(all[i], made[i])) {
            Show(all[i].polygon, {});
            continue;
        }
        const Input::State state = StateWith(all[i], made[i]);
        const Ref<Parameter> value = state.animation.IsEmpty()
                                         ? state.value
                                         : state.animation.Evaluate(control_->CurrentTime());
        Show(all[i].polygon, Ref<PolyLine>::Share(dynamic_cast<PolyLine*>(value.Get())));
    }
}

void PolyPreview::Show(int polygon, const Ref<PolyLine>& shape)
{
    if (control_->ShapeInput(polygon)) // its tool may be gone by now
        control_->Editor().Preview(polygon, shape);
}

bool WriteKeys(PolyLineControl& control, const char* text, const std::vector<PolygonKeys>& all,
               const std::vector<ShapeList>& made)
{
    PolyEditor& editor = control.Editor();
    const PolyNest nest(control, text);
    bool written = false;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const PolygonKeys& keys = all[i];
        if (!Fits(keys, made[i]) || !control.IsShapeFree(keys.polygon) ||
            !editor.Write(keys.polygon, StateWith(keys, made[i])))
            continue;
        written = true;
        Input* const input = editor.InputOf(keys.polygon);
        if (!input || made[i].front()->Links().empty())
            continue;
        for (const double time : keys.times)
            UpdatePublishedPointInputs(*input, time);
    }
    if (Operator* const tool = written ? control.GetOperator(nullptr) : nullptr)
        RemoveUnusedPublishedInputs(*tool);
    return written;
}

ShapePlace ShapePixels(const PolyLineControl& control)
{
    constexpr ShapePlace usual{1920.0, 1080.0};
    const PreviewInfo* view = control.View();
    const ShapePlacement placement = control.Placement();
    const ShapePlace pixels = view ? PolyView(*view, placement).PixelSize() : usual;
    const double size = std::abs(placement.size);
    const bool sound = pixels.x > 0.0 && pixels.y > 0.0 && size > 0.0;
    return sound ? ShapePlace(pixels.x * size, pixels.y * size) : usual;
}

double HeightsPerWidth(const PolyLineControl& control)
{
    return control.View() ? PolyView(*control.View(), {}).HeightsPerWidth() : 1.0;
}

} // namespace Marlox
