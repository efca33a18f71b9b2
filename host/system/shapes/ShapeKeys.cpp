#include "system/shapes/ShapeKeys.h"

#include <algorithm>

namespace Marlox {

ShapeKeys::ShapeKeys(Input& input) : ShapeKeys(input, input.GetState()) {}

ShapeKeys::ShapeKeys(Input& input, Input::State from) : input_(input), state_(std::move(from)) {}

std::vector<double> ShapeKeys::Times() const
{
    std::vector<double> times;
    for (const auto& [time, key] : state_.animation.Keys())
        times.push_back(time);
    return times;
}

/// The shape, as a copy that belongs to this edit; null: the value is none.
PolyLine* ShapeKeys::Own(Ref<Parameter>& value)
{
    auto* shape = dynamic_cast<PolyLine*>(value.Get());
    if (!shape || std::find(owned_.begin(), owned_.end(), shape) != owned_.end())
        return shape;
    const Ref<PolyLine> copy = shape->CopyShape();
    owned_.push_back(copy.Get());
    value = copy;
    return copy.Get();
}

PolyLine* ShapeKeys::At(double time)
{
    if (state_.animation.IsEmpty())
        return Own(state_.value);
    if (!state_.animation.HasKeyAt(time))
        return nullptr;
    Ref<Parameter> value = state_.animation.Evaluate(time);
    PolyLine* const shape = Own(value);
    state_.animation.SetKey(time, value);
    return shape;
}

void ShapeKeys::ForEach(const std::function<void(PolyLine& shape, double time)>& change)
{
    if (state_.animation.IsEmpty()) {
        if (PolyLine* const shape = At(TimeNone))
            change(*shape, TimeNone);
        return;
    }
    for (const double time : Times()) {
        if (PolyLine* const shape = At(time))
            change(*shape, time);
    }
}

PolyLine* ShapeKeys::MakeKey(double time)
{
    if (!state_.animation.HasKeyAt(time)) {
        const Ref<Parameter> value =
            state_.animation.IsEmpty() ? state_.value : state_.animation.Evaluate(time);
        // Evenly from key to key, unless the one before says otherwise.
        const auto before = state_.animation.KeyBefore(time);
        const Interpolation way =
            before ? state_.animation.Keys().at(*before).interpolation : Interpolation::Linear;
        state_.animation.SetKey(time, value, way);
    }
    return At(time);
}

void ShapeKeys::RemoveKey(double time)
{
    if (state_.animation.Keys().size() == 1 && state_.animation.HasKeyAt(time))
        state_.value = state_.animation.Evaluate(time);
    state_.animation.RemoveKey(time);
}

bool ShapeKeys::MoveKey(double from, double to)
{
    return state_.animation.MoveKey(from, to);
}

void ShapeKeys::Replace(const std::function<Ref<PolyLine>(const PolyLine& shape)>& made)
{
    const auto replaced = [&](const Ref<Parameter>& value) -> Ref<Parameter> {
        const auto* shape = dynamic_cast<const PolyLine*>(value.Get());
        Ref<PolyLine> other = shape ? made(*shape) : Ref<PolyLine>();
        return other ? Ref<Parameter>(other) : value;
    };
    if (state_.animation.IsEmpty())
        state_.value = replaced(state_.value);
    for (const double time : Times())
        state_.animation.SetKey(time, replaced(state_.animation.Evaluate(time)));
}

bool ShapeKeys::Commit()
{
    owned_.clear(); // they are the input's from now on
    return input_.IsChangeable() && input_.ChangeTo(state_);
}

Ref<PolyLine> ShapeOf(const Input& input, double time)
{
    const Ref<Parameter> value = input.GetValue(time);
    return Ref<PolyLine>::Share(dynamic_cast<PolyLine*>(value.Get()));
}

} // namespace Marlox
