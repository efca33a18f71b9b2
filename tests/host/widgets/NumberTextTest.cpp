// What number fields read and write, without a window.
#include "system/widgets/Arithmetic.h"
#include "system/widgets/NumberEntry.h"
#include "system/widgets/NumberFormat.h"

#include <cmath>
#include <limits>

#include <QtTest>

using namespace Marlox;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

} // namespace

class NumberTextTest : public QObject {
    Q_OBJECT
private slots:
    void Reads_data();
    void Reads();
    void Refuses_data();
    void Refuses();
    void NestingIsBounded();
    void ReadsTimes();
    void Formats();
    void FormatsTimes();
    void WrittenNumbersReadBack();
    void EntryAccepts();
    void EntryReadsExpressions();
    void EntryStepsSuitTheRange();
    void DigitAtCursor();
    void ShortensWhatIsShown();
};

void NumberTextTest::Reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("result"); // with 40 shown
    const auto row = [](const char* text, double result) { QTest::newRow(text) << text << result; };
    row("1920/2", 960);
    row("(1+2)*3", 9);
    row("1 + 2 * 3 - 4 / 2", 5);
    row("8/4/2", 1);
    row("2^3^2", 512);
    row("-2^2", -4);
    row("2^-1", 0.5);
    row("5--3", 8);
    row(" ( ( 7 ) ) ", 7);
    // Numbers alone, with either decimal mark.
    row("-5", -5);
    row("+5", 5);
    row("1.25", 1.25);
    row("1,25", 1.25);
    row(".5", 0.5);
    row("5.", 5);
    row("1,5+2.5", 4);
    row("1e-3", 0.001);
    row("1.5E+2", 150);
    // On the shown value.
    row("*2", 80);
    row("/2", 20);
    row("*2+1", 81);
    row("+=5", 45);
    row("-=3", 37);
    row("*=1+1", 80);
    row("/=4", 10);
    row("+= 2*3", 46);
    row("+10%", 44);
    row("-10%", 36);
    row("-10%+1", 37);
    row("50%", 20);
    row("*50%", 20);
    row("+=10%", 44);
    // Percent within a sum or a product.
    row("200+10%", 220);
    row("200-10%", 180);
    row("80*50%", 40);
    row("(100+10%)*2", 220);
    // As copied from elsewhere.
    QTest::newRow("minus sign") << QString::fromUtf8("\u22125") << -5.0;
    QTest::newRow("times sign") << QString::fromUtf8("2\u00d73") << 6.0;
    QTest::newRow("division sign") << QString::fromUtf8("6\u00f73") << 2.0;
    QTest::newRow("narrow blank") << QString::fromUtf8("6\u202f+\u00a01") << 7.0;
}

void NumberTextTest::Reads()
{
    QFETCH(QString, text);
    QFETCH(double, result);
    const ArithmeticResult read = EvaluateArithmetic(text, 40.0);
    QVERIFY2(read.value.has_value(), qPrintable(read.error));
    QVERIFY2(std::abs(*read.value - result) < 1e-12, qPrintable(QString::number(*read.value)));
}

void NumberTextTest::Refuses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("at");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* text, int at, const char* reason) {
        QTest::newRow(*text ? text : "blank") << text << at << reason;
    };
    row("", 0, "A number is missing at the end.");
    row("5+", 2, "A number is missing at the end.");
    row("(1+2", 4, "A closing bracket is missing.");
    row("1+2)", 3, "There is a closing bracket too many.");
    row("1 920", 2, "An operator such as + or * is missing here.");
    row("5x", 1, "An operator such as + or * is missing here.");
    row("1e", 1, "An operator such as + or * is missing here.");
    row("abc", 0, "A number is expected where \"a\" stands.");
    row("2+*3", 2, "A number is expected where \"*\" stands.");
    row(".", 0, "A number is expected where \".\" stands.");
    row("1.2.3", 0, "This number has more than one decimal point or comma.");
    row("1,234.5", 0, "This number has more than one decimal point or comma.");
    row("1/0", 3, "This divides by zero.");
    row("/=0", 3, "This divides by zero.");
    row("1e308*10", 8, "The result is too large.");
    row("(0-8)^0.5", 9, "This power of a negative number does not exist.");
    row("1:12", 1, "An operator such as + or * is missing here."); // no time without a rate
}

void NumberTextTest::Refuses()
{
    QFETCH(QString, text);
    QFETCH(int, at);
    QFETCH(QString, reason);
    const ArithmeticResult read = EvaluateArithmetic(text, 40.0);
    QVERIFY(!read.value);
    QCOMPARE(read.error, reason);
    QCOMPARE(read.errorAt, at);
}

void NumberTextTest::NestingIsBounded()
{
    const auto nested = [](int depth) {
        return QString(depth, u'(') + u'1' + QString(depth, u')');
    };
    QCOMPARE(EvaluateArithmetic(nested(50), 0.0).value, std::optional(1.0));
    for (const QString& text : {nested(100000), QString(100000, u'-') + u'1'}) {
        const ArithmeticResult read = EvaluateArithmetic(text, 0.0);
        QVERIFY(!read.value);
        QCOMPARE(read.error, QString("There are too many brackets in each other."));
    }
}

void NumberTextTest::ReadsTimes()
{
    struct Case {
        const char* text;
        double rate;
        double frames; // NaN: refused
    };
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [text, rate, frames] :
         {Case{"00:01:02:03", 24.0, 62.0 * 24 + 3}, Case{"1:12", 24.0, 36.0},
          Case{"00:00:01;05", 30.0, 35.0}, Case{"90:00", 25.0, 2250.0}, Case{"0:01.5", 24.0, 1.5},
          Case{"1:00", 23.976, 24.0}, Case{"-1:00", 24.0, -24.0}, Case{"100", 24.0, 100.0},
          Case{"1:00+12", 24.0, 36.0}, Case{"+=1:00", 24.0, 64.0}, Case{"1:2:3:4:5", 24.0, none},
          Case{"1::3", 24.0, none}, Case{"1.5:03", 24.0, none}}) {
        const ArithmeticResult read = EvaluateArithmetic(text, 40.0, rate);
        QVERIFY2(read.value.has_value() != std::isnan(frames), text);
        if (read.value)
            QCOMPARE(*read.value, frames);
        else
            QCOMPARE(read.error, QString("Times are written as hours:minutes:seconds:frames."));
    }
}

void NumberTextTest::Formats()
{
    struct Case {
        double value;
        int precision;
        const char* text;
    };
    for (const auto& [value, precision, text] :
         {Case{0.5, -1, "0.5"},
          Case{0.5, 4, "0.5"},
          Case{2.0, 3, "2"},
          Case{100.0, 0, "100"},
          Case{0.1 + 0.2, -1, "0.3"},
          Case{1.0 / 3.0, -1, "0.3333333333"},
          Case{2.0 / 3.0, 2, "0.67"},
          Case{123456.789, -1, "123456.789"},
          Case{1234567890.125, -1, "1234567890.125"},
          Case{-1.25, 1, "-1.2"},
          Case{0.0004, 3, "0"},
          Case{-0.0004, 3, "0"},
          Case{-0.0, -1, "0"},
          Case{1e-9, -1, "0.000000001"},
          Case{1e-12, -1, "1e-12"},
          Case{-2.5e-20, -1, "-2.5e-20"},
          Case{1e-12, 6, "0"},
          Case{1e14, -1, "100000000000000"},
          Case{1e15, -1, "1e15"},
          Case{1.5e300, 3, "1.5e300"},
          Case{infinity, 2, "inf"},
          Case{-infinity, -1, "-inf"},
          Case{std::numeric_limits<double>::quiet_NaN(), -1, "nan"}})
        QCOMPARE(FormatNumber(value, precision), QString(text));
}

void NumberTextTest::FormatsTimes()
{
    struct Case {
        double frames;
        double rate;
        const char* text;
    };
    for (const auto& [frames, rate, text] :
         {Case{0.0, 24.0, "00:00:00:00"},
          Case{((1.0 * 60 + 2) * 60 + 3) * 25 + 4, 25.0, "01:02:03:04"},
          Case{-25.0, 24.0, "-00:00:01:01"}, Case{1.5, 24.0, "00:00:00:01.5"},
          Case{23.999, 24.0, "00:00:01:00"}, Case{-0.001, 24.0, "00:00:00:00"},
          Case{360000.0 * 24, 24.0, "100:00:00:00"}, Case{24.0, 23.976, "00:00:01:00"},
          Case{5.0, 0.0, "00:00:05:00"}, Case{1e20, 24.0, "1e20"}, Case{infinity, 24.0, "inf"}})
        QCOMPARE(FormatTimeCode(frames, rate), QString(text));
}

void NumberTextTest::WrittenNumbersReadBack()
{
    // Every text a field shows must be one it takes, and come to the same value again.
    for (const double value : {0.0, 1e-10, 0.1, 1.0 / 3.0, -7.25, 1e14 + 0.5, 3.5e-200, 1.25e250}) {
        const ArithmeticResult read = EvaluateArithmetic(FormatNumber(value), 0.0);
        QVERIFY2(read.value, qPrintable(FormatNumber(value)));
        QVERIFY2(std::abs(*read.value - value) <= std::max(1e-10, std::abs(value) * 1e-14),
                 qPrintable(FormatNumber(value)));
    }
    for (const double frames : {0.0, 1.0, 100.25, -86400.0, 5e6})
        QCOMPARE(ParseTimeCode(FormatTimeCode(frames, 24.0), 24.0), std::optional(frames));
}

void NumberTextTest::EntryAccepts()
{
    NumberEntry entry;
    entry.minimum = -1.5;
    entry.maximum = 2.5;
    QCOMPARE(entry.Accepted(7.0), 2.5);
    QCOMPARE(entry.Accepted(-7.0), -1.5);
    entry.integer = true;
    QCOMPARE(entry.Accepted(7.0), 2.0); // the whole numbers of the range, not its ends
    QCOMPARE(entry.Accepted(-7.0), -1.0);
    QCOMPARE(entry.Accepted(0.5), 1.0);
    QCOMPARE(entry.Accepted(-0.5), -1.0);
    entry.minimum = 0.2;
    entry.maximum = 0.8;
    QCOMPARE(entry.Accepted(7.0), 0.8);
}

void NumberTextTest::EntryReadsExpressions()
{
    using Kind = NumberEntry::Reading::Kind;
    QStringList asked;
    const auto isExpression = [&asked](const QString& text) {
        asked << text;
        return text.contains("time");
    };
    NumberEntry entry;
    entry.value = 8.0;
    entry.maximum = 100.0;
    NumberEntry::Reading read = entry.Read(" =*2 ", isExpression);
    QCOMPARE(read.kind, Kind::Number);
    QCOMPARE(read.value, 16.0);
    QCOMPARE(entry.Read("1000", isExpression).value, 100.0);
    QCOMPARE(entry.Read("   ", isExpression).kind, Kind::Nothing);
    QVERIFY(asked.isEmpty()); // arithmetic is never taken for an expression

    read = entry.Read("= time*2", isExpression);
    QCOMPARE(read.kind, Kind::Expression);
    QCOMPARE(read.text, QString("time*2"));
    read = entry.Read("  3+x", isExpression);
    QCOMPARE(read.kind, Kind::Unreadable);
    QCOMPARE(read.errorAt, 4); // counted in the text as typed
    QCOMPARE(entry.Read("time", {}).kind, Kind::Unreadable);
}

void NumberTextTest::EntryStepsSuitTheRange()
{
    NumberEntry entry;
    QCOMPARE(entry.Step(), 0.1);
    entry.minimum = 0.0;
    entry.maximum = 0.0; // nothing between the ends
    QCOMPARE(entry.Step(), 0.1);
    entry.integer = true;
    entry.maximum = 500.0;
    QCOMPARE(entry.DragStep(), 0.1); // ten pixels for a whole number
    entry.maximum = 5000.0;
    QCOMPARE(entry.DragStep(), 1.0); // yet long ranges are crossed in one sweep
    entry.step = 0.05;               // as given, but for whole numbers
    QCOMPARE(entry.Step(), 1.0);
    entry.integer = false;
    QCOMPARE(entry.Step(), 0.05);
    QCOMPARE(entry.DragStep(), 0.005);
}

void NumberTextTest::DigitAtCursor()
{
    constexpr int none = 99;
    struct Case {
        const char* text;
        int cursor;
        int power;
    };
    for (const auto& [text, cursor, power] :
         {Case{"120", 3, 0}, Case{"120", 1, 2}, Case{"120", 0, 2}, Case{"12.5", 3, 0},
          Case{"12.5", 4, -1}, Case{"-12.5", 1, 1}, Case{".25", 0, -1}, Case{"1e5", 3, none},
          Case{"inf", 1, none}, Case{"", 0, none}}) {
        DigitAt digit;
        QCOMPARE(DigitAt::Find(text, cursor, digit), power != none);
        if (power == none)
            continue;
        QCOMPARE(digit.power, power);
        // Behind the digit the same digit is found again.
        DigitAt again;
        QVERIFY(DigitAt::Find(text, digit.CursorIn(text), again));
        QCOMPARE(again.power, power);
    }
}

void NumberTextTest::ShortensWhatIsShown()
{
    struct Case {
        double value;
        int decimals;
        int room;
        const char* shown;
    };
    for (const Case& one :
         {Case{0.049123, 4, 7, "0.0491"}, Case{0.049123, -1, 7, "0.04912"},
          Case{-1234.5678, 4, 7, "-1234.6"}, Case{0.00004321, 3, 9, "0.000043"},
          Case{-0.00004321, 3, 7, "-4.3e-5"}, // rather than a wrong 0
          Case{0.00004321, 3, 5, "0.00004321"}, Case{123456789.5, 2, 7, "1.2e8"},
          Case{0.99996, 4, 7, "1"}, Case{1.5e-20, 2, 3, "1.5e-20"}, Case{0.25, 4, 7, "0.25"}}) {
        NumberEntry entry;
        entry.value = one.value;
        entry.shownDecimals = one.decimals;
        const auto fits = [&one](const QString& text) { return text.size() <= one.room; };
        QCOMPARE(entry.ShortText(entry.Text(), fits), QString(one.shown));
    }
}

QTEST_APPLESS_MAIN(NumberTextTest)
#include "NumberTextTest.moc"
