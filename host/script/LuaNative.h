#pragma once

struct lua_State;

namespace Marlox {

/// A native function that may throw; its exception's text becomes the script's error (ScriptError).
using LuaBody = int (*)(lua_State*);

/// Runs a native function so that no exception leaves it and no limit cuts it short. The number of
/// results it pushed, or -1 with a message pushed.
int RunLuaBody(lua_State* state, LuaBody body) noexcept;
/// Raises the value on top of the stack as an error. Jumps over the frames of its callers.
int RaiseLuaError(lua_State* state);

/// A native function as the interpreter takes it. Whatever the body has on its frame is destroyed
/// before the error is raised.
template <LuaBody body>
int LuaFunction(lua_State* state)
{
    const int results = RunLuaBody(state, body);
    return results >= 0 ? results : RaiseLuaError(state);
}

} // namespace Marlox
