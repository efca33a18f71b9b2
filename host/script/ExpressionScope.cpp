#include "script/ExpressionScope.h"

#include "script/ExpressionLibrary.h"
#include "script/LuaNative.h"
#include "script/ScriptCall.h"
#include "system/document/MarloxDoc.h"
#include "system/document/Operator.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr char toolType[] = "Marlox.ExpressionTool"; // metatable of tools
constexpr int frameSlot = lua_upvalueindex(1);
constexpr int librarySlot = lua_upvalueindex(2);

const ExpressionFrame& CurrentFrame(lua_State* state)
{
    return **static_cast<const ExpressionFrame* const*>(lua_touserdata(state, frameSlot));
}

void SetNumber(lua_State* state, const char* name, int position, double value)
{
    lua_pushnumber(state, value);
    lua_setfield(state, -2, name);
    lua_pushnumber(state, value);
    lua_rawseti(state, -2, position);
}

int PushParameter(lua_State* state, const Input& input, const Parameter* value)
{
    if (const auto* number = dynamic_cast<const Number*>(value)) {
        lua_pushnumber(state, number->GetValue());
    } else if (const auto* point = dynamic_cast<const Point*>(value)) {
        lua_createtable(state, 2, 2);
        SetNumber(state, "X", 1, point->X());
        SetNumber(state, "Y", 2, point->Y());
    } else if (const auto* text = dynamic_cast<const Text*>(value)) {
        lua_pushlstring(state, text->GetValue().data(), text->GetValue().size());
    } else {
        throw ScriptError(std::string(input.GetID().c_str()) + " is neither a number, a point nor "
                                                               "a text");
    }
    return 1;
}

const Input* FindInput(const Operator& tool, const char* id)
{
    // Not through an MxID: names are made up by scripts, and ids are never forgotten.
    for (const Ref<Input>& input : tool.Inputs()) {
        if (std::strcmp(input->GetID().c_str(), id) == 0)
            return input.Get();
    }
    return nullptr;
}

QString AsName(const QString& toolName)
{
    QString name = toolName;
    for (QChar& c : name) {
        const bool plain = c.unicode() < 0x80 && (c.isLetterOrNumber() || c == '_');
        c = plain ? c : QChar('_');
    }
    return name;
}

const Operator* FindTool(const ExpressionFrame& frame, const QString& name)
{
    const MarloxDoc* document = frame.input->GetDoc();
    if (!document)
        return nullptr;
    if (const Operator* tool = document->FindTool(name))
        return tool;
    for (const Ref<Operator>& tool : document->Tools()) {
        if (AsName(tool->GetName()) == name)
            return tool.Get();
    }
    return nullptr;
}

/// Tools are used up within one evaluation, in which no tool can go away.
int PushTool(lua_State* state, const Operator& tool)
{
    *static_cast<const Operator**>(lua_newuserdata(state, sizeof(const Operator*))) = &tool;
    luaL_getmetatable(state, toolType);
    lua_setmetatable(state, -2);
    return 1;
}

int IndexTool(lua_State* state)
{
    const Operator& tool = **static_cast<const Operator**>(lua_touserdata(state, 1));
    const char* id = lua_tostring(state, 2);
    const Input* input = id ? FindInput(tool, id) : nullptr;
    if (!input)
        throw ScriptError(tool.GetName().toStdString() + " has no input \"" +
                          (id ? id : luaL_typename(state, 2)) + "\"");
    return PushParameter(state, *input, input->GetValue(CurrentFrame(state).time).Get());
}

int ToolByName(lua_State* state)
{
    const char* name = lua_tostring(state, 1);
    const Operator* tool = name ? FindTool(CurrentFrame(state), QString::fromUtf8(name)) : nullptr;
    if (!tool)
        throw ScriptError(std::string("there is no tool \"") + (name ? name : "") + "\"");
    return PushTool(state, *tool);
}

int IndexScope(lua_State* state)
{
    const ExpressionFrame& frame = CurrentFrame(state);
    const char* name = lua_tostring(state, 2);
    if (!name)
        throw ScriptError("names are texts");
    if (std::strcmp(name, "time") == 0) {
        lua_pushnumber(state, frame.time);
        return 1;
    }
    if (std::strcmp(name, "self") == 0)
        return PushTool(state, frame.input->Owner());
    if (std::strcmp(name, "fps") == 0) {
        const MarloxDoc* document = frame.input->GetDoc();
        lua_pushnumber(state, document ? document->FrameRate() : 24.0);
        return 1;
    }
    lua_pushvalue(state, 2);
    lua_rawget(state, librarySlot);
    if (!lua_isnil(state, -1))
        return 1;
    if (const Input* input = FindInput(frame.input->Owner(), name))
        return PushParameter(state, *input, input->GetValue(frame.time).Get());
    if (const Operator* tool = FindTool(frame, QString::fromUtf8(name)))
        return PushTool(state, *tool);
    throw ScriptError(std::string("unknown name \"") + name + "\"");
}

int RefuseWriting(lua_State* state)
{
    const char* name = lua_type(state, 2) == LUA_TSTRING ? lua_tostring(state, 2) : "it";
    throw ScriptError(std::string("\"") + name +
                      "\" can't be set here; \"local\" makes a variable");
}

/// Pushes a function that knows the frame and the library (at `library` on the stack).
void PushClosure(lua_State* state, lua_CFunction function, const ExpressionFrame* const* current,
                 int library)
{
    lua_pushlightuserdata(state, const_cast<void*>(static_cast<const void*>(current)));
    lua_pushvalue(state, library);
    lua_pushcclosure(state, function, 2);
}

/// Gives the table or userdata on top of the stack its lookup, and bars everything else.
void Protect(lua_State* state, lua_CFunction index, const ExpressionFrame* const* current,
             int library)
{
    PushClosure(state, index, current, library);
    lua_setfield(state, -2, "__index");
    lua_pushcfunction(state, LuaFunction<RefuseWriting>);
    lua_setfield(state, -2, "__newindex");
    lua_pushboolean(state, 0);
    lua_setfield(state, -2, "__metatable");
}

/// The library once more as a table that can't be written to: math.sin.
void PushReadOnly(lua_State* state, int library)
{
    lua_newtable(state);
    lua_newtable(state);
    lua_pushvalue(state, library);
    lua_setfield(state, -2, "__index");
    lua_pushcfunction(state, LuaFunction<RefuseWriting>);
    lua_setfield(state, -2, "__newindex");
    lua_setmetatable(state, -2);
}

} // namespace

void PushExpressionScope(lua_State* state, const ExpressionFrame* const* current)
{
    PushExpressionLibrary(state);
    const int library = lua_gettop(state);
    PushReadOnly(state, library);
    lua_pushvalue(state, -1);
    lua_setfield(state, library, "math");
    lua_setfield(state, library, "string");
    PushClosure(state, LuaFunction<ToolByName>, current, library);
    lua_setfield(state, library, "tool");

    luaL_newmetatable(state, toolType);
    Protect(state, LuaFunction<IndexTool>, current, library);
    lua_pop(state, 1);

    lua_newtable(state);
    lua_newtable(state);
    Protect(state, LuaFunction<IndexScope>, current, library);
    lua_setmetatable(state, -2);
    lua_remove(state, library);
}

} // namespace Marlox
