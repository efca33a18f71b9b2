#include "CommaLocale.h"
#include "host/Rows.h"

#include "script/ScriptSystem.h"
#include "system/base/ScriptServices.h"

#include <cmath>
#include <limits>
#include <random>

#include <QElapsedTimer>
#include <QtTest>

using namespace Marlox;

namespace {

ScriptVal Parse(const std::string& text)
{
    ScriptVal value("not parsed");
    QString error;
    if (!ScriptServices::Installed()->ParseValue(text, value, &error))
        qWarning("%s", qPrintable(error));
    return value;
}

std::string Format(const ScriptVal& value, bool indented = false)
{
    return ScriptServices::Installed()->FormatValue(value, indented);
}

/// Every kind of value, nested.
ScriptVal Everything()
{
    ScriptVal inner = ScriptVal::MakeTable();
    inner.Append(ScriptVal(0.1));
    inner.Append(ScriptVal());
    inner.Append(ScriptVal(-1e300));
    inner.Set("end", ScriptVal(true)); // a word of the language
    inner.Set("two words", ScriptVal(false));
    inner.Set("", ScriptVal(1));
    ScriptVal all = ScriptVal::MakeTable();
    all.Append(inner);
    static constexpr char odd[] = "quotes \" ' \\ lines\n\r tabs\t zero\0one \x7f \xc3\xa4";
    all.Append(ScriptVal(std::string(odd, sizeof odd - 1)));
    all.Set("inner", inner.Clone());
    all.Set("huge", ScriptVal(std::numeric_limits<double>::infinity()));
    all.Set("low", ScriptVal(-std::numeric_limits<double>::infinity()));
    all.Set("empty", ScriptVal::MakeTable());
    all.Set("digits", ScriptVal("\0011"));
    return all;
}

} // namespace

class ScriptValuesTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void cleanupTestCase() { UninstallScripting(); }
    void RoundTripsValues();
    void RoundTripsNumbers();
    void ReadsWhatPeopleWrite();
    void WritesTheSameEverywhere();
    void IgnoresTheLocale();
    void NamesLineAndFault_data();
    void NamesLineAndFault();
    void StandsHostileText_data();
    void StandsHostileText();
    void ReadsLargeTables();
};

void ScriptValuesTest::RoundTripsValues()
{
    const ScriptVal all = Everything();
    for (bool indented : {false, true}) {
        const std::string text = Format(all, indented);
        QVERIFY(Parse(text) == all);
        QVERIFY(Parse("return " + text + ";") == all);
        QCOMPARE(text.find('\n') != std::string::npos, indented);
    }
    for (const ScriptVal& value : {ScriptVal(), ScriptVal(false), ScriptVal("x"), ScriptVal(2.5)})
        QVERIFY(Parse(Format(value)) == value);
    QVERIFY(std::isnan(Parse(Format(ScriptVal(std::nan("")))).ToNumber()));
    QVERIFY(std::signbit(Parse(Format(ScriptVal(-0.0))).ToNumber()));
}

void ScriptValuesTest::RoundTripsNumbers()
{
    std::mt19937_64 random(11);
    ScriptVal numbers = ScriptVal::MakeTable();
    for (double number : {5e-324, 2.2250738585072014e-308, 1.7976931348623157e308, 1.0 / 3.0, 1e23,
                          4503599627370497.5, 0.1 + 0.2})
        numbers.Append(ScriptVal(number));
    while (numbers.Length() < 5000) {
        const double number = std::bit_cast<double>(random());
        if (std::isfinite(number))
            numbers.Append(ScriptVal(number));
    }
    QVERIFY(Parse(Format(numbers, true)) == numbers);
    QCOMPARE(Format(ScriptVal(0.1)), std::string("0.1")); // no more digits than it takes
}

void ScriptValuesTest::ReadsWhatPeopleWrite()
{
    const ScriptVal value = Parse("-- a comment\n"
                                  "{ 0x1F, .5, 5., 1e3, [[\nlong]], [==[a]]b]==], 'it' == 1,\n"
                                  "  --[[ another ]] name = 1; ['a b'] = 2, [9 - 1] = 8,\n"
                                  "  size = 1920/2, }");
    QCOMPARE(value.Length(), std::size_t(8));
    QCOMPARE(value.At(1).ToNumber(), 31.0);
    QCOMPARE(value.At(4).ToNumber(), 1000.0);
    QCOMPARE(value.At(5).ToString(), std::string("long"));
    QCOMPARE(value.At(6).ToString(), std::string("a]]b"));
    QCOMPARE(value.At(8).ToNumber(), 8.0);
    QCOMPARE(value.Get("a b").ToNumber(), 2.0);
    QCOMPARE(value.Get("size").ToNumber(), 960.0);
    // A script may use a table twice; fields of a plain table keep the order they are written in.
    const ScriptVal twice = Parse("local row = {1, 2} return {row, row}");
    QCOMPARE(twice.At(2).At(2).ToNumber(), 2.0);
    const ScriptVal plain = Parse("{[1] = 'a', z = 1, a = 2, m = 3, [2] = 'b', z = 4}");
    QCOMPARE(Format(plain), std::string("{\"a\", \"b\", z = 4, a = 2, m = 3}"));
    QCOMPARE(Parse("\xef\xbb\xbf{7}").At(1).ToNumber(), 7.0);
}

void ScriptValuesTest::WritesTheSameEverywhere()
{
    QCOMPARE(Format(Parse("{a = {1, 2}, b = {{3}, 'x'}, 5}"), true),
             std::string("{\n    5,\n    a = {1, 2},\n    b = {\n        {3},\n        \"x\",\n"
                         "    },\n}"));
}

void ScriptValuesTest::IgnoresTheLocale()
{
    const CommaLocale comma;
    if (!comma.IsActive())
        QSKIP("no locale with a decimal comma can be had here");
    QCOMPARE(QByteArray::number(std::strtod("1.5", nullptr)), QByteArray("1")); // it really is one
    QCOMPARE(Format(ScriptVal(1234.5)), std::string("1234.5"));
    QCOMPARE(Parse("{1.5, 2}").At(1).ToNumber(), 1.5);
    QCOMPARE(Parse("1.5 + 0.25").ToNumber(), 1.75); // as a script, not a literal
    QCOMPARE(Parse("'' .. 1.5").ToString(), std::string("1.5"));
    QVERIFY(Parse(Format(Everything())) == Everything());
    QCOMPARE(*std::localeconv()->decimal_point, ','); // left as it was
}

void ScriptValuesTest::NamesLineAndFault_data()
{
    const Rows<QString, QString> row("text", "expected");
    row("open", "{1,\n2,\n3", "line 3: '}' expected (to close '{' at line 1) near '<eof>'");
    row("comma", "{1,\n2 3}", "line 2: '}' expected (to close '{' at line 1) near '3'");
    row("statement", "return {\n x = 1 +\n}", "line 3: unexpected symbol near '}'");
    row("library", "\nreturn os.time()", "line 2: \"os\" is no value that is known here");
    row("function", "{x = {y = function() end}}", "x.y: a function can't be kept as a value");
    row("empty", "-- nothing", "no value is returned");
    row("two", "return 1, 2", "more than one value is returned");
    row("key", "{[1.5] = 1}", "keys are names or positions from 1");
    row("gaps", "{[1000] = 1}", "the list has large gaps");
    row("compiled", "\x1bLuaQ", "line 1: unexpected symbol near 'char(27)'");
}

void ScriptValuesTest::NamesLineAndFault()
{
    QFETCH(QString, text);
    ScriptVal value("before");
    QString error;
    QVERIFY(!ScriptServices::Installed()->ParseValue(text.toStdString(), value, &error));
    QTEST(error, "expected");
    QCOMPARE(value.ToString(), std::string("before"));
}

void ScriptValuesTest::StandsHostileText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("loop") << "while true do end";
    QTest::newRow("recursion") << "local function f() return f() + 1 end return f()";
    QTest::newRow("memory") << "local s = 'x' while true do s = s .. s end";
    QTest::newRow("table in itself") << "local t = {} t.t = t return t";
    QTest::newRow("shared ten times at nine levels")
        << "local a = {1} for i = 1, 9 do a = {a,a,a,a,a,a,a,a,a,a} end return a";
    QTest::newRow("deep") << QString(100000, '{');
    QTest::newRow("deep and closed") << QString(500, '{') + QString(500, '}');
    QTest::newRow("signs") << QStringLiteral("- ").repeated(100000) + "1";
    QTest::newRow("brackets") << QStringLiteral("{[").repeated(50000);
    QTest::newRow("parentheses") << QString(100000, '(');
}

void ScriptValuesTest::StandsHostileText()
{
    QFETCH(QString, text);
    ScriptVal value;
    QString error;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!ScriptServices::Installed()->ParseValue(text.toStdString(), value, &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(timer.elapsed() < 20000); // most take a fraction of a second, but on a busy machine
}

void ScriptValuesTest::ReadsLargeTables()
{
    // More different numbers than one script can hold.
    ScriptVal keys = ScriptVal::MakeTable();
    for (int i = 0; i < 300000; ++i)
        keys.Append(ScriptVal(i * 1.25));
    const std::string text = Format(keys);
    QVERIFY(Parse(text) == keys);
    QString error;
    ScriptVal value;
    QVERIFY(!ScriptServices::Installed()->ParseValue(text + "}", value, &error));
    QCOMPARE(error, QStringLiteral("line 1: the end of the text expected behind the value"));
}

QTEST_GUILESS_MAIN(ScriptValuesTest)
#include "ScriptValuesTest.moc"
