#include "script/LuaState.h"

#include "script/CLocale.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include <lua.hpp>

namespace Marlox {

namespace {

constexpr int countStep = 1000; // instructions between two looks at the limits

int LineOf(const std::string& message)
{
    const std::size_t colon = message.find(':');
    return colon != std::string::npos ? std::atoi(message.c_str() + colon + 1) : 0;
}

/// Which of the compiler's two messages tells the fault of a text: the one for it as an expression,
/// or as statements.
bool LooksLikeStatements(const std::string& text, const std::string& asExpression,
                         const std::string& asStatements)
{
    if (asExpression.find("table overflow") != std::string::npos) // well formed so far, only large
        return false;
    // The wrong reading fails early.
    if (LineOf(asExpression) != LineOf(asStatements))
        return LineOf(asStatements) > LineOf(asExpression);
    constexpr std::string_view starts[] = {"break", "do",     "for",    "function", "if",
                                           "local", "repeat", "return", "while"};
    const std::size_t start = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    const std::size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz", start);
    const std::string word = text.substr(start, end - start);
    if (std::find(std::begin(starts), std::end(starts), word) != std::end(starts))
        return true;
    return asExpression.find("'<eof>' expected") != std::string::npos &&
           asStatements.find("'=' expected") == std::string::npos;
}

} // namespace

LuaState::Session::Session(LuaState& owner, const Limits& limits) : owner_(owner)
{
    if (owner.depth_ == 0) {
        if (limits.bytes != 0 && owner.used_ > limits.bytes / 2)
            lua_gc(owner.state_, LUA_GCCOLLECT, 0);
        owner.limits_ = limits;
        owner.instructions_ = 0;
        owner.deadline_ = Clock::now() + limits.time;
        owner.cancelled_ = false;
        owner.stopped_ = false;
    }
    ++owner.depth_; // last: from now on another thread may cancel
}

LuaState::Session::~Session()
{
    if (--owner_.depth_ == 0)
        lua_sethook(owner_.state_, &LuaState::OnCount, LUA_MASKCOUNT, countStep);
}

/// One protected call: the outermost one sets the limits.
class LuaState::Run {
public:
    Run(LuaState& owner, lua_State* thread, const Limits& limits)
        : session_(owner, limits), owner_(owner), enforced_(owner.enforced_)
    {
        lua_sethook(thread, &LuaState::OnCount, LUA_MASKCOUNT, owner.stopped_ ? 1 : countStep);
        owner.enforced_ = owner.limits_.bytes != 0;
    }

    ~Run() { owner_.enforced_ = enforced_; }

    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

private:
    Session session_;
    LuaState& owner_;
    bool enforced_;
    CLocale locale_;
};

LuaState::Native::Native(lua_State* state)
    : owner_(LuaState::Of(state)), enforced_(std::exchange(owner_.enforced_, false))
{
}

LuaState::LuaState()
{
    state_ = lua_newstate(&LuaState::Allocate, this);
    if (!state_)
        throw std::bad_alloc();
    // Coroutines inherit the hook of the state that makes them.
    lua_sethook(state_, &LuaState::OnCount, LUA_MASKCOUNT, countStep);
}

LuaState::~LuaState()
{
    lua_close(state_);
}

LuaState& LuaState::Of(lua_State* state)
{
    void* owner = nullptr;
    lua_getallocf(state, &owner);
    return *static_cast<LuaState*>(owner);
}

void LuaState::SetIdle(void (*idle)(void*), void* context)
{
    idle_ = idle;
    idleContext_ = context;
}

void* LuaState::Allocate(void* owner, void* block, std::size_t oldSize, std::size_t newSize)
{
    auto& self = *static_cast<LuaState*>(owner);
    if (newSize == 0) {
        std::free(block);
        self.used_ -= oldSize;
        return nullptr;
    }
    const bool grows = newSize > oldSize;
    if (grows && self.enforced_ && self.used_ + (newSize - oldSize) > self.limits_.bytes)
        return nullptr;
    void* made = std::realloc(block, newSize);
    if (made)
        self.used_ += newSize - oldSize; // wraps around as meant when it shrinks
    return made;
}

const char* LuaState::Exceeded() const
{
    if (cancelled_)
        return "stopped";
    if (limits_.instructions != 0 && instructions_ > limits_.instructions)
        return "stopped: it takes too many steps";
    if (limits_.time.count() != 0 && Clock::now() > deadline_)
        return "stopped: it takes too long";
    return nullptr;
}

void LuaState::OnCount(lua_State* state, lua_Debug*)
{
    LuaState& self = Of(state);
    const int step = lua_gethookcount(state);
    self.instructions_ += step;
    if (step != countStep && !self.stopped_) // a coroutine left over from a run that was stopped
        lua_sethook(state, &LuaState::OnCount, LUA_MASKCOUNT, countStep);
    if (self.idle_ && !self.stopped_) {
        const Native native(state);
        self.idle_(self.idleContext_);
    }
    const char* reason = self.Exceeded();
    if (!reason)
        return;
    // From now on at every instruction: a script that catches errors must not go on for long.
    self.stopped_ = true;
    lua_sethook(state, &LuaState::OnCount, LUA_MASKCOUNT, 1);
    luaL_error(state, "%s", reason);
}

bool LuaState::Call(lua_State* thread, int arguments, const Limits& limits, int handler)
{
    const Run run(*this, thread, limits);
    const int base = lua_gettop(thread) - arguments - 1;
    // Runs within runs may each be too short to be looked at while they go on without end.
    const char* reason = Exceeded();
    if (!reason) {
        if (lua_pcall(thread, arguments, LUA_MULTRET, handler) != 0)
            return false;
        // What was stopped further in must not pass as a result out here.
        if (!stopped_)
            return true;
        reason = Exceeded();
    }
    stopped_ = true;
    enforced_ = false;
    lua_settop(thread, base);
    lua_pushstring(thread, reason);
    return false;
}

bool LuaState::Load(lua_State* thread, const std::string& text, const std::string& chunkName,
                    const Limits& limits)
{
    const Run run(*this, thread, limits);
    enforced_ = false; // pushing is not protected, compiling is: its limit is the text's size
    if (!text.empty() && text.front() == LUA_SIGNATURE[0]) {
        lua_pushstring(thread, "compiled scripts are not run");
        return false;
    }
    return luaL_loadbuffer(thread, text.data(), text.size(), chunkName.c_str()) == 0;
}

bool LuaState::LoadValue(lua_State* thread, const std::string& text, const std::string& chunkName,
                         const Limits& limits)
{
    if (Load(thread, "return " + text, chunkName, limits))
        return true;
    if (Load(thread, text, chunkName, limits)) {
        lua_remove(thread, -2);
        return true;
    }
    const bool statements =
        LooksLikeStatements(text, lua_tostring(thread, -2), lua_tostring(thread, -1));
    lua_remove(thread, statements ? -2 : -1);
    return false;
}

} // namespace Marlox
