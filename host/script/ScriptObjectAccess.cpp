// What happens when a script reads, writes or calls something on an object.

#include "script/LuaNative.h"
#include "script/ScriptObjects.h"
#include "script/ScriptQt.h"

#include <lua.hpp>

namespace Marlox {

namespace {

/// Forwards the arguments of a call as one list.
ScriptVal ArgumentList(const ScriptCall& call)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (int i = 1; i <= call.Count(); ++i)
        list.Append(call.Value(i));
    return list;
}

const ScriptOperation* FindOperation(RefObject* host, const std::string& name)
{
    const auto* object = dynamic_cast<const Object*>(host);
    const ScriptInfo* info = object ? object->GetScriptInfo() : nullptr;
    const ScriptOperation* at = info ? info->operations : nullptr;
    while (at && at->name && name != at->name)
        ++at;
    return at && at->name ? at : nullptr;
}

} // namespace

/// The object that the call is about; it stands at position 1.
ScriptHandle& ScriptObjects::Alive(lua_State* state)
{
    ScriptHandle* handle = HandleAt(state, 1);
    if (!handle)
        throw ScriptError("this is called on an object: object:Name(...)");
    if (!handle->IsAlive())
        throw ScriptError("this " + handle->scriptClass->Name() + " is gone");
    return *handle;
}

/// What every object offers is there whatever class the application put it in.
const ScriptClass::Member* ScriptObjects::FindMember(const ScriptHandle& handle,
                                                     const std::string& name) const
{
    if (const ScriptClass::Member* member = handle.scriptClass->Find(name))
        return member;
    for (const ScriptClass* common : common_) {
        const ScriptClass::Member* member = common->Find(name);
        if (member && common->Matches(handle.host, handle.qt))
            return member;
    }
    return nullptr;
}

int ScriptObjects::Index(lua_State* state)
{
    ScriptObjects& self = *Of(state);
    const ScriptHandle& handle = self.Alive(state);
    if (lua_type(state, 2) != LUA_TSTRING)
        throw ScriptError("names of methods and properties are texts");
    const std::string name = lua_tostring(state, 2);
    if (const ScriptClass::Member* member = self.FindMember(handle, name)) {
        lua_settop(state, 1);
        if (member->method) {
            lua_pushlightuserdata(state, const_cast<ScriptClass::Member*>(member));
            lua_pushcclosure(state, LuaFunction<&ScriptObjects::CallMethod>, 1);
            return 1;
        }
        ScriptCall call(self.engine_, state, member->name, true);
        member->get(call);
        return call.Results();
    }
    if (const ScriptOperation* operation = FindOperation(handle.host, name)) {
        lua_pushstring(state, operation->name);
        lua_pushcclosure(state, LuaFunction<&ScriptObjects::CallOperation>, 1);
        return 1;
    }
    if (handle.qt) {
        if (const auto value = ReadQtProperty(*handle.qt, name.c_str())) {
            PushScriptVal(state, *value, &self);
            return 1;
        }
    }
    throw ScriptError(handle.scriptClass->Name() + " has no \"" + name + "\"");
}

int ScriptObjects::SetIndex(lua_State* state)
{
    ScriptObjects& self = *Of(state);
    const ScriptHandle& handle = self.Alive(state);
    const std::string name = lua_type(state, 2) == LUA_TSTRING ? lua_tostring(state, 2) : "";
    lua_remove(state, 2);
    const ScriptClass::Member* member = self.FindMember(handle, name);
    if (member && member->set) {
        ScriptCall call(self.engine_, state, member->name, true);
        member->set(call);
        return 0;
    }
    if (member)
        throw ScriptError(member->name + " can't be set");
    const std::string where = handle.scriptClass->Name() + "." + name;
    ScriptVal value;
    std::string reason;
    if (!ReadScriptVal(state, 2, value, &self, reason))
        throw ScriptError(where + ": " + reason);
    const char* refusal =
        handle.qt ? WriteQtProperty(*handle.qt, name.c_str(), value) : "there is no such property";
    if (refusal)
        throw ScriptError(where + ": " + refusal);
    return 0;
}

int ScriptObjects::CallMethod(lua_State* state)
{
    ScriptObjects& self = *Of(state);
    const auto& member =
        *static_cast<const ScriptClass::Member*>(lua_touserdata(state, lua_upvalueindex(1)));
    const ScriptHandle& handle = self.Alive(state);
    if (!member.owner->Matches(handle.host, handle.qt))
        throw ScriptError(member.name + " is not for a " + handle.scriptClass->Name());
    ScriptCall call(self.engine_, state, member.name, true);
    member.method(call);
    return call.Results();
}

/// An operation that the object's class itself offers to scripts.
int ScriptObjects::CallOperation(lua_State* state)
{
    ScriptObjects& self = *Of(state);
    const ScriptHandle& handle = self.Alive(state);
    const std::string name = lua_tostring(state, lua_upvalueindex(1));
    const ScriptOperation* operation = FindOperation(handle.host, name);
    if (!operation)
        throw ScriptError(handle.scriptClass->Name() + " has no \"" + name + "\"");
    ScriptCall call(self.engine_, state, name, true);
    ScriptVal result;
    if (!operation->run(call.Self<Object>(), ArgumentList(call), result))
        throw ScriptError(name + " failed");
    call.Return(result);
    return call.Results();
}

int ScriptObjects::ToText(lua_State* state)
{
    const ScriptHandle* handle = Of(state)->HandleAt(state, 1);
    if (!handle)
        throw ScriptError("an object expected");
    const std::string& name =
        handle->castType.empty() ? handle->scriptClass->Name() : handle->castType;
    if (handle->IsAlive())
        lua_pushfstring(state, "%s: %p", name.c_str(),
                        handle->host ? static_cast<void*>(handle->host)
                                     : static_cast<void*>(handle->qt.data()));
    else
        lua_pushfstring(state, "%s (gone)", name.c_str());
    return 1;
}

int ScriptObjects::Collect(lua_State* state)
{
    auto* handle = static_cast<ScriptHandle*>(lua_touserdata(state, 1));
    handle->previous->next = handle->next;
    handle->next->previous = handle->previous;
    handle->Release();
    handle->~ScriptHandle();
    return 0;
}

} // namespace Marlox
