#include "script/ScriptObjects.h"

#include "script/LuaNative.h"

#include <algorithm>
#include <new>

#include <lua.hpp>

namespace Marlox {

namespace {

// Their addresses are keys in Lua's registry and in the metatables of handles.
const char objectsKey = 0;
const char handleMark = 0;

void* KeyOf(const void* address)
{
    return const_cast<void*>(address);
}

} // namespace

void ScriptHandle::Release()
{
    RefObject* object = std::exchange(host, nullptr);
    const bool drop = owned && object && (!isQt || qt);
    owned = false;
    isQt = false;
    qt = nullptr;
    castPointer = nullptr;
    if (drop)
        object->DecRef();
}

ScriptObjects::ScriptObjects(ScriptEngine& engine, lua_State* state) : engine_(engine)
{
    list_.previous = list_.next = &list_;
    lua_pushlightuserdata(state, KeyOf(&objectsKey));
    lua_pushlightuserdata(state, this);
    lua_rawset(state, LUA_REGISTRYINDEX);
    lua_newtable(state);
    lua_newtable(state);
    lua_pushliteral(state, "v");
    lua_setfield(state, -2, "__mode");
    lua_setmetatable(state, -2);
    known_ = luaL_ref(state, LUA_REGISTRYINDEX);
    common_ = {&AddClass("QtObject", {}, [](RefObject*, QObject* qt) { return qt != nullptr; }),
               &AddClass("Object", {}, [](RefObject* host, QObject*) { return host != nullptr; })};
}

ScriptObjects::~ScriptObjects()
{
    ReleaseAll();
}

ScriptObjects* ScriptObjects::Of(lua_State* state)
{
    lua_pushlightuserdata(state, KeyOf(&objectsKey));
    lua_rawget(state, LUA_REGISTRYINDEX);
    auto* objects = static_cast<ScriptObjects*>(lua_touserdata(state, -1));
    lua_pop(state, 1);
    return objects;
}

ScriptClass* ScriptObjects::FindClass(const std::string& name)
{
    const auto found = std::find_if(classes_.begin(), classes_.end(),
                                    [&](const ScriptClass& known) { return known.Name() == name; });
    return found != classes_.end() ? &*found : nullptr;
}

ScriptClass& ScriptObjects::AddClass(const std::string& name, const std::string& base,
                                     ScriptClass::Match match)
{
    if (ScriptClass* known = FindClass(name))
        return *known;
    return classes_.emplace_back(name, base.empty() ? nullptr : FindClass(base), match);
}

const ScriptClass& ScriptObjects::ClassOf(RefObject* host, QObject* qt) const
{
    const auto found =
        std::find_if(classes_.rbegin(), classes_.rend(),
                     [&](const ScriptClass& known) { return known.Matches(host, qt); });
    return found != classes_.rend() ? *found : classes_.front();
}

ScriptHandle* ScriptObjects::HandleAt(lua_State* state, int index)
{
    if (lua_type(state, index) != LUA_TUSERDATA || !lua_getmetatable(state, index))
        return nullptr;
    lua_pushlightuserdata(state, KeyOf(&handleMark));
    lua_rawget(state, -2);
    const bool ours = lua_toboolean(state, -1) != 0;
    lua_pop(state, 2);
    return ours ? static_cast<ScriptHandle*>(lua_touserdata(state, index)) : nullptr;
}

RefObject* ScriptObjects::ObjectAt(lua_State* state, int index)
{
    const ScriptHandle* handle = HandleAt(state, index);
    return handle && handle->IsAlive() ? handle->host : nullptr;
}

void ScriptObjects::PushObject(lua_State* state, RefObject* object)
{
    if (!object) {
        lua_pushnil(state);
        return;
    }
    const int top = lua_gettop(state);
    if (object->lw_push(state) > 0)
        lua_settop(state, top + 1);
    else
        PushHost(state, object);
}

void ScriptObjects::PushHost(lua_State* state, RefObject* object)
{
    Push(state, object, dynamic_cast<QObject*>(object));
}

void ScriptObjects::PushQt(lua_State* state, QObject* object)
{
    Push(state, dynamic_cast<RefObject*>(object), object);
}

void ScriptObjects::Push(lua_State* state, RefObject* host, QObject* qt)
{
    if (!host && !qt)
        lua_pushnil(state);
    else if (!PushKnown(state, host, qt)) {
        ScriptHandle* handle = NewHandle(state, host, qt);
        RememberTop(state, host, qt);
        if (!qt) {
            host->IncRef();
            handle->owned = true;
        }
    }
}

void ScriptObjects::PushOwned(lua_State* state, RefObject* object)
{
    Push(state, object, dynamic_cast<QObject*>(object));
    ScriptHandle* handle = HandleAt(state, -1);
    if (!handle)
        return;
    if (handle->owned)
        object->DecRef();
    handle->owned = true;
}

void ScriptObjects::PushCast(lua_State* state, RefObject* object, const std::string& type,
                             void* pointer)
{
    auto* qt = dynamic_cast<QObject*>(object);
    ScriptHandle* handle = NewHandle(state, object, qt);
    if (!qt) {
        object->IncRef();
        handle->owned = true;
    }
    handle->castType = type;
    handle->castPointer = pointer;
}

/// Pushes the handle that scripts have for the object already.
bool ScriptObjects::PushKnown(lua_State* state, RefObject* host, QObject* qt)
{
    lua_rawgeti(state, LUA_REGISTRYINDEX, known_);
    lua_pushlightuserdata(state, host ? static_cast<void*>(host) : static_cast<void*>(qt));
    lua_rawget(state, -2);
    lua_remove(state, -2);
    const ScriptHandle* handle = HandleAt(state, -1);
    // A new object may stand where one that is gone stood.
    if (handle && handle->IsAlive() && handle->host == host && handle->qt.data() == qt)
        return true;
    lua_pop(state, 1);
    return false;
}

ScriptHandle* ScriptObjects::NewHandle(lua_State* state, RefObject* host, QObject* qt)
{
    auto* handle = new (lua_newuserdata(state, sizeof(ScriptHandle))) ScriptHandle;
    handle->host = host;
    handle->qt = qt;
    handle->isQt = qt != nullptr;
    handle->scriptClass = &ClassOf(host, qt);
    handle->previous = list_.previous;
    handle->next = &list_;
    list_.previous->next = handle;
    list_.previous = handle;
    PushMetatable(state, *handle->scriptClass);
    lua_setmetatable(state, -2);
    return handle;
}

/// Makes the handle on top of the stack the one that PushKnown finds.
void ScriptObjects::RememberTop(lua_State* state, RefObject* host, QObject* qt)
{
    lua_rawgeti(state, LUA_REGISTRYINDEX, known_);
    lua_pushlightuserdata(state, host ? static_cast<void*>(host) : static_cast<void*>(qt));
    lua_pushvalue(state, -3);
    lua_rawset(state, -3);
    lua_pop(state, 1);
}

void ScriptObjects::PushMetatable(lua_State* state, const ScriptClass& scriptClass)
{
    lua_pushlightuserdata(state, KeyOf(&scriptClass));
    lua_rawget(state, LUA_REGISTRYINDEX);
    if (!lua_isnil(state, -1))
        return;
    lua_pop(state, 1);
    lua_newtable(state);
    constexpr luaL_Reg operations[] = {{"__index", LuaFunction<&ScriptObjects::Index>},
                                       {"__newindex", LuaFunction<&ScriptObjects::SetIndex>},
                                       {"__tostring", LuaFunction<&ScriptObjects::ToText>},
                                       {"__gc", LuaFunction<&ScriptObjects::Collect>}};
    for (const luaL_Reg& operation : operations) {
        lua_pushcfunction(state, operation.func);
        lua_setfield(state, -2, operation.name);
    }
    lua_pushstring(state, scriptClass.Name().c_str());
    lua_setfield(state, -2, "__metatable");
    lua_pushlightuserdata(state, KeyOf(&handleMark));
    lua_pushboolean(state, 1);
    lua_rawset(state, -3);
    lua_pushlightuserdata(state, KeyOf(&scriptClass));
    lua_pushvalue(state, -2);
    lua_rawset(state, LUA_REGISTRYINDEX);
}

void ScriptObjects::ReleaseAll()
{
    // Destructors may bring in or drop further handles: always the first one left.
    while (list_.next != &list_) {
        ScriptHandle* handle = list_.next;
        list_.next = handle->next;
        handle->next->previous = &list_;
        handle->previous = handle->next = handle;
        handle->Release();
    }
}

int PushScriptObject(lua_State* state, LuaClass& object)
{
    ScriptObjects* objects = ScriptObjects::Of(state);
    auto* host = dynamic_cast<RefObject*>(&object);
    if (!objects || !host)
        return 0;
    objects->PushHost(state, host);
    return 1;
}

} // namespace Marlox
