#include "system/widgets/Arithmetic.h"

#include "system/widgets/NumberFormat.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>

namespace Marlox {

namespace {

constexpr int deepestNesting = 100; // brackets and signs; protects the stack

QString Say(const char* text)
{
    return QCoreApplication::translate("Arithmetic", text);
}

/// A value and whether it was written with a percent sign (then counted in hundredths already).
struct Term {
    double value = 0.0;
    bool percent = false;
};

/// The signs that texts copied from elsewhere carry, as the plain ones.
QString Plain(QString text)
{
    for (QChar& c : text) {
        switch (c.unicode()) {
        case 0x2212: // minus
        case 0x2013: // en dash
            c = u'-';
            break;
        case 0x00d7:
        case 0x00b7:
            c = u'*';
            break;
        case 0x00f7:
            c = u'/';
            break;
        default:
            if (c.isSpace())
                c = u' ';
        }
    }
    return text;
}

/// Recursive descent over the text; the first error sticks and makes every later step return 0.
class Parser {
public:
    Parser(const QString& text, double shown, double framesPerSecond)
        : text_(Plain(text)), shown_(shown), framesPerSecond_(framesPerSecond)
    {
    }

    ArithmeticResult Run()
    {
        const double value = Whole();
        if (error_.isEmpty() && Peek() != QChar())
            Fail(Say(Peek() == u')' ? "There is a closing bracket too many."
                                    : "An operator such as + or * is missing here."));
        if (error_.isEmpty() && !std::isfinite(value))
            Fail(Say("The result is too large."));
        if (!error_.isEmpty())
            return {std::nullopt, error_, errorAt_};
        return {value, {}, -1};
    }

private:
    QChar Peek()
    {
        while (at_ < text_.size() && text_[at_] == u' ')
            ++at_;
        return at_ < text_.size() ? text_[at_] : QChar();
    }

    bool Take(char16_t wanted)
    {
        if (Peek() != wanted)
            return false;
        ++at_;
        return true;
    }

    double Fail(const QString& error)
    {
        if (error_.isEmpty()) {
            error_ = error;
            errorAt_ = std::min(at_, int(text_.size()));
        }
        at_ = int(text_.size());
        return 0.0;
    }

    double Whole()
    {
        const char16_t first = Peek().unicode();
        const bool isOperator = first == u'+' || first == u'-' || first == u'*' || first == u'/';
        if (isOperator && at_ + 1 < text_.size() && text_[at_ + 1] == u'=') {
            at_ += 2;
            Term right = FirstTerm();
            if (right.percent && (first == u'+' || first == u'-'))
                right = {shown_ * right.value, false};
            return Apply(first, shown_, Sum(right));
        }
        if (first == u'*' || first == u'/')
            return Sum(Product({shown_, false}));
        // A percentage at the start is one of the shown value: "+10%" more of it, "50%" half of it.
        const bool isSigned = first == u'+' || first == u'-';
        const Term term = FirstTerm();
        if (!term.percent)
            return Sum(term);
        return Sum({isSigned ? shown_ * (1.0 + term.value) : shown_ * term.value, false});
    }

    double Apply(char16_t operation, double left, double right)
    {
        switch (operation) {
        case u'+':
            return left + right;
        case u'-':
            return left - right;
        case u'*':
            return left * right;
        default:
            return right == 0.0 ? Fail(Say("This divides by zero.")) : left / right;
        }
    }

    Term FirstTerm() { return Product(Percent(Power())); }

    /// The sum that starts with a term that was read already.
    double Sum(Term left)
    {
        double value = left.value;
        for (;;) {
            const bool minus = Peek() == u'-';
            if (!minus && Peek() != u'+')
                return value;
            ++at_;
            const Term term = FirstTerm();
            const double change = term.percent ? value * term.value : term.value;
            value += minus ? -change : change;
        }
    }

    /// The product that starts with a factor that was read already.
    Term Product(Term left)
    {
        for (;;) {
            const char16_t operation = Peek().unicode();
            if (operation != u'*' && operation != u'/')
                return left;
            ++at_;
            left = {Apply(operation, left.value, Percent(Power()).value), false};
        }
    }

    Term Percent(double value)
    {
        if (!Take(u'%'))
            return {value, false};
        return {value / 100.0, true};
    }

    /// Signs bind less than "^": -2^2 is -4. The exponent may be signed.
    double Power()
    {
        if (++depth_ > deepestNesting)
            return Fail(Say("There are too many brackets in each other."));
        double value;
        if (Take(u'-')) {
            value = -Power();
        } else if (Take(u'+')) {
            value = Power();
        } else {
            value = Atom();
            if (Take(u'^')) {
                value = std::pow(value, Power());
                if (std::isnan(value))
                    value = Fail(Say("This power of a negative number does not exist."));
            }
        }
        --depth_;
        return value;
    }

    double Atom()
    {
        if (Take(u'(')) {
            const double value = Sum(FirstTerm());
            if (error_.isEmpty() && !Take(u')'))
                return Fail(Say("A closing bracket is missing."));
            return value;
        }
        return Number();
    }

    static bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

    double Number()
    {
        Peek();
        const int start = at_;
        if (framesPerSecond_ > 0.0) {
            int end = start;
            while (end < text_.size() && (IsDigit(text_[end]) || text_[end] == u':' ||
                                          text_[end] == u';' || text_[end] == u'.'))
                ++end;
            const QString token = text_.mid(start, end - start);
            if (token.contains(u':') || token.contains(u';'))
                return Time(token);
        }
        QString digits;
        int marks = 0;
        for (; at_ < text_.size(); ++at_) {
            const QChar c = text_[at_];
            if (c == u'.' || c == u',')
                ++marks;
            else if (!IsDigit(c))
                break;
            digits += c == u',' ? QChar(u'.') : c;
        }
        if (digits.isEmpty() || digits == u".")
            return Unexpected(start);
        if (marks > 1) {
            at_ = start;
            return Fail(Say("This number has more than one decimal point or comma."));
        }
        return (digits + Exponent()).toDouble();
    }

    QString Exponent()
    {
        int end = at_;
        if (end >= text_.size() || (text_[end] != u'e' && text_[end] != u'E'))
            return {};
        ++end;
        if (end < text_.size() && (text_[end] == u'+' || text_[end] == u'-'))
            ++end;
        const int firstDigit = end;
        while (end < text_.size() && IsDigit(text_[end]))
            ++end;
        if (end == firstDigit)
            return {}; // what follows is no exponent, and is reported as left over
        const QString exponent = text_.mid(at_, end - at_);
        at_ = end;
        return exponent;
    }

    double Time(const QString& token)
    {
        const std::optional<double> frames = ParseTimeCode(token, framesPerSecond_);
        if (!frames)
            return Fail(Say("Times are written as hours:minutes:seconds:frames."));
        at_ += int(token.size());
        return *frames;
    }

    double Unexpected(int start)
    {
        at_ = start;
        const QChar c = Peek();
        if (c == QChar())
            return Fail(Say("A number is missing at the end."));
        return Fail(Say("A number is expected where \"%1\" stands.").arg(c));
    }

    QString text_;
    double shown_;
    double framesPerSecond_;
    int at_ = 0;
    int depth_ = 0;
    QString error_;
    int errorAt_ = -1;
};

} // namespace

ArithmeticResult EvaluateArithmetic(const QString& text, double shown, double framesPerSecond)
{
    return Parser(text, shown, framesPerSecond).Run();
}

} // namespace Marlox
