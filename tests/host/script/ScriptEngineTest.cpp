#include "CommaLocale.h"
#include "ScriptBench.h"
#include "host/Rows.h"

#include <thread>

#include <QElapsedTimer>

using namespace Marlox;

namespace {

/// A host object that tells when it goes.
class Probe : public Object {
public:
    Probe() { ++alive; }
    ~Probe() override { --alive; }
    static inline int alive = 0;
    double size = 1.0;
};

} // namespace

/// Scripts by themselves: running, stopping, failing, and values of the host. Controls in scripts
/// have a test of their own.
class ScriptEngineTest : public ScriptBench {
    Q_OBJECT

private slots:
    void RunsTextAndFiles()
    {
        const ScriptResult several = engine_->RunText("1 + 1, 'x', nil, print");
        QVERIFY(several.ok);
        QCOMPARE(several.values.size(), std::size_t(4));
        QCOMPARE(several.values[0].ToNumber(), 2.0);
        QCOMPARE(several.texts.mid(0, 3), QStringList({"2", "x", "nil"}));
        QVERIFY(several.values[3].IsNil() && several.texts[3].startsWith("function"));
        QVERIFY(Run("counter = 1"));
        QVERIFY(engine_->RunText("for i = 1, 3 do counter = counter + i end").values.empty());
        QCOMPARE(engine_->GetGlobal("counter").ToNumber(), 7.0); // globals stay
        engine_->SetGlobal("settings.size", ScriptVal(4));
        QCOMPARE(Number("settings.size * string.len('abc')"), 12.0);
        QVERIFY(engine_->GetGlobal("none.size").IsNil());
        QVERIFY(Value("none == nil").ToBool()); // asking makes nothing

        QTemporaryDir folder;
        QFile file(folder.filePath("a script.lua"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/usr/bin/env script\nlocal function deep()\n  error('no ' .. ...)\nend\n"
                   "return deep('x')\n");
        file.close();
        const ScriptResult failed = engine_->RunFile(file.fileName());
        QVERIFY(!failed.ok);
        QCOMPARE(failed.file, file.fileName());
        QCOMPARE(failed.line, 3);
        const ScriptResult missing = engine_->RunFile(folder.filePath("none.lua"));
        QVERIFY(!missing.ok && missing.Error().contains("none.lua: can't be read"));
    }

    void TellsWhereItFailed_data()
    {
        const Rows<QString, QString> row("text", "expected");
        row("error", "\nerror('broken')", "console:2: broken");
        row("assert", "local a = 1\nassert(a == 2)", "console:2: assertion failed!");
        row("assert with text", "assert(false, 'not equal')", "console:1: not equal");
        row("blamed on the caller", "local function check() error('wrong', 2) end\n\ncheck()",
            "console:3: wrong");
        row("in a function", "local function f()\n local x = nil + 1\nend\nf()",
            "console:2: attempt to perform arithmetic on a nil value");
        row("syntax", "local a = 1\nlocal b = = 2", "console:2: unexpected symbol near '='");
        row("no text", "error({})", "console:1: a table");
        row("native", "\n\nFail()", "console:3: no such thing");
        row("native, not ours", "Range()", "console:1: basic_string");
        row("native, of no class", "Odd()", "console:1: the operation failed");
        row("recursion", "local function f() return 1 + f() end f()", "console:1: stack overflow");
    }
    void TellsWhereItFailed()
    {
        engine_->AddFunction("Fail", [](ScriptCall&) { throw ScriptError("no such thing"); });
        engine_->AddFunction("Range", [](ScriptCall&) { std::string().at(5); });
        engine_->AddFunction("Odd", [](ScriptCall&) { throw 5; });
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const QString error = Error(text);
        QVERIFY2(error.startsWith(expected), qPrintable(error));
        QCOMPARE(String("select(2, pcall(Fail))"), QString("no such thing")); // and all goes on
    }

    void TellsTheWayThere()
    {
        const QString way = engine_
                                ->RunText("function inner() error('x') end\n"
                                          "function outer() inner() end\nouter()")
                                .traceback;
        QVERIFY(way.contains("console:1: in \"inner\""));
        QVERIFY(way.contains("console:2: in \"outer\""));
        QVERIFY(way.contains("console:3: in the script itself"));
    }

    void PrintsToTheApplication()
    {
        QStringList lines;
        engine_->SetPrint([&](const QString& line) { lines.append(line); });
        QVERIFY(Run("print('a', 1.5, nil, true) print() print('ä')"));
        QCOMPARE(lines, QStringList({"a\t1.5\tnil\ttrue", "", "ä"}));
    }

    void CallsNativeFunctions()
    {
        engine_->AddFunction("app.Echo", [](ScriptCall& call) {
            for (int i = 1; i <= call.Count(); ++i)
                call.Return(call.Value(i));
        });
        engine_->AddFunction("app.Sum", [](ScriptCall& call) {
            call.Return(ScriptVal(call.Number(1) + call.Integer(2, 10)));
        });
        QCOMPARE(Number("app.Sum(1)"), 11.0);
        QCOMPARE(Number("app.Sum(1, 2)"), 3.0);
        const auto echoed =
            engine_->RunText("app.Echo({1, {2, x = 'y'}, z = true}, nil, 'a\\0b')").values;
        QCOMPARE(echoed.size(), std::size_t(3));
        QCOMPARE(echoed[0].At(2).Get("x").ToString(), std::string("y"));
        QVERIFY(echoed[0].Get("z").ToBool());
        QCOMPARE(echoed[2].ToString(), std::string("a\0b", 3));
        const auto names = engine_->Names();
        for (const char* name : {"app.Echo", "app.Sum", "create", "Object:GetAttrs"})
            QVERIFY(std::find(names.begin(), names.end(), name) != names.end());
    }

    void ChecksArguments()
    {
        engine_->AddFunction("Take", [](ScriptCall& call) {
            call.Number(1);
            call.Integer(2);
            call.Text(3);
            call.Flag(4);
            call.Table(5);
            call.Function(6);
            call.Object<Probe>(7);
        });
        Fails({{"Take('x')", "Take: argument 1: number expected, not string"},
               {"Take()", "Take: argument 1: number expected, not nothing"},
               {"Take(1, 1.5)", "Take: argument 2: whole number expected, not number"},
               {"Take(1, 1, {})", "Take: argument 3: text expected, not table"},
               {"Take(1, 1, 'x', 'yes')", "Take: argument 4: boolean expected, not string"},
               {"Take(1, 1, 'x', true, 5)", "Take: argument 5: table expected, not number"},
               {"Take(1, 1, 'x', true, {a = {b = print}})",
                "Take: argument 5: a.b: a function can't be kept as a value"},
               {"Take(1, 1, 'x', true, {}, 5)", "Take: argument 6: function expected, not number"},
               {"Take(1, 1, 'x', true, {}, print, {})",
                "Take: argument 7: another object expected, not table"}});
    }

    void NestsAndKeepsFunctions()
    {
        engine_->AddFunction("Run", [](ScriptCall& call) {
            const ScriptResult inner = call.Engine().RunText(call.String(1), "inner");
            call.Return(inner.ok ? inner.values.front() : ScriptVal(inner.Error().toStdString()));
        });
        ScriptFunction kept;
        engine_->AddFunction("Keep", [&](ScriptCall& call) { kept = call.Function(1); });
        QCOMPARE(Number("Run('Run(\"1 + 1\") + 1') + 1"), 4.0);
        QCOMPARE(String("Run('error(\"x\")')"), QString("inner:1: x"));
        // From within a coroutine, too.
        QCOMPARE(Number("coroutine.wrap(function() return Run('5') end)()"), 5.0);

        QVERIFY(Run("local n = 0 Keep(function(by) n = n + by return n end)"));
        QVERIFY(Run("collectgarbage()"));
        QCOMPARE(kept({ScriptVal(2)}).values.front().ToNumber(), 2.0);
        QCOMPARE(kept({ScriptVal(3)}).values.front().ToNumber(), 5.0);
        QVERIFY(!kept({}).ok); // "by" is nil
        QVERIFY(!ScriptFunction()().ok);
        engine_.reset();
        QVERIFY(!kept({ScriptVal(1)}).ok); // outlived its script
    }

    void StopsScripts_data()
    {
        const Rows<QString> row("text");
        row("loop", "while true do end");
        row("catching", "while true do pcall(function() while true do end end) end");
        row("catching deep",
            "local function f() pcall(f) while true do end end while true do pcall(f) end");
        row("coroutines", "while true do coroutine.wrap(function() pcall(function() while true do "
                          "end end) end)() end");
    }
    void StopsScripts()
    {
        QFETCH(QString, text);
        engine_->SetTimeLimit(std::chrono::milliseconds(50));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(Error(text).endsWith("stopped: it takes too long"));
        QVERIFY(timer.elapsed() < 5000);
        engine_->SetTimeLimit(std::chrono::milliseconds(0));

        std::thread other([&] {
            while (!engine_->IsRunning())
                std::this_thread::yield();
            engine_->Interrupt();
        });
        const QString error = Error(text);
        other.join();
        QVERIFY(error.endsWith("stopped"));

        int idle = 0;
        engine_->SetIdle([&] {
            if (++idle == 20)
                engine_->Interrupt();
        });
        QVERIFY(Error(text).endsWith("stopped"));
        QCOMPARE(Number("1"), 1.0);
    }

    void LeavesWhenTheScriptExits()
    {
        const ScriptResult left = engine_->RunText("x = 1 pcall(os.exit, 3) while true do end");
        QCOMPARE(left.exitCode, std::optional<int>(3));
        QVERIFY(!left.ok);
        QVERIFY(Run("os.exit()"));
        QVERIFY(!engine_->RunText("1").exitCode);
    }

    void IgnoresTheLocale()
    {
        const CommaLocale comma;
        if (!comma.IsActive())
            QSKIP("no locale with a decimal comma can be had here");
        QCOMPARE(String("tostring(1.5) .. tonumber('2.5')"), QString("1.52.5"));
        QCOMPARE(engine_->RunText("1.5").texts, QStringList("1.5"));
    }

    void BindsClasses()
    {
        const auto size = [](ScriptCall& call) { call.Return(ScriptVal(call.Self<Probe>().size)); };
        ScriptClass& base = engine_->AddClass<Probe>("Shape");
        base.Method("Grow",
                    [](ScriptCall& call) { call.Self<Probe>().size *= call.Number(1, 2.0); });
        base.Property("area", size);
        engine_->AddClass<Probe>("Square", "Shape").Property("size", size, [](ScriptCall& call) {
            call.Self<Probe>().size = call.Number(1);
        });
        engine_->AddClass<QObject>("Other").Method("Foreign", [](ScriptCall&) {});
        const auto probe = MakeRef<Probe>();
        engine_->SetGlobalObject("probe", probe.Get());
        QObject qt;
        engine_->SetGlobalObject("other", &qt);

        QVERIFY(Run("probe:Grow() probe:Grow(5) probe.size = probe.size + 1"));
        QCOMPARE(probe->size, 11.0);
        QCOMPARE(Number("probe.area"), 11.0);
        Fails({{"probe.area = 5", "Shape.area can't be set"},
               {"probe:Shrink()", "Square has no \"Shrink\""},
               {"probe.Grow()", "this is called on an object: object:Name(...)"},
               {"other.Foreign(probe)", "Other:Foreign is not for a Square"},
               {"probe:Grow('x')", "Shape:Grow: argument 1: number expected, not string"}});
        QVERIFY(String("tostring(probe)").startsWith("Square: "));
        QCOMPARE(String("getmetatable(probe)"), QString("Square"));
        QVERIFY(Value("probe") == ScriptVal(probe.Get()));
        engine_.reset();
    }

    void KeepsHostObjectsAlive()
    {
        auto probe = MakeRef<Probe>();
        engine_->SetGlobalObject("a", probe.Get());
        QVERIFY(Run("list = {a}"));
        engine_->SetGlobalObject("b", probe.Get());
        QVERIFY(Value("a == b and list[1] == b").ToBool()); // one object, one value
        QCOMPARE(probe->RefCount(), 2);
        probe = nullptr;
        QVERIFY(Run("a = nil b = nil collectgarbage()"));
        QCOMPARE(Probe::alive, 1);
        QVERIFY(Run("list = nil collectgarbage()"));
        QCOMPARE(Probe::alive, 0);

        probe = MakeRef<Probe>();
        engine_->SetGlobalObject("a", probe.Get());
        engine_.reset();
        QCOMPARE(probe->RefCount(), 1);
    }

    void NeverHoldsQtObjects()
    {
        auto object = std::make_unique<QObject>();
        object->setObjectName("first");
        engine_->SetGlobalObject("object", object.get());
        QCOMPARE(String("object.objectName"), QString("first"));
        QVERIFY(Value("isvalid(object)").ToBool());
        object.reset();
        QVERIFY(!Value("isvalid(object)").ToBool(true));
        Fails({{"return object.objectName", "this QtObject is gone"}});
        QVERIFY(String("tostring(object)").endsWith("(gone)"));
    }

    void ReadsAndWritesQtProperties()
    {
        QWidget widget;
        engine_->SetGlobalObject("widget", &widget);
        QVERIFY(Run("widget.windowTitle = 'Title' widget.minimumWidth = 20 "
                    "widget.geometry = {1, 2, 30, 40} widget.enabled = false"));
        QCOMPARE(widget.windowTitle(), QStringLiteral("Title"));
        QCOMPARE(widget.minimumWidth(), 20);
        QCOMPARE(widget.geometry(), QRect(1, 2, 30, 40));
        QVERIFY(!widget.isEnabled());
        QCOMPARE(Number("widget.size[2] + widget.x"), 41.0);
        Fails({{"widget.minimumWidth = 1.5", "QtObject.minimumWidth: the value does not fit"},
               {"widget.windowTitle = 5", "QtObject.windowTitle: the value does not fit"},
               {"widget.x = 5", "QtObject.x: it can only be read"},
               {"widget.colour = 5", "QtObject.colour: there is no such property"}});
    }
};

QTEST_MAIN(ScriptEngineTest)
#include "ScriptEngineTest.moc"
