#pragma once

#include "script/LuaState.h"
#include "script/ScriptEngine.h"
#include "script/ScriptObjects.h"

#include <deque>
#include <functional>

namespace Marlox {

class ScriptEngine::Private {
public:
    explicit Private(ScriptEngine& owner);
    ~Private();

    struct Function {
        std::string name;
        ScriptNative native;
    };

    /// Calls the function below its arguments on top of the stack; takes both off it.
    ScriptResult CallTop(int arguments);
    ScriptResult RunSource(const std::string& source, const std::string& chunkName, bool value);
    /// Pushes the table of the dotted name's front part and returns the rest. One that is missing
    /// is made, or else an empty one stands for it.
    std::string PushTableOf(const std::string& name, bool make = true);
    /// The text that `print` shows for the value at a stack position.
    std::string TextAt(int index);

    static Private& Of(lua_State* state);
    static int CallFunction(lua_State* state);
    static int HandleError(lua_State* state);
    static int Print(lua_State* state);
    static int Exit(lua_State* state);

    ScriptEngine& engine;
    LuaState interpreter;
    ScriptObjects objects;
    lua_State* thread; // the innermost coroutine that runs
    std::deque<Function> functions;
    std::chrono::milliseconds timeLimit{0};
    std::function<void()> idle;
    std::function<void(const QString&)> print;
    std::optional<int> exitCode;
    ScriptResult failure; // what the error handler found
    int textOf;           // the function tostring, in Lua's registry
    /// Functions that scripts handed over may outlive the engine.
    std::shared_ptr<ScriptEngine*> alive;

private:
    void RunIdle() noexcept;
    void ReadResults(int from, ScriptResult& result);
    LuaState::Limits Limits() const;
};

struct ScriptFunction::Held {
    std::weak_ptr<ScriptEngine*> engine;
    int reference; // in Lua's registry
    ~Held();
};

/// Adds the functions classes, create and usercontrol, and the attributes of objects.
void AddControlAccess(ScriptEngine& engine, ScriptClass& objectClass);
/// Adds the functions cast, uncast and isvalid.
void AddCasts(lua_State* state);

} // namespace Marlox
