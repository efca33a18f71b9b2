#include "CommaLocale.h"

#include "host/Rows.h"
#include "host/TestTools.h"
#include "script/ScriptSystem.h"

#include <cmath>

#include <QElapsedTimer>
#include <QtTest>

using namespace Marlox;

/// Expressions of the tools of a document: two gains, the second with a blank in its name.
class ExpressionsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void cleanupTestCase() { UninstallScripting(); }
    void init();
    void cleanup() { document_.reset(); }
    void Computes_data();
    void Computes();
    void GivesTheKindOfItsResult();
    void FollowsOtherExpressions();
    void NamesLineAndFault_data();
    void NamesLineAndFault();
    void EndsInTime_data();
    void EndsInTime();
    void SurvivesLongChains();
    void EndsWhenShortOnesMultiply();
    void RecoversFromFaults();
    void ChangesNothingOutside_data();
    void ChangesNothingOutside();
    void IgnoresTheLocale();
    void RandomNumbersAreSpreadAndRepeat();
    void TellsExpressionsFromNumbers_data();
    void TellsExpressionsFromNumbers();

private:
    Ref<Parameter> Evaluate(const std::string& text, double time = 10.0, QString* error = nullptr)
    {
        return ScriptServices::Installed()->Evaluate(*tool_->FindInput("Gain"), text, time, error);
    }
    double Number(const std::string& text, double time = 10.0)
    {
        QString error;
        const Ref<Parameter> value = Evaluate(text, time, &error);
        if (!value)
            qWarning("%s", qPrintable(error));
        return NumberOf(value.Get(), std::nan(""));
    }

    TestTools classes_;
    std::unique_ptr<MarloxDoc> document_;
    Operator* tool_ = nullptr;
    Operator* other_ = nullptr;
};

void ExpressionsTest::init()
{
    document_ = std::make_unique<MarloxDoc>();
    tool_ = document_->AddTool(TestTools::gainClass);
    other_ = document_->AddTool(TestTools::gainClass);
    QVERIFY(other_->SetName("Soft Glow"));
    QVERIFY(other_->FindInput("Gain")->SetValue(Marlox::Number(4.0), 0.0));
    QVERIFY(tool_->FindInput("Count")->SetValue(Marlox::Number(3.0), 0.0));
}

void ExpressionsTest::Computes_data()
{
    const Rows<QString, double> row("text", "expected"); // at frame 10
    row("time", "time * 2 + 1", 21.0);
    row("with =", "  = time / 4", 2.5);
    row("statements", "local a = time\nif a > 5 then a = a - 5 end\nreturn a", 5.0);
    row("own input", "Count * 2", 6.0);
    row("own input through self", "self.Count + self['Count']", 6.0);
    row("own point", "Center.X + Center.Y", 0.75);
    row("other tool", "Soft_Glow.Gain", 4.0);
    row("other tool by its name", "tool('Soft Glow').Gain", 4.0);
    row("frame rate", "fps", 24.0);
    row("functions", "sin(pi / 2) + floor(2.7) + max(1, 5, 3) - min(4, 2)", 6.0);
    row("also by library", "math.sqrt(16) + math.max(1, 2)", 6.0);
    row("clamp", "clamp(time, 0, 3) + clamp(-1, 0, 3)", 3.0);
    row("lerp", "lerp(10, 20, 0.25)", 12.5);
    row("smoothstep", "smoothstep(0, 20, time)", 0.5);
    row("smoothstep of no width", "smoothstep(5, 5, 4) + smoothstep(5, 5, 5)", 1.0);
    row("iif", "iif(time > 5, 1, 2) + iif(0, 10, 20) + iif(false, 100, 200)", 221.0);
    row("mod", "mod(-1, 3) + mod(7, 3)", 3.0);
    row("round", "round(2.5) + round(-2.5) + sign(-7) + frac(-0.25)", -0.25);
    row("log", "log(8, 2) + log10(100)", 5.0);
    row("truth", "time > 5", 1.0);
    row("texts", "len('abc') + tonumber('1.5') + tonumber(sub('x27y', 2, 3))", 31.5);
}

void ExpressionsTest::Computes()
{
    QFETCH(QString, text);
    QTEST(Number(text.toStdString()), "expected");
    QTEST(Number(text.toStdString()), "expected"); // once more, compiled already
}

void ExpressionsTest::GivesTheKindOfItsResult()
{
    const Ref<Parameter> list = Evaluate("{time / 100, 0.5}");
    const auto* point = dynamic_cast<Point*>(list.Get());
    QVERIFY(point);
    QCOMPARE(point->X(), 0.1);
    const Ref<Parameter> input = Evaluate("Center");
    QVERIFY(input && input->IsEqual(*tool_->FindInput("Center")->GetValue(10.0)));

    const Ref<Parameter> text = Evaluate("format('frame %04d, ', time) .. Caption");
    QVERIFY(text && text->IsEqual(Text("frame 0010, untitled")));
    QVERIFY(tool_->FindInput("Caption")->SetExpression("time + 0.5")); // numbers become texts there
    QVERIFY(tool_->FindInput("Caption")->GetValue(10.0)->IsEqual(Text("10.5")));
}

void ExpressionsTest::FollowsOtherExpressions()
{
    Input* gain = tool_->FindInput("Gain");
    Input* otherGain = other_->FindInput("Gain");
    QVERIFY(otherGain->SetExpression("time + 1"));
    QVERIFY(gain->SetExpression("Soft_Glow.Gain * 2"));
    QCOMPARE(gain->GetNumber(10.0), 22.0);
    QCOMPARE(gain->GetNumber(20.0), 42.0);

    QString name = QStringLiteral("TestGain1"); // in a circle both fail, and both say so
    QCOMPARE(tool_->GetName(), name);
    QVERIFY(otherGain->SetExpression("TestGain1.Gain + 1"));
    gain->GetNumber(30.0);
    QVERIFY(!gain->ExpressionError().isEmpty());
    otherGain->GetNumber(30.0);
    QVERIFY(!otherGain->ExpressionError().isEmpty());
}

void ExpressionsTest::NamesLineAndFault_data()
{
    const Rows<QString, QString> row("text", "expected");
    row("syntax", "time +", "line 1: unexpected symbol near '<eof>'");
    row("second line", "local a = 1\nreturn a + nobody", "line 2: unknown name \"nobody\"");
    row("unknown input", "Soft_Glow.Size", "line 1: Soft Glow has no input \"Size\"");
    row("unknown tool", "tool('Blur').Size", "line 1: there is no tool \"Blur\"");
    row("image", "Input", "line 1: Input is neither a number, a point nor a text");
    row("argument", "sin('x')", "line 1: bad argument #1 to 'sin' (number expected, got string)");
    row("arithmetic", "Center + 1",
        "line 1: attempt to perform arithmetic on global 'Center' (a table value)");
    row("nothing", "local a = 1", "no value results");
    row("empty", " = ", "the expression is empty");
    row("infinite", "1 / 0", "the result is not a finite number");
    row("not a number", "sqrt(-1)", "the result is not a finite number");
    row("half a point", "{1}", "a point is two finite numbers: {x, y}");
    row("function", "sin", "the result is a function, not a number, a point or a text");
    row("compiled", "\x1bLua", "line 1: unexpected symbol near 'char(27)'");
}

void ExpressionsTest::NamesLineAndFault()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!Evaluate(text.toStdString(), 10.0, &error));
    QTEST(error, "expected");
}

void ExpressionsTest::EndsInTime_data()
{
    const Rows<QString> row("text");
    row("loop", "while true do end");
    row("repeat", "repeat until false");
    row("recursion", "local function f() return f() + 1 end return f()");
    row("tail calls", "local function f() return f() end return f()");
    row("text", "local s = 'x' while true do s = s .. s end");
    row("table", "local t = {} local i = 0 while true do i = i + 1 t[i] = i end");
    row("inputs", "while true do local g = Soft_Glow.Gain end");
}

void ExpressionsTest::EndsInTime()
{
    QFETCH(QString, text);
    QString error;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!Evaluate(text.toStdString(), 10.0, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY2(timer.elapsed() < 2000, "the interface hangs"); // 50 ms, on a machine that is busy
}

void ExpressionsTest::SurvivesLongChains()
{
    // Each tool takes its gain from the one before.
    const int length = 100;
    std::vector<Operator*> tools{tool_};
    for (int i = 1; i < length; ++i) {
        tools.push_back(document_->AddTool(TestTools::gainClass));
        QVERIFY(tools.back()->FindInput("Gain")->SetExpression(
            tools[std::size_t(i - 1)]->GetName().toStdString() + ".Gain + 1"));
    }
    QVERIFY(tool_->FindInput("Gain")->SetValue(Marlox::Number(7.0), 0.0));
    QCOMPARE(tools.back()->FindInput("Gain")->GetNumber(0.0), 7.0 + length - 1);
    QCOMPARE(tools.back()->FindInput("Gain")->ExpressionError(), QString());
    // An endless one at the far end stops them all together, not one after the other.
    QVERIFY(tool_->FindInput("Gain")->SetExpression("while true do end"));
    QElapsedTimer timer;
    timer.start();
    tools.back()->FindInput("Gain")->GetNumber(1.0);
    QVERIFY(!tools.back()->FindInput("Gain")->ExpressionError().isEmpty());
    QVERIFY(timer.elapsed() < 2000);
}

void ExpressionsTest::EndsWhenShortOnesMultiply()
{
    // Each asks twice for the one before: 2 to the power of 40 short evaluations.
    Operator* before = tool_;
    for (int i = 0; i < 40; ++i) {
        Operator* tool = document_->AddTool(TestTools::gainClass);
        const std::string gain = before->GetName().toStdString() + ".Gain";
        QVERIFY(tool->FindInput("Gain")->SetExpression(gain + " - " + gain));
        before = tool;
    }
    QElapsedTimer timer;
    timer.start();
    before->FindInput("Gain")->GetNumber(0.0);
    QVERIFY(!before->FindInput("Gain")->ExpressionError().isEmpty());
    QVERIFY(timer.elapsed() < 2000);
}

void ExpressionsTest::RecoversFromFaults()
{
    for (int i = 0; i < 3; ++i) {
        QVERIFY(!Evaluate("while true do end"));
        QCOMPARE(Number("time"), 10.0);
        QVERIFY(!Evaluate("local s = 'x' while true do s = s .. s end"));
        QCOMPARE(Number("len(sub('abcdef', 2)) + time"), 15.0);
    }
    for (int i = 0; i < 5000; ++i) // more than are kept compiled
        QCOMPARE(Number("time + " + std::to_string(i)), 10.0 + i);
}

void ExpressionsTest::ChangesNothingOutside_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("global") << "counter = 1 return counter";
    QTest::newRow("time") << "time = 5 return time";
    QTest::newRow("input") << "self.Gain = 5 return 1";
    QTest::newRow("function") << "math.sin = 5 return 1";
    for (const char* name : {"os",           "io",
                             "debug",        "package",
                             "_G",           "require",
                             "dofile",       "load",
                             "loadstring",   "setfenv",
                             "getfenv",      "setmetatable",
                             "getmetatable", "rawset",
                             "rawget",       "pcall",
                             "coroutine",    "collectgarbage",
                             "print",        "string.rep",
                             "string.dump",  "math.randomseed"})
        QTest::newRow(name) << QStringLiteral("return %1.x or 1").arg(name);
    QTest::newRow("methods of texts") << "('x'):rep(10)";
}

void ExpressionsTest::ChangesNothingOutside()
{
    QFETCH(QString, text);
    QString error;
    QVERIFY(!Evaluate(text.toStdString(), 10.0, &error));
    QVERIFY(!error.isEmpty());
    QCOMPARE(Number("sin(0) + time"), 10.0);
}

void ExpressionsTest::IgnoresTheLocale()
{
    const CommaLocale comma;
    if (!comma.IsActive())
        QSKIP("no locale with a decimal comma can be had here");
    QCOMPARE(Number("1.25 + tonumber('0.5')"), 1.75);
    const Ref<Parameter> text = Evaluate("tostring(1.5) .. ' ' .. 2.5 .. format(' %.1f', 3.5)");
    QVERIFY(text && text->IsEqual(Text("1.5 2.5 3.5")));
    QVERIFY(ScriptServices::Installed()->IsExpression("time + 1.5"));
}

void ExpressionsTest::RandomNumbersAreSpreadAndRepeat()
{
    int counts[10] = {};
    for (int seed = 0; seed < 1000; ++seed) {
        const double value = Number("rand(time)", seed);
        QVERIFY(value >= 0.0 && value < 1.0);
        ++counts[int(value * 10)];
    }
    for (int count : counts)
        QVERIFY(count > 60 && count < 140); // more than four standard deviations
    QCOMPARE(Number("rand(5)"), Number("rand(5)"));
    QVERIFY(Number("rand(5, 10, 20)") >= 10.0);
    QCOMPARE(Number("rand(-0) - rand(0)"), 0.0);
    // Noise is smooth and meets itself at whole numbers.
    for (double t = -3.0; t < 3.0; t += 0.01) {
        const double step = Number("noise(time + 0.01) - noise(time)", t);
        QVERIFY(std::fabs(step) < 0.05);
        QVERIFY(std::fabs(Number("noise(time, 3)", t)) <= 1.0);
    }
}

void ExpressionsTest::TellsExpressionsFromNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    for (const char* text : {"time", "time*2", "sin(1)", "=1+1", " = 5", "= broken +",
                             "Blur1.Size / 2", "return time", "-Gain", "iif(time > 1, 2, 3)"})
        QTest::newRow(text) << text << true;
    for (const char* text :
         {"", " ", "=", "1", "1.5", "1920/2", "+10%", "*2", "1e5", "0x1F", "1,5", "12:05", "10 px",
          "5f", "time +", "'time'", "true", "(1 + 2) * 3", "local a = 5"})
        QTest::newRow(*text ? text : "empty") << text << false;
}

void ExpressionsTest::TellsExpressionsFromNumbers()
{
    QFETCH(QString, text);
    QTEST(ScriptServices::Installed()->IsExpression(text), "expected");
}

QTEST_GUILESS_MAIN(ExpressionsTest)
#include "ExpressionsTest.moc"
