#include "system/widgets/NumberEntry.h"

#include "system/widgets/Arithmetic.h"
#include "system/widgets/NumberFormat.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

int PointIn(const QString& text)
{
    const int point = text.indexOf(u'.');
    return point < 0 ? text.size() : point;
}

/// A thousandth of the range's power of ten; 0.01 for no or an empty range.
double StepOfRange(double minimum, double maximum)
{
    const double span = maximum - minimum;
    return std::isfinite(span) && span > 0.0 ? std::pow(10.0, std::floor(std::log10(span)) - 3.0)
                                             : 0.01;
}

bool IsDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace

NumberEntry::Reading NumberEntry::Read(const QString& text,
                                       const ExpressionTest& isExpression) const
{
    QString plain = text.trimmed();
    if (plain.startsWith(u'='))
        plain = plain.mid(1).trimmed();
    if (plain.isEmpty())
        return {};
    const ArithmeticResult result = EvaluateArithmetic(plain, value, time ? framesPerSecond : 0.0);
    if (result.value)
        return {Reading::Kind::Number, Accepted(*result.value), {}, -1};
    if (isExpression && isExpression(plain))
        return {Reading::Kind::Expression, 0.0, plain, -1};
    const int skipped = text.indexOf(plain);
    return {Reading::Kind::Unreadable, 0.0, result.error, skipped + result.errorAt};
}

bool NumberEntry::Holds(double number) const
{
    return value == number || (std::isnan(value) && std::isnan(number));
}

QString NumberEntry::TextOf(double number) const
{
    if (time && timeCode)
        return FormatTimeCode(number, framesPerSecond);
    return FormatNumber(integer ? std::round(number) : number, precision);
}

QString NumberEntry::ShortText(const QString& text, const FitTest& fits) const
{
    const int point = text.indexOf(u'.');
    if (point < 0 || text.contains(u':') || text.contains(u'e'))
        return text;
    const int written = text.size() - point - 1;
    int decimals = written;
    if (shownDecimals >= 0) {
        const int leadingZeros = value != 0.0 ? -int(std::floor(std::log10(std::abs(value)))) : 0;
        decimals = std::min(decimals, std::max(shownDecimals, leadingZeros + 1));
    }
    QString shorter = decimals < written ? FormatNumber(value, decimals) : text;
    while (decimals > 0 && !fits(shorter))
        shorter = FormatNumber(value, --decimals);
    const bool vanished = shorter == QLatin1String("0");
    if (!vanished && fits(shorter))
        return shorter;
    const QString exponent = FormatExponent(value, 1);
    return fits(exponent) ? exponent : text;
}

double NumberEntry::Accepted(double number) const
{
    if (integer) {
        const double lowest = std::ceil(minimum);
        const double highest = std::floor(maximum);
        if (lowest <= highest)
            return std::clamp(std::round(number), lowest, highest);
    }
    return minimum <= maximum ? std::clamp(number, minimum, maximum) : number;
}

double NumberEntry::Moved(double number, double change)
{
    return QString::number(number + change, 'g', 15).toDouble();
}

double NumberEntry::Step() const
{
    if (integer || time)
        return std::max(1.0, step);
    return step > 0.0 ? step : 10.0 * StepOfRange(minimum, maximum);
}

double NumberEntry::DragStep() const
{
    const double perUnit = step > 0.0 ? step / 10.0 : StepOfRange(minimum, maximum);
    return integer || time ? std::max(0.1, perUnit) : perUnit;
}

bool DigitAt::Find(const QString& text, int cursor, DigitAt& found)
{
    for (const QChar c : text) {
        if (!IsDigit(c) && c != u'-' && c != u'.')
            return false;
    }
    int digit = std::min(cursor, int(text.size())) - 1;
    if (digit >= 0 && text[digit] == u'.')
        --digit;
    if (digit < 0 || !IsDigit(text[digit])) {
        digit = std::max(digit, 0);
        while (digit < text.size() && !IsDigit(text[digit]))
            ++digit;
    }
    if (digit >= text.size())
        return false;
    const int point = PointIn(text);
    found.power = digit < point ? point - digit - 1 : point - digit;
    return true;
}

int DigitAt::CursorIn(const QString& text) const
{
    const int point = PointIn(text);
    const int behind = power >= 0 ? point - power : point - power + 1;
    const int firstDigit = text.startsWith(u'-') ? 1 : 0;
    return std::clamp(behind, std::min(firstDigit + 1, int(text.size())), int(text.size()));
}

double DigitAt::Step() const
{
    return std::pow(10.0, power);
}

} // namespace Marlox
