// Running scripts: the calls into the interpreter and what comes back from them.

#include "script/LuaNative.h"
#include "script/LuaValues.h"
#include "script/ScriptEngine_p.h"

#include <cstdio>

#include <QStringList>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr std::size_t memoryLimit = std::size_t(2) << 30;
constexpr int tracebackLevels = 30;
const char engineKey = 0; // its address is a key in Lua's registry

/// "name:12: reason" as the interpreter puts it in front of messages.
bool StartsWithPlace(const std::string& message, const lua_Debug& level, std::string& rest)
{
    if (level.currentline <= 0)
        return false;
    const std::string place =
        std::string(level.short_src) + ":" + std::to_string(level.currentline) + ": ";
    if (!message.starts_with(place))
        return false;
    rest = message.substr(place.size());
    return true;
}

/// The file or the name of a text, without Lua's mark in front.
QString SourceOf(const lua_Debug& level)
{
    return QString::fromUtf8(level.source + (*level.source == '@' || *level.source == '='));
}

QString DescribeLevel(const lua_Debug& level)
{
    QString line;
    if (level.currentline > 0)
        line = QStringLiteral("%1:%2: ").arg(SourceOf(level)).arg(level.currentline);
    if (level.name && *level.name)
        return line + QStringLiteral("in \"%1\"").arg(QString::fromUtf8(level.name));
    return line + (*level.what == 'm' ? QStringLiteral("in the script itself")
                                      : QStringLiteral("in a function without a name"));
}

/// For messages of the compiler, which runs no script yet: "name:12: reason".
void SplitCompilerMessage(const std::string& message, ScriptResult& result)
{
    result.message = QString::fromStdString(message);
    for (std::size_t at = message.find(':'); at != std::string::npos;
         at = message.find(':', at + 1)) {
        const std::size_t end = message.find_first_not_of("0123456789", at + 1);
        if (end == std::string::npos || end == at + 1 || message[end] != ':')
            continue;
        result.line = std::stoi(message.substr(at + 1, end - at - 1));
        result.message = QString::fromStdString(message.substr(end + 1)).trimmed();
        return;
    }
}

} // namespace

ScriptEngine::Private::Private(ScriptEngine& owner)
    : engine(owner), objects(owner, interpreter.Get()), thread(interpreter.Get()),
      alive(std::make_shared<ScriptEngine*>(&owner))
{
    lua_State* state = interpreter.Get();
    lua_pushlightuserdata(state, const_cast<char*>(&engineKey));
    lua_pushlightuserdata(state, this);
    lua_rawset(state, LUA_REGISTRYINDEX);
    luaL_openlibs(state);
    lua_getglobal(state, "tostring");
    textOf = luaL_ref(state, LUA_REGISTRYINDEX);
    lua_pushcfunction(state, LuaFunction<&Private::Print>);
    lua_setglobal(state, "print");
    lua_getglobal(state, "os");
    lua_pushcfunction(state, LuaFunction<&Private::Exit>);
    lua_setfield(state, -2, "exit");
    lua_settop(state, 0);
    interpreter.SetIdle([](void* self) { static_cast<Private*>(self)->RunIdle(); }, this);
}

ScriptEngine::Private::~Private()
{
    alive.reset();
    objects.ReleaseAll();
}

void ScriptEngine::Private::RunIdle() noexcept
{
    try {
        if (idle)
            idle();
    } catch (...) { // nothing may fly through the interpreter's frames
        interpreter.Cancel();
    }
}

ScriptEngine::Private& ScriptEngine::Private::Of(lua_State* state)
{
    lua_pushlightuserdata(state, const_cast<char*>(&engineKey));
    lua_rawget(state, LUA_REGISTRYINDEX);
    auto* self = static_cast<Private*>(lua_touserdata(state, -1));
    lua_pop(state, 1);
    return *self;
}

LuaState::Limits ScriptEngine::Private::Limits() const
{
    return {.bytes = memoryLimit, .instructions = 0, .time = timeLimit};
}

/// The message handler: runs where the error was raised, with the calls still on the stack.
int ScriptEngine::Private::HandleError(lua_State* state)
{
    ScriptResult found;
    const std::string message = MessageAt(state, 1);
    found.message = QString::fromStdString(message);
    bool placed = false;
    QStringList calls;
    lua_Debug level;
    for (int i = 0; i < tracebackLevels && lua_getstack(state, i, &level); ++i) {
        lua_getinfo(state, "Snl", &level);
        std::string rest;
        const bool exact = !placed && StartsWithPlace(message, level, rest);
        if (exact || (found.line == 0 && level.currentline > 0)) {
            found.file = SourceOf(level);
            found.line = level.currentline;
        }
        if (exact) {
            found.message = QString::fromStdString(rest);
            placed = true;
        }
        if (level.currentline > 0 || level.name)
            calls.append(DescribeLevel(level));
    }
    found.traceback = calls.join(QLatin1Char('\n'));
    Of(state).failure = found;
    lua_settop(state, 1);
    return 1;
}

ScriptResult ScriptEngine::Private::CallTop(int arguments)
{
    lua_State* state = thread;
    const int function = lua_gettop(state) - arguments;
    lua_pushcfunction(state, LuaFunction<&Private::HandleError>);
    lua_insert(state, function);
    if (!interpreter.IsRunning())
        exitCode.reset();
    failure = ScriptResult();
    ScriptResult result;
    result.ok = interpreter.Call(state, arguments, Limits(), function);
    if (result.ok) {
        ReadResults(function + 1, result);
    } else {
        // Without memory no handler ran.
        if (failure.message.isEmpty())
            failure.message = QString::fromStdString(MessageAt(state, -1));
        result = failure;
        result.ok = false;
    }
    lua_settop(state, function - 1);
    if (exitCode) {
        result.ok = *exitCode == 0;
        result.exitCode = exitCode;
        result.message = QStringLiteral("the script ended with status %1").arg(*exitCode);
    }
    return result;
}

void ScriptEngine::Private::ReadResults(int from, ScriptResult& result)
{
    for (int i = from; i <= lua_gettop(thread); ++i) {
        std::string ignored;
        ScriptVal value;
        if (!ReadScriptVal(thread, i, value, &objects, ignored))
            value = ScriptVal();
        result.values.push_back(std::move(value));
        result.texts.append(QString::fromStdString(TextAt(i)));
    }
}

std::string ScriptEngine::Private::TextAt(int index)
{
    lua_pushvalue(thread, index);
    lua_rawgeti(thread, LUA_REGISTRYINDEX, textOf);
    lua_insert(thread, -2);
    interpreter.Call(thread, 1, Limits());
    std::string text = MessageAt(thread, -1); // of an object whose __tostring fails: why
    lua_pop(thread, 1);
    return text;
}

ScriptResult ScriptEngine::Private::RunSource(const std::string& source,
                                              const std::string& chunkName, bool value)
{
    // Compiling and running are one run to whoever stops it or asks whether one is under way.
    const bool first = !interpreter.IsRunning();
    const LuaState::Session session(interpreter, Limits());
    if (first)
        exitCode.reset();
    lua_checkstack(thread, LUA_MINSTACK);
    const bool loaded = value ? interpreter.LoadValue(thread, source, chunkName, Limits())
                              : interpreter.Load(thread, source, chunkName, Limits());
    if (loaded)
        return CallTop(0);
    ScriptResult result;
    result.ok = false;
    result.file = QString::fromStdString(chunkName.substr(1));
    SplitCompilerMessage(MessageAt(thread, -1), result);
    lua_pop(thread, 1);
    return result;
}

std::string ScriptEngine::Private::PushTableOf(const std::string& name, bool make)
{
    lua_pushvalue(thread, LUA_GLOBALSINDEX);
    std::size_t start = 0;
    for (std::size_t dot = name.find('.'); dot != std::string::npos; dot = name.find('.', start)) {
        const std::string part = name.substr(start, dot - start);
        lua_pushstring(thread, part.c_str());
        lua_rawget(thread, -2);
        if (!lua_istable(thread, -1)) {
            lua_pop(thread, 1);
            lua_newtable(thread);
            if (make) {
                lua_pushstring(thread, part.c_str());
                lua_pushvalue(thread, -2);
                lua_rawset(thread, -4);
            }
        }
        lua_remove(thread, -2);
        start = dot + 1;
    }
    return name.substr(start);
}

int ScriptEngine::Private::CallFunction(lua_State* state)
{
    const auto& function =
        *static_cast<const Function*>(lua_touserdata(state, lua_upvalueindex(1)));
    ScriptCall call(Of(state).engine, state, function.name, false);
    function.native(call);
    return call.Results();
}

int ScriptEngine::Private::Print(lua_State* state)
{
    Private& self = Of(state);
    static const std::string name = "print";
    const ScriptCall call(self.engine, state, name, false);
    QStringList texts;
    for (int i = 1; i <= call.Count(); ++i)
        texts.append(QString::fromStdString(self.TextAt(i)));
    const QString line = texts.join(QLatin1Char('\t'));
    if (self.print) {
        self.print(line);
    } else {
        std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stdout);
        std::fflush(stdout);
    }
    return 0;
}

/// os.exit: ends the script for good and leaves ending the program to the application.
int ScriptEngine::Private::Exit(lua_State* state)
{
    Private& self = Of(state);
    if (lua_isboolean(state, 1))
        self.exitCode = lua_toboolean(state, 1) ? 0 : 1;
    else
        self.exitCode = int(lua_tonumber(state, 1));
    self.interpreter.Cancel();
    throw ScriptError("exit");
}

} // namespace Marlox
