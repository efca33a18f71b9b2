#include "script/LuaValues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr int maximumDepth = 100;
constexpr std::size_t maximumBytes = std::size_t(64) << 20; // a table that is shared counts anew
constexpr std::size_t tableBytes = 200;                     // what an empty one takes, about

/// One conversion out of the interpreter.
class Reader {
public:
    Reader(lua_State* state, LuaObjects* objects) : state_(state), objects_(objects) {}

    bool Read(int index, ScriptVal& value);
    std::string Error() const;

private:
    struct Positioned {
        double position;
        ScriptVal value;
    };

    bool Refuse(std::string reason);
    bool ReadTable(int index, ScriptVal& value);
    bool ReadEntries(int index, std::vector<Positioned>& list,
                     std::vector<ScriptVal::Field>& fields);
    bool ReadKeyed(std::vector<Positioned>& list, std::vector<ScriptVal::Field>& fields);
    bool FillList(std::vector<Positioned>& list, ScriptVal& value);

    lua_State* state_;
    LuaObjects* objects_;
    int depth_ = 0;
    std::size_t bytes_ = 0;
    std::string reason_;
    std::vector<std::string> path_; // of the refused value, innermost first
};

bool Reader::Refuse(std::string reason)
{
    reason_ = std::move(reason);
    return false;
}

std::string Reader::Error() const
{
    constexpr std::size_t longest = 8; // steps shown
    std::string where;
    for (std::size_t i = 0; i < path_.size() && i < longest; ++i)
        where += path_[path_.size() - 1 - i];
    if (path_.size() > longest)
        where += "...";
    if (!where.empty() && where.front() == '.')
        where.erase(0, 1);
    return where.empty() ? reason_ : where + ": " + reason_;
}

bool Reader::Read(int index, ScriptVal& value)
{
    bytes_ += sizeof(ScriptVal);
    switch (lua_type(state_, index)) {
    case LUA_TNONE:
    case LUA_TNIL:
        value = ScriptVal();
        break;
    case LUA_TBOOLEAN:
        value = ScriptVal(lua_toboolean(state_, index) != 0);
        break;
    case LUA_TNUMBER:
        value = ScriptVal(lua_tonumber(state_, index));
        break;
    case LUA_TSTRING: {
        std::size_t length = 0;
        const char* text = lua_tolstring(state_, index, &length);
        bytes_ += length;
        value = ScriptVal(std::string(text, length));
        break;
    }
    case LUA_TTABLE:
        return ReadTable(index, value);
    default:
        RefObject* object = objects_ ? objects_->ObjectAt(state_, index) : nullptr;
        if (!object)
            return Refuse(std::string("a ") + luaL_typename(state_, index) +
                          " can't be kept as a value");
        value = ScriptVal(object);
    }
    return bytes_ <= maximumBytes || Refuse("the value is too large");
}

bool Reader::ReadTable(int index, ScriptVal& value)
{
    if (depth_ >= maximumDepth || !lua_checkstack(state_, 4))
        return Refuse("tables are nested too deep, or a table contains itself");
    std::vector<Positioned> list;
    std::vector<ScriptVal::Field> fields;
    bytes_ += tableBytes;
    ++depth_;
    const bool read = ReadEntries(index, list, fields);
    --depth_;
    value = ScriptVal::MakeTable();
    if (!read || !FillList(list, value))
        return false;
    std::sort(fields.begin(), fields.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [name, field] : fields)
        value.Set(name, std::move(field));
    return true;
}

bool Reader::ReadEntries(int index, std::vector<Positioned>& list,
                         std::vector<ScriptVal::Field>& fields)
{
    const int table = index < 0 ? lua_gettop(state_) + 1 + index : index;
    lua_pushnil(state_);
    while (lua_next(state_, table) != 0) {
        if (!ReadKeyed(list, fields)) {
            lua_pop(state_, 2);
            return false;
        }
        lua_pop(state_, 1);
    }
    return true;
}

/// Reads the key and value on top of the stack, which stay there.
bool Reader::ReadKeyed(std::vector<Positioned>& list, std::vector<ScriptVal::Field>& fields)
{
    ScriptVal value;
    if (lua_type(state_, -2) == LUA_TSTRING) {
        std::size_t length = 0;
        const char* text = lua_tolstring(state_, -2, &length);
        std::string name(text, length);
        bytes_ += length;
        if (!Read(-1, value)) {
            path_.push_back("." + name);
            return false;
        }
        fields.emplace_back(std::move(name), std::move(value));
        return true;
    }
    const double position = lua_type(state_, -2) == LUA_TNUMBER ? lua_tonumber(state_, -2) : 0.0;
    if (!(position >= 1.0) || position != std::trunc(position))
        return Refuse("keys are names or positions from 1");
    if (!Read(-1, value)) {
        path_.push_back("[" + std::to_string(int64(std::min(position, 9e15))) + "]");
        return false;
    }
    list.push_back({position, std::move(value)});
    return true;
}

bool Reader::FillList(std::vector<Positioned>& list, ScriptVal& value)
{
    std::sort(list.begin(), list.end(),
              [](const Positioned& a, const Positioned& b) { return a.position < b.position; });
    if (!list.empty() && list.back().position > 2.0 * double(list.size()) + 16.0)
        return Refuse("the list has large gaps");
    for (Positioned& element : list) {
        while (double(value.Length()) + 1.0 < element.position)
            value.Append(ScriptVal());
        value.Append(std::move(element.value));
    }
    return true;
}

} // namespace

void PushScriptVal(lua_State* state, const ScriptVal& value, LuaObjects* objects)
{
    if (!lua_checkstack(state, 4)) { // nested deeper than the interpreter can hold
        lua_pushnil(state);
        return;
    }
    switch (value.GetType()) {
    case ScriptVal::Type::Nil:
        lua_pushnil(state);
        break;
    case ScriptVal::Type::Boolean:
        lua_pushboolean(state, value.ToBool());
        break;
    case ScriptVal::Type::Number:
        lua_pushnumber(state, value.ToNumber());
        break;
    case ScriptVal::Type::String: {
        const std::string text = value.ToString();
        lua_pushlstring(state, text.data(), text.size());
        break;
    }
    case ScriptVal::Type::Table:
        lua_createtable(state, int(value.Length()), int(value.Fields().size()));
        for (std::size_t i = 0; i < value.Length(); ++i) {
            PushScriptVal(state, value.Elements()[i], objects);
            lua_rawseti(state, -2, int(i) + 1);
        }
        for (const auto& [name, field] : value.Fields()) {
            lua_pushlstring(state, name.data(), name.size());
            PushScriptVal(state, field, objects);
            lua_rawset(state, -3);
        }
        break;
    case ScriptVal::Type::Object:
        if (objects && value.ToObject())
            objects->PushObject(state, value.ToObject());
        else
            lua_pushnil(state);
        break;
    }
}

bool ReadScriptVal(lua_State* state, int index, ScriptVal& value, LuaObjects* objects,
                   std::string& error)
{
    Reader reader(state, objects);
    if (reader.Read(index, value))
        return true;
    error = reader.Error();
    return false;
}

std::string MessageAt(lua_State* state, int index)
{
    switch (lua_type(state, index)) {
    case LUA_TSTRING:
    case LUA_TNUMBER: {
        lua_pushvalue(state, index); // reading as text would change a number in place
        std::size_t length = 0;
        const char* text = lua_tolstring(state, -1, &length);
        std::string message(text, length);
        lua_pop(state, 1);
        return message;
    }
    case LUA_TNIL:
        return "nil";
    case LUA_TBOOLEAN:
        return lua_toboolean(state, index) ? "true" : "false";
    default:
        return std::string("a ") + luaL_typename(state, index);
    }
}

LuaMessage SplitMessage(const std::string& message, const std::string& chunkName)
{
    const std::string start = chunkName + ":";
    LuaMessage split{0, message};
    if (!message.starts_with(start))
        return split;
    const char* end = message.data() + message.size();
    const auto [behind, failure] = std::from_chars(message.data() + start.size(), end, split.line);
    if (failure != std::errc() || behind == end || *behind != ':')
        return {0, message};
    split.reason.assign(behind + 1, end);
    split.reason.erase(0, split.reason.find_first_not_of(' '));
    return split;
}

} // namespace Marlox
