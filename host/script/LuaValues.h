#pragma once

#include "system/base/ScriptVal.h"

#include <string>

struct lua_State;

namespace Marlox {

/// How host objects cross between an interpreter and script values.
class LuaObjects {
public:
    virtual ~LuaObjects() = default;
    /// The host object at a stack position; null if there is none (or it is gone).
    virtual RefObject* ObjectAt(lua_State* state, int index) = 0;
    /// Pushes an object, or nil if it can't be handed to this interpreter.
    virtual void PushObject(lua_State* state, RefObject* object) = 0;
};

/// Pushes a value on the stack. Only where memory is not limited (LuaState::Native, or outside a
/// run). A null `objects` pushes nil for host objects.
void PushScriptVal(lua_State* state, const ScriptVal& value, LuaObjects* objects);

/// Reads the value at a stack position. Tables are copied: whole positive keys make the list part
/// (gaps are nil), string keys the fields, in alphabetical order because the interpreter keeps
/// none. False and `error` for what no script value can hold (a function, another kind of key), for
/// a table inside itself and for anything unreasonably deep or large. Where PushScriptVal may
/// stand.
bool ReadScriptVal(lua_State* state, int index, ScriptVal& value, LuaObjects* objects,
                   std::string& error);

/// The text of the value at a stack position as messages show it, without calling into scripts.
std::string MessageAt(lua_State* state, int index);

/// Splits "name:12: reason", as Lua puts it, for a chunk of that name. Line 0: there was none.
struct LuaMessage {
    int line = 0;
    std::string reason;
};
LuaMessage SplitMessage(const std::string& message, const std::string& chunkName);

} // namespace Marlox
