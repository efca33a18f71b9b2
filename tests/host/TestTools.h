#pragma once

#include "system/base/Registry.h"
#include "system/base/ScriptServices.h"
#include "system/document/MarloxDoc.h"

#include <functional>
#include <memory>

/// Small tools for tests of values, documents and rendering. Registered while a TestTools lives.
namespace Marlox {

/// What TestGain processes do besides their work, and what they did.
struct TestWork {
    std::function<void(RenderContext&)> during; // called on the render thread
    std::atomic<int> runs{0};
    std::atomic<int> rows{0};

    static TestWork& Global();
};

/// A source: an image of one colour, 64 x 32 at full resolution. Inputs: "Level" (Number, every
/// channel), "Width" (Number).
/// A gain: multiplies by "Gain" (Number, default 1, from -1000 to 1000). Further inputs: "Input",
/// "Mask", "Center" (Point), "Caption" (Text, default "untitled"), "Count" (integer, 0 to 10),
/// "Passive" (passive Number), "Fixed" (not animatable), "Sealed" (read-only).
class TestTools {
public:
    static constexpr char sourceClass[] = "TestSource";
    static constexpr char gainClass[] = "TestGain";

    TestTools();
    ~TestTools();

private:
    std::unique_ptr<Registry> source_;
    std::unique_ptr<Registry> gain_;
};

/// Script services of a test: expressions are answered by a function. In fields, texts with "time"
/// in them are expressions.
class TestScript : public ScriptServices {
public:
    using Answer =
        std::function<Ref<Parameter>(const Input&, const std::string&, double, QString*)>;

    explicit TestScript(Answer answer) : answer_(std::move(answer)), before_(Installed())
    {
        Install(this);
    }
    ~TestScript() override { Install(before_); }

    bool ParseValue(const std::string&, ScriptVal&, QString*) override { return false; }
    std::string FormatValue(const ScriptVal&, bool) override { return {}; }
    LayoutObj* BuildLayout(const ScriptVal&, QWidget*, LayoutCallback, void*, QString*) override
    {
        return nullptr;
    }
    Ref<Parameter> Evaluate(const Input& input, const std::string& expression, double time,
                            QString* error) override
    {
        return answer_(input, expression, time, error);
    }
    bool IsExpression(const QString& text) override { return text.contains("time"); }
    int PushObject(lua_State*, LuaClass&) override { return 0; }

private:
    Answer answer_;
    ScriptServices* before_;
};

} // namespace Marlox
