#pragma once

#include "script/LuaValues.h"
#include "script/ScriptClass.h"

#include <deque>
#include <string>
#include <vector>

#include <QPointer>

struct lua_State;

namespace Marlox {

class LuaClass;

/// What a script holds when it holds an object: lies in the interpreter's memory, and in the list
/// of all of them.
struct ScriptHandle {
    RefObject* host = nullptr; // one of the two may be null
    QPointer<QObject> qt;
    bool isQt = false;  // dies with Qt: `qt` tells
    bool owned = false; // has a reference of its own to `host`
    const ScriptClass* scriptClass = nullptr;
    // Of a cast: the script type and what the cast function returned.
    std::string castType;
    void* castPointer = nullptr;
    ScriptHandle* previous = nullptr;
    ScriptHandle* next = nullptr;

    bool IsAlive() const { return isQt ? !qt.isNull() : host != nullptr; }
    /// Gives up the reference and forgets the object.
    void Release();
};

/// The objects that the scripts of one engine hold, and the classes they belong to. Where memory is
/// not limited (LuaState::Native).
class ScriptObjects : public LuaObjects {
public:
    ScriptObjects(ScriptEngine& engine, lua_State* state);
    ~ScriptObjects() override;

    /// The objects of the engine that an interpreter belongs to; null for a foreign one.
    static ScriptObjects* Of(lua_State* state);

    ScriptClass& AddClass(const std::string& name, const std::string& base,
                          ScriptClass::Match match);
    ScriptClass* FindClass(const std::string& name);
    const std::deque<ScriptClass>& Classes() const { return classes_; }

    RefObject* ObjectAt(lua_State* state, int index) override;
    /// Through the object's own lw_push; its first value counts.
    void PushObject(lua_State* state, RefObject* object) override;
    void PushQt(lua_State* state, QObject* object);
    void PushHost(lua_State* state, RefObject* object);
    /// Takes over the caller's reference.
    void PushOwned(lua_State* state, RefObject* object);
    void PushCast(lua_State* state, RefObject* object, const std::string& type, void* pointer);
    /// Null if there is no object of ours at the position; it may be gone.
    ScriptHandle* HandleAt(lua_State* state, int index);
    void ReleaseAll();

private:
    ScriptHandle* NewHandle(lua_State* state, RefObject* host, QObject* qt);
    void RememberTop(lua_State* state, RefObject* host, QObject* qt);
    bool PushKnown(lua_State* state, RefObject* host, QObject* qt);
    void PushMetatable(lua_State* state, const ScriptClass& scriptClass);
    const ScriptClass& ClassOf(RefObject* host, QObject* qt) const;
    void Push(lua_State* state, RefObject* host, QObject* qt);
    ScriptHandle& Alive(lua_State* state);
    const ScriptClass::Member* FindMember(const ScriptHandle& handle,
                                          const std::string& name) const;

    static int Index(lua_State* state);
    static int SetIndex(lua_State* state);
    static int CallMethod(lua_State* state);
    static int CallOperation(lua_State* state);
    static int ToText(lua_State* state);
    static int Collect(lua_State* state);

    ScriptEngine& engine_;
    std::deque<ScriptClass> classes_;
    std::vector<const ScriptClass*> common_; // of all Qt objects, of all host objects
    ScriptHandle list_;                      // of all handles: the ring's own link
    int known_;                              // object to handle, weak
};

/// Pushes a host object for an interpreter of an engine; the number of values pushed, 0 for a
/// foreign interpreter.
int PushScriptObject(lua_State* state, LuaClass& object);

} // namespace Marlox
