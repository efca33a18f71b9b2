#include "system/widgets/NumberFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include <QStringList>

namespace Marlox {

namespace {

constexpr int sureDigits = 15;          // decimal digits that survive a double
constexpr double largestPlain = 1e15;   // from here on with an exponent
constexpr double smallestPlain = 1e-10; // below, without a given precision, with an exponent

QString WithoutTrailingZeros(std::string_view digits)
{
    if (digits.find('.') != digits.npos) {
        digits = digits.substr(0, digits.find_last_not_of('0') + 1);
        if (digits.back() == '.')
            digits.remove_suffix(1);
    }
    if (digits == "-0")
        digits.remove_prefix(1);
    return QString::fromLatin1(digits.data(), int(digits.size()));
}

int WholeRate(double framesPerSecond)
{
    return framesPerSecond >= 1.0 ? int(std::lround(std::min(framesPerSecond, 1e6))) : 1;
}

} // namespace

QString FormatNumber(double value, int precision)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-inf") : QStringLiteral("inf");
    const double magnitude = std::abs(value);
    if (magnitude >= largestPlain || (precision < 0 && magnitude < smallestPlain && value != 0.0))
        return FormatExponent(value, sureDigits - 1);
    int decimals = precision < 0 ? mostDecimals : std::min(precision, sureDigits);
    if (magnitude >= 1.0)
        decimals = std::min(decimals, sureDigits - 1 - int(std::floor(std::log10(magnitude))));
    std::array<char, 64> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                            std::chars_format::fixed, std::max(decimals, 0));
    return WithoutTrailingZeros({buffer.data(), std::size_t(end - buffer.data())});
}

QString FormatExponent(double value, int decimals)
{
    // No plus sign, no zeros in front of the exponent's digits.
    const QString text = QString::number(value, 'e', decimals);
    const int mark = text.indexOf(u'e');
    const QByteArray digits = text.left(mark).toLatin1();
    return WithoutTrailingZeros({digits.constData(), std::size_t(digits.size())}) + u'e' +
           QString::number(text.mid(mark + 1).toInt());
}

QString FormatTimeCode(double frames, double framesPerSecond)
{
    const int rate = WholeRate(framesPerSecond);
    constexpr double longest = 1000.0 * 366 * 24 * 3600;
    if (!std::isfinite(frames) || std::abs(frames) >= longest * rate)
        return FormatNumber(frames);
    const double magnitude = std::abs(std::round(frames * 100.0) / 100.0);
    const auto whole = std::int64_t(magnitude);
    const int hundredths = int(std::lround((magnitude - double(whole)) * 100.0));
    const std::int64_t seconds = whole / rate;
    const auto part = [](std::int64_t number) {
        return QString::number(number).rightJustified(2, QLatin1Char('0'));
    };
    QString text = part(seconds / 3600) + u':' + part(seconds / 60 % 60) + u':' +
                   part(seconds % 60) + u':' + part(whole % rate);
    if (hundredths > 0)
        text += FormatNumber(hundredths / 100.0, 2).mid(1);
    return frames < 0.0 && magnitude > 0.0 ? u'-' + text : text;
}

std::optional<double> ParseTimeCode(const QString& text, double framesPerSecond)
{
    QString plain = text.trimmed();
    plain.replace(u';', u':');
    const bool negative = plain.startsWith(u'-');
    if (negative)
        plain.remove(0, 1);
    const QStringList parts = plain.split(u':');
    if (parts.size() < 2 || parts.size() > 4)
        return {};
    double seconds = 0.0;
    for (const QString& part : parts) {
        const bool last = &part == &parts.back();
        bool digitsOnly = !part.isEmpty();
        for (const QChar c : part)
            digitsOnly = digitsOnly && ((c >= u'0' && c <= u'9') || (last && c == u'.'));
        bool read = false;
        const double number = part.toDouble(&read);
        if (!digitsOnly || !read)
            return {};
        if (last) {
            const double frames = seconds * WholeRate(framesPerSecond) + number;
            return negative ? -frames : frames;
        }
        seconds = seconds * 60.0 + number;
    }
    return {};
}

} // namespace Marlox
