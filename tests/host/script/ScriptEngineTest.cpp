#include "CommaLocale.h"

#include "script/ScriptEngine.h"
#include "script/ScriptSystem.h"
#include "system/base/HostTags.h"
#include "system/base/Registry.h"
#include "system/controls/InputControl.h"
#include "system/viewer/PreviewControl.h"

#include <thread>

#include <QElapsedTimer>
#include <QPointer>
#include <QtTest>

using namespace Marlox;

namespace {

constexpr u32 EC_Ticks = 0x10050000;
constexpr u32 ECS_Low = 0x30050002;
constexpr u32 ECS_Name = 0x30050003;
constexpr TagMapEntry editNames[] = {
    {"EC_Ticks", EC_Ticks}, {"ECS_Low", ECS_Low}, {"ECS_Name", ECS_Name, {}, true}, {}};

MxID mappedCall; // the last call that the mapper was asked for

bool MapEdit(const MxID& call, bool toScript, ScriptVal& values, TagList& tags)
{
    mappedCall = call;
    return scriptval_maptags(editNames, toScript, values, tags);
}

/// An inspector control and an overlay as a plug-in has them. The overlay's script type has another
/// name than its class id.
class EditControl : public InputControl {
public:
    EditControl(const Registry* record, const ScriptVal& creator, const TagList& attributes)
        : InputControl(record, creator, attributes)
    {
        made_.Merge(attributes);
    }
    ~EditControl() override { --alive; }
    u64 DoTagList(unsigned int command, TagList& tags) override
    {
        const u32 tag = u32(tags.First()->tag);
        tags.Clear();
        for (const TagPair* pair = made_.Find(tag); pair; pair = made_.FindNext(pair))
            tags.AddCopy(tag, pair->value.text);
        return command == CommandGetRepeated && tags.Count() > 0;
    }
    static inline int alive = 0;

private:
    TagList made_;
};

class MarkControl : public PreviewControl {
public:
    using PreviewControl::PreviewControl;
    ~MarkControl() override { --alive; }
    static inline int alive = 0;
};

template <class Control>
Object* Make(const Registry* record, const ScriptVal& creator, const TagList& attributes)
{
    ++Control::alive;
    return new Control(record, creator, attributes);
}

bool Double(Object&, const ScriptVal& arguments, ScriptVal& result)
{
    result = ScriptVal(arguments.At(1).ToNumber() * 2);
    return arguments.At(1).IsNumber();
}
const ScriptOperation operations[] = {{"Double", Double}, {nullptr, nullptr}};
const ScriptInfo editInfo = {1, "EditControl", "", "", operations};

const TagPair editTags[] = {{REG_Kind, u32(ClassKind::InputControl)},
                            {REG_Parent, static_cast<const void*>(&InputControl::ClassID)},
                            {REG_ScriptInfo, static_cast<const void*>(&editInfo)},
                            {REG_Create, &Make<EditControl>},
                            {REG_TagMapper, &MapEdit},
                            {0, 0}};
const TagPair markTags[] = {{REG_Kind, u32(ClassKind::PreviewControl)},
                            {REG_Parent, static_cast<const void*>(&PreviewControl::ClassID)},
                            {REG_Create, &Make<MarkControl>},
                            {0, 0}};

/// Everything that a plug-in with the two classes registers.
struct Plugin {
    Registry edit{"EditControl", editTags};
    Registry mark{"CubeControl", markTags};
    FFIType editType{"EditControl", "EditControl", "InputControl", -1, 0, nullptr};
    FFIType markType{"MarkControl", "MarkControl", "PreviewControl", -1, 0, nullptr};
    FFIFunc editCast{&editType, "_cast", "ffi_EditControl_cast", ""};
    FFIFunc editUncast{&editType, "_uncast", "ffi_EditControl_uncast", ""};
    FFIFunc markCast{&markType, "_cast", "ffi_MarkControl_cast", ""};
    FFITagMap editMap{&editType, "Create", editNames, "InputControl.Create"};

    Plugin() // in static memory, as a library's: see Load
    {
        SetFFIType(typeid(EditControl), &editType);
        SetFFIType(typeid(MarkControl), &markType);
    }
};

/// The plug-in is loaded while this lives.
class Load {
public:
    Load() { plugin_.emplace(); }
    ~Load() { plugin_.reset(); }

private:
    static inline std::optional<Plugin> plugin_;
};

template <class Control>
void* CastTo(void* object)
{
    return object ? dynamic_cast<Control*>(static_cast<ScriptObject*>(object)) : nullptr;
}

/// A host object that tells when it goes.
class Probe : public Object {
public:
    ~Probe() override { --alive; }
    static inline int alive = 0;
    double size = 1.0;
};

} // namespace

extern "C" Q_DECL_EXPORT void* ffi_EditControl_cast(void* object)
{
    return CastTo<EditControl>(object);
}
extern "C" Q_DECL_EXPORT void* ffi_MarkControl_cast(void* object)
{
    return CastTo<MarkControl>(object);
}
extern "C" Q_DECL_EXPORT void* ffi_EditControl_uncast(void* self)
{
    return static_cast<ScriptObject*>(static_cast<EditControl*>(self));
}

class ScriptEngineTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void cleanupTestCase() { UninstallScripting(); }
    void init() { engine_ = std::make_unique<ScriptEngine>(); }
    void cleanup() { engine_.reset(); }

    void RunsTextAndFiles();
    void TellsWhereItFailed_data();
    void TellsWhereItFailed();
    void PrintsToTheApplication();
    void CallsNativeFunctions();
    void ChecksArguments_data();
    void ChecksArguments();
    void NativeErrorsBecomeScriptErrors();
    void NestsAndKeepsFunctions();
    void StopsScripts_data();
    void StopsScripts();
    void LeavesWhenTheScriptExits();
    void IgnoresTheLocale();
    void BindsClasses();
    void KeepsHostObjectsAlive();
    void NeverHoldsQtObjects();
    void ReadsAndWritesQtProperties();
    void ListsAndCreatesControls();
    void RefusesWrongAttributes_data();
    void RefusesWrongAttributes();
    void ReadsAndWritesAttributes();
    void CastsControls();
    void LetsGoBeforeUnloading();

private:
    /// The only result of a text that must run.
    ScriptVal Value(const QString& text)
    {
        const ScriptResult result = engine_->RunText(text);
        if (!result.ok)
            qWarning("%s", qPrintable(result.Error()));
        return result.values.empty() ? ScriptVal() : result.values.front();
    }
    QString Error(const QString& text) { return engine_->RunText(text).Error(); }

    std::unique_ptr<ScriptEngine> engine_;
};

void ScriptEngineTest::RunsTextAndFiles()
{
    const ScriptResult several = engine_->RunText("1 + 1, 'x', nil, print");
    QVERIFY(several.ok);
    QCOMPARE(several.values.size(), std::size_t(4));
    QCOMPARE(several.values[0].ToNumber(), 2.0);
    QCOMPARE(several.texts.mid(0, 3), QStringList({"2", "x", "nil"}));
    QVERIFY(several.values[3].IsNil() && several.texts[3].startsWith("function"));
    QVERIFY(engine_->RunText("counter = 1").ok);
    QVERIFY(engine_->RunText("for i = 1, 3 do counter = counter + i end").values.empty());
    QCOMPARE(engine_->GetGlobal("counter").ToNumber(), 7.0); // globals stay
    engine_->SetGlobal("settings.size", ScriptVal(4));
    QCOMPARE(Value("settings.size * string.len('abc')").ToNumber(), 12.0);
    QVERIFY(engine_->GetGlobal("none.size").IsNil());
    QVERIFY(Value("none == nil").ToBool()); // asking makes nothing

    QTemporaryDir folder;
    const QString path = folder.filePath("a script.lua");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("#!/usr/bin/env script\nlocal function deep()\n  error('no ' .. ...)\nend\n"
               "return deep('x')\n");
    file.close();
    const ScriptResult failed = engine_->RunFile(path);
    QVERIFY(!failed.ok);
    QCOMPARE(failed.file, path);
    QCOMPARE(failed.line, 3);
    const ScriptResult missing = engine_->RunFile(folder.filePath("none.lua"));
    QVERIFY(!missing.ok && missing.Error().contains("none.lua: can't be read"));
}

void ScriptEngineTest::TellsWhereItFailed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("error") << "\nerror('broken')"
                           << "console:2: broken";
    QTest::newRow("assert") << "local a = 1\nassert(a == 2)"
                            << "console:2: assertion failed!";
    QTest::newRow("assert with text") << "assert(false, 'not equal')"
                                      << "console:1: not equal";
    QTest::newRow("blamed on the caller")
        << "local function check() error('wrong', 2) end\n\ncheck()"
        << "console:3: wrong";
    QTest::newRow("in a function") << "local function f()\n local x = nil + 1\nend\nf()"
                                   << "console:2: attempt to perform arithmetic on a nil value";
    QTest::newRow("syntax") << "local a = 1\nlocal b = = 2"
                            << "console:2: unexpected symbol near '='";
    QTest::newRow("no text") << "error({})"
                             << "console:1: a table";
    QTest::newRow("native") << "\n\ncreate('Nothing')"
                            << "console:3: there is no control class \"Nothing\"";
    QTest::newRow("recursion") << "local function f() return 1 + f() end f()"
                               << "console:1: stack overflow";
}

void ScriptEngineTest::TellsWhereItFailed()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const ScriptResult result = engine_->RunText(text);
    QVERIFY(!result.ok);
    QVERIFY2(result.Error().startsWith(expected), qPrintable(result.Error()));
    QVERIFY(engine_->RunText("1").ok); // and all goes on

    const ScriptResult traced =
        engine_->RunText("function inner() error('x') end\nfunction outer() inner() end\nouter()");
    QVERIFY(traced.traceback.contains("console:1: in \"inner\""));
    QVERIFY(traced.traceback.contains("console:2: in \"outer\""));
    QVERIFY(traced.traceback.contains("console:3: in the script itself"));
}

void ScriptEngineTest::PrintsToTheApplication()
{
    QStringList lines;
    engine_->SetPrint([&](const QString& line) { lines.append(line); });
    QVERIFY(engine_->RunText("print('a', 1.5, nil, true) print() print('ä')").ok);
    QCOMPARE(lines, QStringList({"a\t1.5\tnil\ttrue", "", "ä"}));
}

void ScriptEngineTest::CallsNativeFunctions()
{
    engine_->AddFunction("app.Echo", [](ScriptCall& call) {
        for (int i = 1; i <= call.Count(); ++i)
            call.Return(call.Value(i));
    });
    engine_->AddFunction("app.Sum", [](ScriptCall& call) {
        call.Return(ScriptVal(call.Number(1) + call.Integer(2, 10)));
    });
    QCOMPARE(Value("app.Sum(1)").ToNumber(), 11.0);
    QCOMPARE(Value("app.Sum(1, 2)").ToNumber(), 3.0);
    const ScriptResult echoed =
        engine_->RunText("app.Echo({1, {2, x = 'y'}, z = true}, nil, 'a\\0b')");
    QCOMPARE(echoed.values.size(), std::size_t(3));
    QCOMPARE(echoed.values[0].At(2).Get("x").ToString(), std::string("y"));
    QVERIFY(echoed.values[0].Get("z").ToBool());
    QCOMPARE(echoed.values[2].ToString(), std::string("a\0b", 3));
    const auto names = engine_->Names();
    for (const char* name : {"app.Echo", "app.Sum", "create", "Object:GetAttrs"})
        QVERIFY(std::find(names.begin(), names.end(), name) != names.end());
}

void ScriptEngineTest::ChecksArguments_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("expected");
    QTest::newRow("number") << "'x'"
                            << "Take: argument 1: number expected, not string";
    QTest::newRow("missing") << ""
                             << "Take: argument 1: number expected, not nothing";
    QTest::newRow("whole number") << "1, 1.5"
                                  << "Take: argument 2: whole number expected, not number";
    QTest::newRow("text") << "1, 1, {}"
                          << "Take: argument 3: text expected, not table";
    QTest::newRow("flag") << "1, 1, 'x', 'yes'"
                          << "Take: argument 4: boolean expected, not string";
    QTest::newRow("table") << "1, 1, 'x', true, 5"
                           << "Take: argument 5: table expected, not number";
    QTest::newRow("no value") << "1, 1, 'x', true, {a = {b = print}}"
                              << "Take: argument 5: a.b: a function can't be kept as a value";
    QTest::newRow("function") << "1, 1, 'x', true, {}, 5"
                              << "Take: argument 6: function expected, not number";
    QTest::newRow("object") << "1, 1, 'x', true, {}, print, {}"
                            << "Take: argument 7: another object expected, not table";
}

void ScriptEngineTest::ChecksArguments()
{
    QFETCH(QString, arguments);
    QFETCH(QString, expected);
    engine_->AddFunction("Take", [](ScriptCall& call) {
        call.Number(1);
        call.Integer(2);
        call.Text(3);
        call.Flag(4);
        call.Table(5);
        call.Function(6);
        call.Object<Probe>(7);
    });
    QCOMPARE(Error("Take(" + arguments + ")"), "console:1: " + expected);
}

void ScriptEngineTest::NativeErrorsBecomeScriptErrors()
{
    engine_->AddFunction("Fail", [](ScriptCall&) { throw ScriptError("no such thing"); });
    engine_->AddFunction("Range", [](ScriptCall&) { std::string().at(5); });
    engine_->AddFunction("Odd", [](ScriptCall&) { throw 5; });
    QCOMPARE(Error("\nFail()"), QStringLiteral("console:2: no such thing"));
    QVERIFY(Error("Range()").startsWith("console:1: basic_string"));
    QCOMPARE(Error("Odd()"), QStringLiteral("console:1: the operation failed"));
    QCOMPARE(Value("select(2, pcall(Fail))").ToString(), std::string("no such thing"));
    QVERIFY(Value("pcall(Fail) == false and 'on'").IsString());
}

void ScriptEngineTest::NestsAndKeepsFunctions()
{
    engine_->AddFunction("Run", [](ScriptCall& call) {
        const ScriptResult inner = call.Engine().RunText(call.String(1), "inner");
        call.Return(inner.ok ? inner.values.front() : ScriptVal(inner.Error().toStdString()));
    });
    ScriptFunction kept;
    engine_->AddFunction("Keep", [&](ScriptCall& call) { kept = call.Function(1); });
    QCOMPARE(Value("Run('Run(\"1 + 1\") + 1') + 1").ToNumber(), 4.0);
    QCOMPARE(Value("Run('error(\"x\")')").ToString(), std::string("inner:1: x"));
    // From within a coroutine, too.
    QCOMPARE(Value("coroutine.wrap(function() return Run('5') end)()").ToNumber(), 5.0);

    QVERIFY(engine_->RunText("local n = 0 Keep(function(by) n = n + by return n end)").ok);
    QVERIFY(engine_->RunText("collectgarbage()").ok);
    QCOMPARE(kept({ScriptVal(2)}).values.front().ToNumber(), 2.0);
    QCOMPARE(kept({ScriptVal(3)}).values.front().ToNumber(), 5.0);
    QVERIFY(!kept({}).ok); // "by" is nil
    QVERIFY(!ScriptFunction()().ok);
    engine_.reset();
    QVERIFY(!kept({ScriptVal(1)}).ok); // outlived its script
}

void ScriptEngineTest::StopsScripts_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("loop") << "while true do end";
    QTest::newRow("catching") << "while true do pcall(function() while true do end end) end";
    QTest::newRow("catching deep")
        << "local function f() pcall(f) while true do end end while true do pcall(f) end";
    QTest::newRow("coroutines") << "while true do coroutine.wrap(function() pcall(function() while "
                                   "true do end end) end)() end";
}

void ScriptEngineTest::StopsScripts()
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
    QCOMPARE(Value("1").ToNumber(), 1.0);
}

void ScriptEngineTest::LeavesWhenTheScriptExits()
{
    const ScriptResult left = engine_->RunText("x = 1 pcall(os.exit, 3) while true do end");
    QCOMPARE(left.exitCode, std::optional<int>(3));
    QVERIFY(!left.ok);
    QVERIFY(engine_->RunText("os.exit()").ok);
    QVERIFY(!engine_->RunText("1").exitCode);
}

void ScriptEngineTest::IgnoresTheLocale()
{
    const CommaLocale comma;
    if (!comma.IsActive())
        QSKIP("no locale with a decimal comma can be had here");
    QCOMPARE(Value("tostring(1.5) .. tonumber('2.5')").ToString(), std::string("1.52.5"));
    QCOMPARE(engine_->RunText("1.5").texts, QStringList("1.5"));
}

void ScriptEngineTest::BindsClasses()
{
    ++Probe::alive;
    const Ref<Probe> probe(new Probe);
    ScriptClass& base = engine_->AddClass<Probe>("Shape");
    base.Method("Grow", [](ScriptCall& call) { call.Self<Probe>().size *= call.Number(1, 2.0); });
    base.Property("area",
                  [](ScriptCall& call) { call.Return(ScriptVal(call.Self<Probe>().size)); });
    ScriptClass& derived = engine_->AddClass<Probe>("Square", "Shape");
    derived.Property(
        "size", [](ScriptCall& call) { call.Return(ScriptVal(call.Self<Probe>().size)); },
        [](ScriptCall& call) { call.Self<Probe>().size = call.Number(1); });
    engine_->AddClass<QObject>("Other").Method("Foreign", [](ScriptCall&) {});
    engine_->SetGlobalObject("probe", probe.Get());
    QObject qt;
    engine_->SetGlobalObject("other", &qt);

    QVERIFY(engine_->RunText("probe:Grow() probe:Grow(5) probe.size = probe.size + 1").ok);
    QCOMPARE(probe->size, 11.0);
    QCOMPARE(Value("probe.area").ToNumber(), 11.0);
    QCOMPARE(Error("probe.area = 5"), QStringLiteral("console:1: Shape.area can't be set"));
    QCOMPARE(Error("probe:Shrink()"), QStringLiteral("console:1: Square has no \"Shrink\""));
    QCOMPARE(Error("probe.Grow()"),
             QStringLiteral("console:1: this is called on an object: object:Name(...)"));
    QCOMPARE(Error("other.Foreign(probe)"), QStringLiteral("console:1: Other:Foreign is not for a "
                                                           "Square"));
    QCOMPARE(Error("probe:Grow('x')"), QStringLiteral("console:1: Shape:Grow: argument 1: number "
                                                      "expected, not string"));
    QVERIFY(Value("tostring(probe)").ToString().starts_with("Square: "));
    QCOMPARE(Value("getmetatable(probe)").ToString(), std::string("Square"));
    QVERIFY(Value("probe") == ScriptVal(probe.Get()));
    engine_.reset();
}

void ScriptEngineTest::KeepsHostObjectsAlive()
{
    ++Probe::alive;
    Ref<Probe> probe(new Probe);
    engine_->SetGlobalObject("a", probe.Get());
    QVERIFY(engine_->RunText("list = {a}").ok);
    engine_->SetGlobalObject("b", probe.Get());
    QVERIFY(Value("a == b and list[1] == b").ToBool()); // one object, one value
    QCOMPARE(probe->RefCount(), 2);
    probe = nullptr;
    QCOMPARE(Probe::alive, 1);
    QVERIFY(engine_->RunText("a = nil b = nil collectgarbage()").ok);
    QCOMPARE(Probe::alive, 1);
    QVERIFY(engine_->RunText("list = nil collectgarbage()").ok);
    QCOMPARE(Probe::alive, 0);

    ++Probe::alive;
    probe = Ref<Probe>(new Probe);
    engine_->SetGlobalObject("a", probe.Get());
    engine_.reset();
    QCOMPARE(probe->RefCount(), 1);
}

void ScriptEngineTest::NeverHoldsQtObjects()
{
    auto object = std::make_unique<QObject>();
    object->setObjectName("first");
    engine_->SetGlobalObject("object", object.get());
    QCOMPARE(Value("object.objectName").ToString(), std::string("first"));
    QVERIFY(Value("isvalid(object)").ToBool());
    object.reset();
    QVERIFY(!Value("isvalid(object)").ToBool(true));
    QCOMPARE(Error("return object.objectName"), QStringLiteral("console:1: this QtObject is gone"));
    QVERIFY(Value("tostring(object)").ToString().ends_with("(gone)"));

    // A control: host object and widget at once. It goes with whoever owns it.
    const Load plugin;
    Ref<Object> control(ClassRegistry::Global().Create("EditControl"));
    auto* edit = dynamic_cast<EditControl*>(control.Get());
    engine_->SetGlobalObject("control", edit);
    QCOMPARE(control->RefCount(), 1);
    QVERIFY(Value("isvalid(control)").ToBool());
    control = nullptr;
    QCOMPARE(EditControl::alive, 0);
    QVERIFY(!Value("isvalid(control)").ToBool(true));
    QVERIFY(engine_->RunText("control = nil collectgarbage()").ok);
}

void ScriptEngineTest::ReadsAndWritesQtProperties()
{
    QWidget widget;
    engine_->SetGlobalObject("widget", &widget);
    QVERIFY(engine_
                ->RunText("widget.windowTitle = 'Title' widget.minimumWidth = 20 "
                          "widget.geometry = {1, 2, 30, 40} widget.enabled = false")
                .ok);
    QCOMPARE(widget.windowTitle(), QStringLiteral("Title"));
    QCOMPARE(widget.minimumWidth(), 20);
    QCOMPARE(widget.geometry(), QRect(1, 2, 30, 40));
    QVERIFY(!widget.isEnabled());
    QCOMPARE(Value("widget.size[2] + widget.x").ToNumber(), 41.0);
    QCOMPARE(Error("widget.minimumWidth = 1.5"),
             QStringLiteral("console:1: QtObject.minimumWidth: the value does not fit"));
    QCOMPARE(Error("widget.windowTitle = 5"),
             QStringLiteral("console:1: QtObject.windowTitle: the value does not fit"));
    QCOMPARE(Error("widget.x = 5"), QStringLiteral("console:1: QtObject.x: it can only be read"));
    QCOMPARE(Error("widget.colour = 5"),
             QStringLiteral("console:1: QtObject.colour: there is no such property"));
}

void ScriptEngineTest::ListsAndCreatesControls()
{
    const Load plugin;
    const ScriptVal list = Value("classes()");
    QCOMPARE(list.Length(), std::size_t(2));
    QCOMPARE(list.At(1).Get("id").ToString(), std::string("EditControl"));
    QCOMPARE(list.At(1).Get("parent").ToString(), std::string("InputControl"));
    QCOMPARE(list.At(2).Get("kind").ToString(), std::string("PreviewControl"));
    QCOMPARE(list.At(2).Get("type").ToString(), std::string("MarkControl")); // by its class
    QVERIFY(list.At(1).Get("specified").ToBool());
    QCOMPARE(MarkControl::alive, 0);

    QVERIFY(engine_
                ->RunText("edit = create('EditControl', {EC_Ticks = 5, ECS_Low = 'low', "
                          "IAD_Minimum = -1, IC_Disabled = true})")
                .ok);
    QCOMPARE(mappedCall, MxID("Create"));
    const ScriptVal made = Value("edit");
    auto* edit = dynamic_cast<EditControl*>(made.ToObject());
    QVERIFY(edit);
    QCOMPARE(edit->GetAttr(EC_Ticks), int64(5));
    QCOMPARE(std::string(edit->GetAttrS(ECS_Low)), std::string("low"));
    QCOMPARE(edit->GetAttrD(IAD_Minimum), -1.0);
    QCOMPARE(Value("edit:Double(21)").ToNumber(), 42.0); // an operation of the class
    QCOMPARE(Error("edit:Double()"), QStringLiteral("console:1: Double failed"));

    QVERIFY(engine_
                ->RunText("user = usercontrol{Control = 'EditControl', Name = 'Strength',"
                          " EC_Ticks = 3}")
                .ok);
    QCOMPARE(mappedCall, MxID("UserControl"));
    const auto* user = dynamic_cast<EditControl*>(Value("user").ToObject());
    QVERIFY(user && std::string(user->GetAttrS(IAS_Name)) == "Strength");
    QVERIFY(Error("usercontrol{Name = 'x'}").contains("a control needs Control"));

    for (const char* name : {"CubeControl", "MarkControl"}) // by class id and by script type
        QVERIFY(Value(QStringLiteral("create('%1')").arg(name)).ToObject());
    QCOMPARE(EditControl::alive, 2);
    QVERIFY(engine_->RunText("edit = nil user = nil collectgarbage()").ok); // scripts own them
    QCOMPARE(EditControl::alive, 0);
    QCOMPARE(MarkControl::alive, 0);
}

void ScriptEngineTest::RefusesWrongAttributes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("unknown") << "create('EditControl', {EC_Tick = 5})"
                             << "EditControl has no attribute \"EC_Tick\"";
    QTest::newRow("misfit") << "create('EditControl', {EC_Ticks = 1.5})"
                            << "the value of \"EC_Ticks\" does not fit";
    QTest::newRow("misfit of a shared one") << "create('EditControl', {IAD_Minimum = 'x'})"
                                            << "the value of \"IAD_Minimum\" does not fit";
    QTest::newRow("another's") << "create('CubeControl', {EC_Ticks = 5})"
                               << "CubeControl has no attribute \"EC_Ticks\"";
    QTest::newRow("list") << "create('EditControl', {5})"
                          << "attributes are written Name = value";
    QTest::newRow("class") << "create('None')"
                           << "there is no control class \"None\"";
    QTest::newRow("get") << "create('EditControl'):GetAttrs{'Nothing'}"
                         << "there is no attribute \"Nothing\"";
    QTest::newRow("set") << "create('EditControl'):SetAttrs{Nothing = 1}"
                         << "EditControl has no attribute \"Nothing\"";
    QTest::newRow("type") << "cast(create('EditControl'), 'None')"
                          << "there is no script type \"None\"";
}

void ScriptEngineTest::RefusesWrongAttributes()
{
    const Load plugin;
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(Error(text), "console:1: " + expected);
    engine_->ReleaseObjects();
    QCOMPARE(EditControl::alive + MarkControl::alive, 0);
}

void ScriptEngineTest::ReadsAndWritesAttributes()
{
    const Load plugin;
    // As an application has it: attributes are there whatever it made of controls.
    engine_->AddClass<QWidget>("Widget");
    engine_->AddClass<InputControl>("Control", "Widget");
    QVERIFY(engine_->RunText("edit = create('EditControl', {ECS_Low = 'low'})").ok);
    QVERIFY(Value("tostring(edit)").ToString().starts_with("Control: "));
    QVERIFY(engine_->RunText("edit:SetAttrs{ECS_Low = 'other', IAD_Maximum = 2.5}").ok);
    QCOMPARE(mappedCall, MxID("SetAttrs"));
    const ScriptVal read = Value("edit:GetAttrs{'ECS_Low', 'IAD_Maximum', 'EC_Ticks'}");
    QCOMPARE(mappedCall, MxID("GetAttrs"));
    QCOMPARE(read.Fields().size(), std::size_t(2)); // it has no ticks
    QCOMPARE(read.Get("ECS_Low").ToString(), std::string("other"));
    QCOMPARE(read.Get("IAD_Maximum").ToNumber(), 2.5);
    const ScriptVal all = Value("edit:GetAttrs()");
    QCOMPARE(all.Get("ECS_Low").ToString(), std::string("other"));
    QVERIFY(all.Get("IC_TabStop").IsNumber());
    QVERIFY(all.Get("ECS_Name").IsNil());
    QVERIFY(engine_->RunText("edit = create('EditControl', {ECS_Name = {'one', 'two'}})").ok);
    const ScriptVal names = Value("edit:GetAttrs{'ECS_Name'}").Get("ECS_Name");
    QCOMPARE(names.Length(), std::size_t(2));
    QCOMPARE(names.At(2).ToString(), std::string("two"));
    engine_->ReleaseObjects();
}

void ScriptEngineTest::CastsControls()
{
    const Load plugin;
    QVERIFY(engine_->RunText("edit = create('EditControl') mark = create('MarkControl')").ok);
    QVERIFY(
        Value("cast(edit, 'MarkControl') == nil and cast(mark, 'EditControl') == nil").ToBool());
    QVERIFY(engine_->RunText("pointer = cast(edit, 'EditControl')").ok);
    QVERIFY(Value("tostring(pointer)").ToString().starts_with("EditControl: "));
    QCOMPARE(Value("pointer:Double(4)").ToNumber(), 8.0);
    QVERIFY(Value("uncast(pointer) == edit and uncast(edit) == edit").ToBool());
    QVERIFY(engine_->RunText("edit = nil collectgarbage()").ok);
    QCOMPARE(EditControl::alive, 0);
    QCOMPARE(Error("return uncast(pointer)"),
             QStringLiteral("console:1: argument 1: a host object expected"));
    engine_->ReleaseObjects();
}

void ScriptEngineTest::LetsGoBeforeUnloading()
{
    {
        const Load plugin;
        QVERIFY(engine_
                    ->RunText("edit = create('EditControl') mark = create('MarkControl')"
                              " pointer = cast(mark, 'MarkControl')")
                    .ok);
        engine_->ReleaseObjects();
        QCOMPARE(EditControl::alive + MarkControl::alive, 0);
    }
    QVERIFY(!Value("isvalid(edit) or isvalid(mark) or isvalid(pointer)").ToBool(true));
    QVERIFY(Error("mark:GetAttrs()").endsWith("is gone"));
    QCOMPARE(Value("#classes()").ToNumber(), 0.0);
}

QTEST_MAIN(ScriptEngineTest)
#include "ScriptEngineTest.moc"
