#include "script/Expressions.h"

#include "script/ExpressionScope.h"
#include "script/LuaState.h"
#include "script/LuaValues.h"

#include <cmath>
#include <optional>
#include <unordered_map>
#include <vector>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr LuaState::Limits limits{
    .bytes = std::size_t(32) << 20, .instructions = 0, .time = std::chrono::milliseconds(50)};
constexpr char chunkName[] = "expression";
constexpr std::size_t cachedChunks = 2000;
constexpr std::size_t maximumNesting = 150; // inputs that ask for each other

constexpr std::string_view blanks = " \t\r\n";

/// Without blanks around and the "=" in front.
std::string Bare(const std::string& text)
{
    std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string::npos)
        return {};
    if (text[start] == '=')
        start = text.find_first_not_of(blanks, start + 1);
    if (start == std::string::npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

QString Explain(const std::string& message)
{
    const LuaMessage split = SplitMessage(message, chunkName);
    const QString reason = QString::fromStdString(split.reason);
    return split.line > 0 ? QStringLiteral("line %1: %2").arg(split.line).arg(reason) : reason;
}

std::optional<double> ReadComponent(lua_State* state, int table, int position, const char* name)
{
    lua_rawgeti(state, table, position);
    if (lua_isnil(state, -1)) {
        lua_pop(state, 1);
        lua_pushstring(state, name);
        lua_rawget(state, table);
    }
    std::optional<double> value;
    if (lua_type(state, -1) == LUA_TNUMBER && std::isfinite(lua_tonumber(state, -1)))
        value = lua_tonumber(state, -1);
    lua_pop(state, 1);
    return value;
}

/// A table as the kind of value that `input` holds; as a point for those that no table is.
Ref<Parameter> ReadTable(lua_State* state, int at, const Input& input, QString& error)
{
    const MxID kind = input.GetDataType();
    if (kind == MxID(CLSID_DataType_Number) || kind == MxID(CLSID_DataType_Text) ||
        kind == MxID(CLSID_DataType_Point)) {
        const auto x = ReadComponent(state, at, 1, "X");
        const auto y = ReadComponent(state, at, 2, "Y");
        if (x && y)
            return MakeRef<Point>(*x, *y);
        error = QStringLiteral("a point is two finite numbers: {x, y}");
        return nullptr;
    }
    ScriptVal table;
    std::string reason;
    if (!ReadScriptVal(state, at, table, nullptr, reason)) {
        error = QString::fromStdString(reason);
        return nullptr;
    }
    Ref<Parameter> value = Parameter::FromScriptVal(kind, table);
    if (!value)
        error = QStringLiteral("the table is no %1")
                    .arg(QString::fromStdString(std::string(kind.View())));
    return value;
}

/// The value at a stack position as a parameter for `input`; null and `error` if it is none.
Ref<Parameter> ReadResult(lua_State* state, int at, const Input& input, QString& error)
{
    switch (lua_type(state, at)) {
    case LUA_TBOOLEAN:
        return MakeRef<Number>(lua_toboolean(state, at) ? 1.0 : 0.0);
    case LUA_TNUMBER:
        if (input.GetDataType() == MxID(CLSID_DataType_Text))
            return MakeRef<Text>(MessageAt(state, at));
        if (std::isfinite(lua_tonumber(state, at)))
            return MakeRef<Number>(lua_tonumber(state, at));
        error = QStringLiteral("the result is not a finite number");
        return nullptr;
    case LUA_TSTRING:
        return MakeRef<Text>(MessageAt(state, at));
    case LUA_TTABLE:
        return ReadTable(state, at, input, error);
    case LUA_TNIL:
        error = QStringLiteral("no value results");
        return nullptr;
    default:
        error = QStringLiteral("the result is %1, not a number, a point or a text")
                    .arg(QString::fromStdString(MessageAt(state, at)));
        return nullptr;
    }
}

bool IsWordCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c >= '0' && c <= '9');
}

/// Whether a name stands in the text, outside of texts in quotes. Words of the language are no
/// names.
bool NamesSomething(const std::string& text)
{
    constexpr std::string_view language[] = {"and", "false", "nil", "not", "or", "return", "true"};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"' || text[i] == '\'') {
            const char quote = text[i];
            for (++i; i < text.size() && text[i] != quote; ++i)
                i += text[i] == '\\';
        } else if (IsWordCharacter(text[i])) {
            std::size_t end = i;
            while (end < text.size() && IsWordCharacter(text[end]))
                ++end;
            const std::string_view word(&text[i], end - i);
            const bool number = word.front() >= '0' && word.front() <= '9';
            if (!number &&
                std::find(std::begin(language), std::end(language), word) == std::end(language))
                return true;
            i = end - 1;
        }
    }
    return false;
}

} // namespace

class Expressions::Private {
public:
    Private();
    Ref<Parameter> Evaluate(const Input& input, const std::string& text, double time,
                            QString& error);
    bool CanCompile(const std::string& text);

private:
    bool PushCompiled(lua_State* thread, const std::string& text, QString& error);
    lua_State* Thread();

    LuaState interpreter_;
    int scope_ = LUA_NOREF;
    std::unordered_map<std::string, int> chunks_; // text to its function in Lua's registry
    std::vector<lua_State*> threads_;             // one for each level of nesting, kept
    std::size_t level_ = 0;
    const ExpressionFrame* current_ = nullptr;
};

Expressions::Private::Private()
{
    lua_State* state = interpreter_.Get();
    PushExpressionScope(state, &current_);
    scope_ = luaL_ref(state, LUA_REGISTRYINDEX);
}

/// A stack of its own for each level: Lua limits how deep native calls nest on one.
lua_State* Expressions::Private::Thread()
{
    if (level_ == threads_.size()) {
        threads_.push_back(lua_newthread(interpreter_.Get()));
        luaL_ref(interpreter_.Get(), LUA_REGISTRYINDEX); // kept for good
    }
    return threads_[level_];
}

bool Expressions::Private::PushCompiled(lua_State* thread, const std::string& text, QString& error)
{
    if (const auto known = chunks_.find(text); known != chunks_.end()) {
        lua_rawgeti(thread, LUA_REGISTRYINDEX, known->second);
        return true;
    }
    if (!interpreter_.LoadValue(thread, text, std::string("=") + chunkName, limits)) {
        error = Explain(MessageAt(thread, -1));
        return false;
    }
    lua_rawgeti(thread, LUA_REGISTRYINDEX, scope_);
    lua_setfenv(thread, -2);
    if (chunks_.size() >= cachedChunks) {
        for (const auto& [ignored, reference] : chunks_)
            luaL_unref(thread, LUA_REGISTRYINDEX, reference);
        chunks_.clear();
    }
    lua_pushvalue(thread, -1);
    chunks_.emplace(text, luaL_ref(thread, LUA_REGISTRYINDEX));
    return true;
}

Ref<Parameter> Expressions::Private::Evaluate(const Input& input, const std::string& text,
                                              double time, QString& error)
{
    if (level_ >= maximumNesting) {
        error = QStringLiteral("too many inputs refer to one another");
        return nullptr;
    }
    lua_State* thread = Thread();
    const ExpressionFrame frame{&input, time};
    const ExpressionFrame* before = std::exchange(current_, &frame);
    ++level_;
    Ref<Parameter> result;
    if (PushCompiled(thread, text, error)) {
        if (!interpreter_.Call(thread, 0, limits)) {
            error = Explain(MessageAt(thread, -1));
        } else {
            lua_settop(thread, 1); // no result is nil, further ones are ignored
            result = ReadResult(thread, 1, input, error);
        }
    }
    lua_settop(thread, 0);
    --level_;
    current_ = before;
    return result;
}

bool Expressions::Private::CanCompile(const std::string& text)
{
    lua_State* state = interpreter_.Get();
    const bool compiled = interpreter_.Load(state, "return " + text, chunkName, limits) ||
                          (text.find("return") != std::string::npos &&
                           interpreter_.Load(state, text, chunkName, limits));
    lua_settop(state, 0);
    return compiled;
}

Expressions::Expressions() : d_(std::make_unique<Private>()) {}
Expressions::~Expressions() = default;

Ref<Parameter> Expressions::Evaluate(const Input& input, const std::string& text, double time,
                                     QString* error)
{
    QString ignored;
    QString& reason = error ? *error : ignored;
    const std::string bare = Bare(text);
    if (bare.empty()) {
        reason = QStringLiteral("the expression is empty");
        return nullptr;
    }
    return d_->Evaluate(input, bare, time, reason);
}

bool Expressions::IsExpression(const QString& text)
{
    const std::string utf8 = text.toStdString();
    const std::string bare = Bare(utf8);
    if (bare.empty())
        return false;
    return utf8[utf8.find_first_not_of(blanks)] == '=' ||
           (NamesSomething(bare) && d_->CanCompile(bare));
}

} // namespace Marlox
