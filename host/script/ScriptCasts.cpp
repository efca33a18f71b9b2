#include "script/LuaNative.h"
#include "script/ScriptEngine_p.h"

#include <lua.hpp>

namespace Marlox {

namespace {

using CastFunction = void* (*)(void*);

/// The native function of a script type; throws if its library does not have it.
CastFunction FindCast(const std::string& typeName, const char* call)
{
    const FFIType* type = FFIType::Find(typeName.c_str());
    if (!type)
        throw ScriptError("there is no script type \"" + typeName + "\"");
    const FFIFunc* function = FFIFunc::Find(type, call);
    void* address = function ? function->Address() : nullptr;
    if (!address)
        throw ScriptError("the script type \"" + typeName + "\" has no function \"" + call + "\"");
    return reinterpret_cast<CastFunction>(address);
}

RefObject& LivingObject(ScriptObjects& objects, lua_State* state)
{
    RefObject* object = objects.ObjectAt(state, 1);
    if (!object)
        throw ScriptError("argument 1: a host object expected");
    return *object;
}

int Cast(lua_State* state)
{
    ScriptObjects& objects = *ScriptObjects::Of(state);
    // nil is the null object, which is of no class.
    RefObject* object = lua_isnil(state, 1) ? nullptr : &LivingObject(objects, state);
    if (lua_type(state, 2) != LUA_TSTRING)
        throw ScriptError("cast: argument 2: the name of a script type expected");
    const std::string typeName = lua_tostring(state, 2);
    void* pointer = FindCast(typeName, "_cast")(static_cast<ScriptObject*>(object));
    if (pointer)
        objects.PushCast(state, object, typeName, pointer);
    else
        lua_pushnil(state);
    return 1;
}

/// Of what cast returned: the plain object again. Other objects come back as they are.
int Uncast(lua_State* state)
{
    ScriptObjects& objects = *ScriptObjects::Of(state);
    LivingObject(objects, state);
    const ScriptHandle& handle = *objects.HandleAt(state, 1);
    if (!handle.castPointer) {
        lua_settop(state, 1);
        return 1;
    }
    void* plain = FindCast(handle.castType, "_uncast")(handle.castPointer);
    objects.PushHost(state, dynamic_cast<RefObject*>(static_cast<ScriptObject*>(plain)));
    return 1;
}

int IsValid(lua_State* state)
{
    const ScriptHandle* handle = ScriptObjects::Of(state)->HandleAt(state, 1);
    lua_pushboolean(state, handle && handle->IsAlive());
    return 1;
}

} // namespace

void AddCasts(lua_State* state)
{
    lua_pushcfunction(state, LuaFunction<Cast>);
    lua_setglobal(state, "cast");
    lua_pushcfunction(state, LuaFunction<Uncast>);
    lua_setglobal(state, "uncast");
    lua_pushcfunction(state, LuaFunction<IsValid>);
    lua_setglobal(state, "isvalid");
}

} // namespace Marlox
