#include "script/LuaNative.h"

#include "script/LuaState.h"

#include <lua.hpp>

namespace Marlox {

namespace {

void PushMessage(lua_State* state, const char* message)
{
    luaL_where(state, 1);
    lua_pushstring(state, message);
    lua_concat(state, 2);
}

} // namespace

int RunLuaBody(lua_State* state, LuaBody body) noexcept
{
    const LuaState::Native native(state);
    try {
        return body(state);
    } catch (const std::exception& error) {
        PushMessage(state, error.what());
    } catch (...) {
        PushMessage(state, "the operation failed");
    }
    return -1;
}

int RaiseLuaError(lua_State* state)
{
    return lua_error(state);
}

} // namespace Marlox
