#include "script/ScriptCall.h"

#include "script/LuaValues.h"
#include "script/ScriptEngine_p.h"

#include <cmath>
#include <limits>

#include <lua.hpp>

namespace Marlox {

ScriptCall::ScriptCall(ScriptEngine& engine, lua_State* state, const std::string& name, bool method)
    : engine_(engine), state_(state), name_(name), method_(method), given_(lua_gettop(state)),
      outer_(std::exchange(engine.d_->thread, state))
{
    if (!lua_checkstack(state, LUA_MINSTACK))
        throw ScriptError(name + ": too many values");
}

ScriptCall::~ScriptCall()
{
    engine_.d_->thread = outer_;
}

int ScriptCall::Results() const
{
    return lua_gettop(state_) - given_;
}

int ScriptCall::Count() const
{
    return given_ - (method_ ? 1 : 0);
}

bool ScriptCall::Has(int index) const
{
    return index <= Count() && !lua_isnoneornil(state_, At(index));
}

void ScriptCall::ThrowArgument(int index, const char* expected) const
{
    std::string found = "nothing";
    if (index <= Count()) {
        const ScriptHandle* handle = engine_.d_->objects.HandleAt(state_, At(index));
        found = handle ? handle->scriptClass->Name() : luaL_typename(state_, At(index));
    }
    throw ScriptError(name_ + ": argument " + std::to_string(index) + ": " + expected +
                      " expected, not " + found);
}

void ScriptCall::ThrowNoObject(int index) const
{
    const ScriptHandle* handle =
        index <= Count() ? engine_.d_->objects.HandleAt(state_, At(index)) : nullptr;
    if (handle && !handle->IsAlive())
        throw ScriptError(name_ + ": this " + handle->scriptClass->Name() + " is gone");
    ThrowArgument(index, "another object");
}

bool ScriptCall::IsText(int index) const
{
    return index <= Count() && lua_type(state_, At(index)) == LUA_TSTRING;
}

bool ScriptCall::IsNumber(int index) const
{
    return index <= Count() && lua_type(state_, At(index)) == LUA_TNUMBER;
}

bool ScriptCall::IsTable(int index) const
{
    return index <= Count() && lua_type(state_, At(index)) == LUA_TTABLE;
}

bool ScriptCall::IsFunction(int index) const
{
    return index <= Count() && lua_type(state_, At(index)) == LUA_TFUNCTION;
}

double ScriptCall::Number(int index) const
{
    if (index > Count() || !lua_isnumber(state_, At(index)))
        ThrowArgument(index, "number");
    return lua_tonumber(state_, At(index));
}

int ScriptCall::Integer(int index) const
{
    const double number = Number(index);
    if (number != std::trunc(number) || std::fabs(number) > std::numeric_limits<int>::max())
        ThrowArgument(index, "whole number");
    return int(number);
}

bool ScriptCall::Flag(int index) const
{
    if (IsNumber(index))
        return lua_tonumber(state_, At(index)) != 0.0;
    if (index > Count() || !lua_isboolean(state_, At(index)))
        ThrowArgument(index, "boolean");
    return lua_toboolean(state_, At(index)) != 0;
}

std::string ScriptCall::Text(int index) const
{
    if (!IsText(index) && !IsNumber(index))
        ThrowArgument(index, "text");
    return MessageAt(state_, At(index));
}

std::string ScriptCall::Text(int index, std::string missing) const
{
    return Has(index) ? Text(index) : std::move(missing);
}

QString ScriptCall::String(int index, const QString& missing) const
{
    return Has(index) ? String(index) : missing;
}

ScriptVal ScriptCall::Value(int index) const
{
    ScriptVal value;
    std::string reason;
    if (index <= Count() && !ReadScriptVal(state_, At(index), value, &engine_.d_->objects, reason))
        throw ScriptError(name_ + ": argument " + std::to_string(index) + ": " + reason);
    return value;
}

ScriptVal ScriptCall::Table(int index) const
{
    if (!IsTable(index))
        ThrowArgument(index, "table");
    return Value(index);
}

ScriptFunction ScriptCall::Function(int index) const
{
    if (!IsFunction(index))
        ThrowArgument(index, "function");
    lua_pushvalue(state_, At(index));
    const int reference = luaL_ref(state_, LUA_REGISTRYINDEX);
    using Held = ScriptFunction::Held;
    return ScriptFunction(std::shared_ptr<Held>(new Held{engine_.d_->alive, reference}));
}

RefObject* ScriptCall::HostObjectAt(int index) const
{
    return index <= Count() ? engine_.d_->objects.ObjectAt(state_, At(index)) : nullptr;
}

QObject* ScriptCall::QtObjectAt(int index) const
{
    const ScriptHandle* handle =
        index <= Count() ? engine_.d_->objects.HandleAt(state_, At(index)) : nullptr;
    return handle ? handle->qt.data() : nullptr;
}

void ScriptCall::Return(const ScriptVal& value)
{
    lua_checkstack(state_, LUA_MINSTACK);
    PushScriptVal(state_, value, &engine_.d_->objects);
}

void ScriptCall::ReturnOwned(RefObject* object)
{
    engine_.d_->objects.PushOwned(state_, object);
}

void ScriptCall::ReturnHost(RefObject* object)
{
    engine_.d_->objects.PushObject(state_, object);
}

void ScriptCall::ReturnQt(QObject* object)
{
    engine_.d_->objects.PushQt(state_, object);
}

void ScriptCall::BeginList()
{
    lua_newtable(state_);
    list_ = 0;
}

void ScriptCall::AppendToList()
{
    lua_rawseti(state_, -2, ++list_);
}

ScriptFunction::Held::~Held()
{
    if (const auto alive = engine.lock())
        luaL_unref((*alive)->d_->interpreter.Get(), LUA_REGISTRYINDEX, reference);
}

ScriptResult ScriptFunction::operator()(const std::vector<ScriptVal>& arguments) const
{
    const auto alive = held_ ? held_->engine.lock() : nullptr;
    if (!alive) {
        ScriptResult result;
        result.ok = false;
        result.message = QStringLiteral("the function's script is gone");
        return result;
    }
    ScriptEngine::Private& engine = *(*alive)->d_;
    lua_checkstack(engine.thread, int(arguments.size()) + LUA_MINSTACK);
    lua_rawgeti(engine.thread, LUA_REGISTRYINDEX, held_->reference);
    for (const ScriptVal& argument : arguments)
        PushScriptVal(engine.thread, argument, &engine.objects);
    return engine.CallTop(int(arguments.size()));
}

} // namespace Marlox
