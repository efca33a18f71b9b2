#include "script/ValueText.h"

#include "script/LuaState.h"
#include "script/LuaValues.h"

#include <limits>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr LuaState::Limits limits{
    .bytes = std::size_t(256) << 20, .instructions = 50'000'000, .time = std::chrono::seconds(5)};
constexpr char chunkName[] = "value";

/// A misspelt name must not pass for nil: what it stood for would be lost without a word.
int RefuseName(lua_State* state)
{
    return luaL_error(state, "\"%s\" is no value that is known here", lua_tostring(state, 2));
}

/// The environment of a value's script: no names but math.huge and what the script itself sets.
void PushEnvironment(lua_State* state)
{
    lua_newtable(state);
    lua_newtable(state);
    lua_pushnumber(state, std::numeric_limits<double>::infinity());
    lua_setfield(state, -2, "huge");
    lua_setfield(state, -2, "math");
    lua_newtable(state);
    lua_pushcfunction(state, RefuseName);
    lua_setfield(state, -2, "__index");
    lua_setmetatable(state, -2);
}

std::string Explain(const std::string& message)
{
    const LuaMessage split = SplitMessage(message, chunkName);
    return split.line > 0 ? "line " + std::to_string(split.line) + ": " + split.reason
                          : split.reason;
}

bool RunForValue(const std::string& text, ScriptVal& value, std::string& error)
{
    LuaState interpreter;
    lua_State* state = interpreter.Get();
    const std::string name = std::string("=") + chunkName;
    if (!interpreter.LoadValue(state, text, name, limits)) {
        error = Explain(MessageAt(state, -1));
        return false;
    }
    PushEnvironment(state);
    lua_setfenv(state, 1);
    if (!interpreter.Call(state, 0, limits)) {
        error = Explain(MessageAt(state, -1));
        return false;
    }
    if (lua_gettop(state) != 1) {
        error = lua_gettop(state) == 0 ? "no value is returned" : "more than one value is returned";
        return false;
    }
    ScriptVal read;
    if (!ReadScriptVal(state, 1, read, nullptr, error))
        return false;
    value = std::move(read);
    return true;
}

} // namespace

bool ParseValueText(const std::string& text, ScriptVal& value, std::string* error)
{
    std::string literalError;
    if (ReadLiteral(text, value, literalError))
        return true;
    std::string scriptError;
    if (RunForValue(text, value, scriptError))
        return true;
    if (error) {
        // A script can't hold as many different numbers as a literal.
        const bool tooLarge = scriptError.find("constant table overflow") != std::string::npos;
        *error = tooLarge ? literalError : scriptError;
    }
    return false;
}

} // namespace Marlox
