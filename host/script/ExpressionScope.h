#pragma once

#include "system/values/Input.h"

struct lua_State;

namespace Marlox {

/// What the names in an expression refer to while it runs: the input it belongs to, and the time.
struct ExpressionFrame {
    const Input* input = nullptr;
    double time = 0.0;
};

/// Pushes the environment of all expressions. It looks names up in `*current` each time, which is
/// the frame of the innermost expression running; it can't be written to.
void PushExpressionScope(lua_State* state, const ExpressionFrame* const* current);

} // namespace Marlox
