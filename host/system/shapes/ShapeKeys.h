#pragma once

#include "system/shapes/PolyLine.h"
#include "system/values/Input.h"

#include <functional>

namespace Marlox {

/// All shapes of one input over time, for edits that concern more than one of them: taken out,
/// changed as copies, put back as one undo step. User-interface thread.
class MARLOXSYSTEM_EXPORT ShapeKeys {
public:
    explicit ShapeKeys(Input& input);
    ShapeKeys(Input& input, Input::State from); // from another state than it has

    /// The times of the keys, ascending; empty where the input is not animated.
    std::vector<double> Times() const;
    /// Changes the shape of every key, or the one there is.
    void ForEach(const std::function<void(PolyLine& shape, double time)>& change);
    /// The key's shape to be changed; the plain one where the input is not animated; null: there is
    /// no key at that time.
    PolyLine* At(double time);
    /// Makes a key at `time` with the shape that the keys give there, unless there is one.
    PolyLine* MakeKey(double time);
    void RemoveKey(double time);
    bool MoveKey(double from, double to);
    /// Every shape is replaced by one of another kind or build.
    void Replace(const std::function<Ref<PolyLine>(const PolyLine& shape)>& made);

    /// What it has become, for who writes it.
    const Input::State& State() const { return state_; }
    /// Writes it into the input. False: the input refuses it.
    bool Commit();

private:
    PolyLine* Own(Ref<Parameter>& value);

    Input& input_;
    Input::State state_;
    std::vector<const void*> owned_; // shapes that are copies already
};

/// The shape of an input at `time`; null: it holds none.
MARLOXSYSTEM_EXPORT Ref<PolyLine> ShapeOf(const Input& input, double time);

} // namespace Marlox
