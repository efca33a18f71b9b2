#include "script/ScriptEngine.h"

#include "script/LuaNative.h"
#include "script/LuaValues.h"
#include "script/ScriptEngine_p.h"

#include <algorithm>

#include <QFile>
#include <QStringList>

#include <lua.hpp>

namespace Marlox {

QString ScriptResult::Error() const
{
    if (ok)
        return {};
    return line > 0 ? QStringLiteral("%1:%2: %3").arg(file).arg(line).arg(message)
                    : (file.isEmpty() ? message : file + QStringLiteral(": ") + message);
}

ScriptEngine::ScriptEngine() : d_(std::make_unique<Private>(*this))
{
    AddControlAccess(*this, *d_->objects.FindClass("Object"));
    AddCasts(d_->thread);
}

ScriptEngine::~ScriptEngine() = default;

ScriptResult ScriptEngine::RunText(const QString& text, const QString& name)
{
    return d_->RunSource(text.toStdString(), "=" + name.toStdString(), true);
}

ScriptResult ScriptEngine::RunFile(const QString& path)
{
    QFile file(path);
    ScriptResult result;
    if (!file.open(QIODevice::ReadOnly)) {
        result.ok = false;
        result.file = path;
        result.message = QStringLiteral("can't be read: %1").arg(file.errorString());
        return result;
    }
    std::string source = file.readAll().toStdString();
    if (source.starts_with("\xef\xbb\xbf"))
        source.erase(0, 3);
    if (source.starts_with("#!")) // the line of a script that is a program; its number stays
        source.insert(0, "--");
    return d_->RunSource(source, "@" + path.toStdString(), false);
}

bool ScriptEngine::IsRunning() const
{
    return d_->interpreter.IsRunning();
}

void ScriptEngine::Interrupt()
{
    d_->interpreter.Cancel();
}

void ScriptEngine::SetTimeLimit(std::chrono::milliseconds limit)
{
    d_->timeLimit = limit;
}

void ScriptEngine::SetIdle(std::function<void()> idle)
{
    d_->idle = std::move(idle);
}

void ScriptEngine::SetPrint(std::function<void(const QString&)> print)
{
    d_->print = std::move(print);
}

void ScriptEngine::AddFunction(const std::string& name, ScriptNative function)
{
    lua_State* state = d_->thread;
    const std::string last = d_->PushTableOf(name);
    Private::Function& added =
        d_->functions.emplace_back(Private::Function{name, std::move(function)});
    lua_pushstring(state, last.c_str());
    lua_pushlightuserdata(state, &added);
    lua_pushcclosure(state, LuaFunction<&Private::CallFunction>, 1);
    lua_rawset(state, -3);
    lua_pop(state, 1);
}

void ScriptEngine::SetGlobal(const std::string& name, const ScriptVal& value)
{
    lua_State* state = d_->thread;
    const std::string last = d_->PushTableOf(name);
    lua_pushstring(state, last.c_str());
    PushScriptVal(state, value, &d_->objects);
    lua_rawset(state, -3);
    lua_pop(state, 1);
}

void ScriptEngine::SetGlobalHost(const std::string& name, RefObject* object)
{
    SetGlobal(name, ScriptVal(object));
}

void ScriptEngine::SetGlobalQt(const std::string& name, QObject* object)
{
    lua_State* state = d_->thread;
    const std::string last = d_->PushTableOf(name);
    lua_pushstring(state, last.c_str());
    d_->objects.PushQt(state, object);
    lua_rawset(state, -3);
    lua_pop(state, 1);
}

ScriptVal ScriptEngine::GetGlobal(const std::string& name)
{
    lua_State* state = d_->thread;
    const std::string last = d_->PushTableOf(name, false);
    lua_pushstring(state, last.c_str());
    lua_rawget(state, -2);
    ScriptVal value;
    std::string ignored;
    if (!ReadScriptVal(state, lua_gettop(state), value, &d_->objects, ignored))
        value = ScriptVal();
    lua_pop(state, 2);
    return value;
}

ScriptClass& ScriptEngine::AddClass(const std::string& name, const std::string& base,
                                    ScriptClass::Match match)
{
    return d_->objects.AddClass(name, base, match);
}

std::vector<std::string> ScriptEngine::Names() const
{
    std::vector<std::string> names = {"cast", "isvalid", "uncast"};
    for (const Private::Function& function : d_->functions)
        names.push_back(function.name);
    for (const ScriptClass& known : d_->objects.Classes()) {
        const auto own = known.MemberNames();
        names.insert(names.end(), own.begin(), own.end());
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

void ScriptEngine::ReleaseObjects()
{
    d_->objects.ReleaseAll();
}

} // namespace Marlox
