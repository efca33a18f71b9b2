// How shapes are changed: at the current time, at the keys that go with it, or at all of them.

#include "controls/polyline/PolyKeysChange.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

/// Whether all places are ones that a picture can have: a placement may throw them anywhere.
bool IsSound(const PolyLine& shape)
{
    constexpr double furthest = 1e9; // images away
    const auto isIn = [](double at) { return std::abs(at) <= furthest; };
    return std::all_of(shape.Points().begin(), shape.Points().end(), [&](const PolyPoint& p) {
        return isIn(p.x) && isIn(p.y) && isIn(p.inX) && isIn(p.inY) && isIn(p.outX) && isIn(p.outY);
    });
}

std::vector<u32> FlagsOf(const PolyLine* shape)
{
    std::vector<u32> flags;
    if (!shape)
        return flags;
    for (const PolyPoint& point : shape->Points())
        flags.push_back(point.flags);
    return flags;
}

/// A point's flags hold in all keys: those that changed in one go to the others.
void SpreadFlags(ShapeKeys& keys, const std::vector<u32>& before, const std::vector<u32>& after)
{
    if (before == after || before.size() != after.size())
        return;
    keys.ForEach([&](PolyLine& shape, double) {
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (PolyPoint* point = before[i] != after[i] ? shape.GetPoint(int(i)) : nullptr)
                point->flags = after[i];
        }
    });
}

} // namespace

PolyEditor::States PolyEditor::TakeStates() const
{
    States states;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        states[std::size_t(polygon)] = TakeState(polygon);
    }
    return states;
}

/// What an edit at the current time begins with: linked points where they are.
std::optional<Input::State> PolyEditor::TakeState(int polygon) const
{
    Input* const input = InputOf(polygon);
    const PolyLine* shape = Shape(polygon);
    if (!input)
        return {};
    if (const auto& held = held_[std::size_t(polygon)])
        return held->state;
    ShapeKeys keys(*input);
    const double now = control_.CurrentTime();
    if (IsAnimated(polygon))
        keys.MakeKey(now);
    if (!shape || shape->Links().empty())
        return keys.State();
    std::vector<double> times = OtherFrames(keys.State());
    times.push_back(now);
    for (const double time : times) {
        if (PolyLine* const edited = keys.At(time))
            PlaceLinkedPoints(*input, time, *edited);
    }
    return keys.State();
}

/// The keys besides the current time that multi-frame editing tells.
std::vector<double> PolyEditor::OtherFrames(const Input::State& state) const
{
    const MultiFrame which = control_.Settings().multiFrame;
    const double now = control_.CurrentTime();
    std::vector<double> times;
    for (const auto& [time, key] : state.animation.Keys()) {
        const bool wanted = which == MultiFrame::All || (which == MultiFrame::Prev && time < now) ||
                            (which == MultiFrame::Next && time > now);
        if (wanted)
            times.push_back(time);
    }
    return times;
}

bool PolyEditor::Change(int polygon, Scope scope, const ShapeChange& change,
                        const std::optional<Input::State>& from)
{
    Input* const input = InputOf(polygon);
    if (!input || !control_.IsShapeFree(polygon))
        return false;
    ShapeKeys keys(*input, from ? *from : *TakeState(polygon));
    bool isSound = true;
    const auto apply = [&](PolyLine* shape) {
        if (!shape)
            return;
        const WriteLock lock(*shape);
        change(*shape);
        isSound = isSound && IsSound(*shape);
    };
    const double now = control_.CurrentTime();
    if (IsAnimated(polygon))
        keys.MakeKey(now);
    std::vector<double> times{now}; // at which points may have moved
    if (scope == Scope::Keys) {
        keys.ForEach([&apply](PolyLine& shape, double) { apply(&shape); });
    } else {
        times = OtherFrames(keys.State());
        if (std::find(times.begin(), times.end(), now) == times.end())
            times.push_back(now);
        const std::vector<u32> before = FlagsOf(keys.At(now));
        for (const double time : times)
            apply(keys.At(time));
        SpreadFlags(keys, before, FlagsOf(keys.At(now)));
    }
    return isSound && WriteAt(polygon, keys.State(), times);
}

bool PolyEditor::ChangeSelected(
    const std::function<void(PolyLine& shape, const SelMask& mask)>& change, const States& from)
{
    return ChangeMasked(EditedMasks(), change, from);
}

bool PolyEditor::ChangeMasked(
    const Masks& masks, const std::function<void(PolyLine& shape, const SelMask& mask)>& change,
    const States& from)
{
    bool changed = false;
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        const SelMask& mask = masks[std::size_t(polygon)];
        if (mask.IsAnySet())
            changed |= Change(
                polygon, Scope::Frames, [&change, &mask](PolyLine& shape) { change(shape, mask); },
                from[std::size_t(polygon)]);
    }
    return changed;
}

bool PolyEditor::Write(int polygon, Input::State next)
{
    return WriteAt(polygon, std::move(next), {});
}

/// With the inputs that published points feed at these times.
bool PolyEditor::WriteAt(int polygon, Input::State next, const std::vector<double>& times)
{
    UniteFlags(next);
    if (holdsBack_) {
        const Ref<Parameter> value =
            next.animation.IsEmpty() ? next.value : next.animation.Evaluate(control_.CurrentTime());
        const bool isFirst = !held_[InnerPolygon] && !held_[OuterPolygon];
        held_[std::size_t(polygon)] = {std::move(next), times};
        if (MarloxDoc* document = isFirst ? control_.GetDoc() : nullptr)
            document->Undo().Hold(this, QString::fromLatin1(heldText_),
                                  [this] { control_.EndUndo(false); });
        const Masks selected = masks_;
        Preview(polygon, Ref<PolyLine>::Share(dynamic_cast<PolyLine*>(value.Get())));
        RestoreSelections(selected); // of new points too
        return true;
    }
    Preview(polygon, {});
    if (!control_.WriteShape(polygon, std::move(next)))
        return false;
    if (Shape(polygon) && !Shape(polygon)->Links().empty() && InputOf(polygon)) {
        for (const double time : times)
            UpdatePublishedPointInputs(*InputOf(polygon), time);
    }
    return true;
}

void PolyEditor::Unhold()
{
    holdsBack_ = false;
    if (MarloxDoc* document = control_.GetDoc())
        document->Undo().Unhold(this);
}

void PolyEditor::WriteHeld()
{
    const Masks selected = masks_; // also of points that are written only now
    bool any = false;
    if (held_[InnerPolygon] || held_[OuterPolygon])
        control_.StartUndo(heldText_);
    Unhold();
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (auto held = std::exchange(held_[std::size_t(polygon)], {}))
            any = WriteAt(polygon, std::move(held->state), held->times) || any;
    }
    if (any)
        RestoreSelections(selected);
}

void PolyEditor::ForgetHeld()
{
    Unhold();
    for (int polygon = 0; polygon < PolygonCount; ++polygon) {
        if (std::exchange(held_[std::size_t(polygon)], {}))
            Preview(polygon, {});
    }
}

} // namespace Marlox
