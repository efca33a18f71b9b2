#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

struct lua_Debug;
struct lua_State;

namespace Marlox {

/// A Lua interpreter whose scripts run under limits. It opens no libraries. The memory limit holds
/// only while a script itself runs: native code called from it must stand in a Native scope, so
/// that no failed allocation can jump over its frames.
class LuaState {
public:
    using Clock = std::chrono::steady_clock;

    /// What a run may use; 0 means any amount.
    struct Limits {
        std::size_t bytes = 0; // held by the whole interpreter
        std::int64_t instructions = 0;
        std::chrono::milliseconds time{0};
    };

    LuaState();
    ~LuaState();
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    lua_State* Get() const { return state_; }
    /// The interpreter that a state (or a coroutine of it) belongs to. Only for states made here.
    static LuaState& Of(lua_State* state);

    /// A run of several calls: their limits are those given here and count together, and a
    /// Cancel() between the calls stops the next one. Within a running one it changes nothing.
    class Session {
    public:
        Session(LuaState& owner, const Limits& limits);
        ~Session();
        Session(const Session&) = delete;
        Session& operator=(const Session&) = delete;

    private:
        LuaState& owner_;
    };

    /// Calls the function below its `arguments` on top of `thread`'s stack, in protected mode and
    /// under `limits`, with all results left on the stack, or the error value. Inside a call that
    /// runs already, the outer limits stay. True if it ended well. `handler` is the stack position
    /// of a message handler or 0.
    bool Call(lua_State* thread, int arguments, const Limits& limits, int handler = 0);
    /// Compiles text under the name shown in messages; the function, or the error text, is pushed.
    /// Compiled chunks in binary form are refused.
    bool Load(lua_State* thread, const std::string& text, const std::string& chunkName,
              const Limits& limits);
    /// The same for text that may be a bare expression as well as statements.
    bool LoadValue(lua_State* thread, const std::string& text, const std::string& chunkName,
                   const Limits& limits);

    /// Stops the running script at its next instruction, with this text. Any thread.
    void Cancel() { cancelled_ = true; }
    bool IsRunning() const { return depth_ > 0; }
    std::size_t UsedBytes() const { return used_; }
    /// Called every thousand instructions of a running script, outside of limits. Must not throw.
    void SetIdle(void (*idle)(void*), void* context);

    /// Scope of native code that a script called: it may allocate without limit.
    class Native {
    public:
        explicit Native(lua_State* state);
        ~Native() { owner_.enforced_ = enforced_; }
        Native(const Native&) = delete;
        Native& operator=(const Native&) = delete;

    private:
        LuaState& owner_;
        bool enforced_;
    };

private:
    class Run;
    static void* Allocate(void* owner, void* block, std::size_t oldSize, std::size_t newSize);
    static void OnCount(lua_State* state, lua_Debug* event);
    const char* Exceeded() const;

    lua_State* state_ = nullptr;
    std::size_t used_ = 0;
    Limits limits_;
    bool enforced_ = false;
    bool stopped_ = false;
    std::atomic<int> depth_{0};
    std::int64_t instructions_ = 0;
    Clock::time_point deadline_;
    std::atomic<bool> cancelled_{false};
    void (*idle_)(void*) = nullptr;
    void* idleContext_ = nullptr;
};

} // namespace Marlox
