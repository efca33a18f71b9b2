#pragma once

#include "system/base/Types.h"

#include <functional>
#include <limits>

#include <QString>

namespace Marlox {

/// What a number field holds, without the field: the value, how it is written, and what a typed
/// text comes to. Values are in the field's units, times in frames.
struct MARLOXSYSTEM_EXPORT NumberEntry {
    double value = 0.0;
    int precision = -1;     // most decimals of the text; -1: as many as it has
    int shownDecimals = -1; // fewer while nobody types, see ShortText; -1: those of the text
    bool integer = false;   // typed values become whole
    bool time = false;      // frames; times can be typed
    bool timeCode = false;  // shown as hh:mm:ss:ff
    double framesPerSecond = 24.0;
    double minimum = -std::numeric_limits<double>::infinity(); // what typing is clamped to
    double maximum = std::numeric_limits<double>::infinity();

    double step = 0.0; // of an arrow key without a digit to step; 0: what suits the range

    struct Reading {
        enum class Kind { Nothing, Number, Expression, Unreadable } kind = Kind::Nothing;
        double value = 0.0; // of a number: rounded and clamped
        QString text;       // of an expression: the expression; unreadable: the reason
        int errorAt = -1;   // index in the typed text
    };
    using ExpressionTest = std::function<bool(const QString&)>;
    using FitTest = std::function<bool(const QString&)>;

    /// Reads a typed text; one that is no arithmetic but passes `isExpression` (may be empty) is an
    /// expression. A leading "=" is allowed. Blank text is Nothing.
    Reading Read(const QString& text, const ExpressionTest& isExpression) const;

    /// Whether the value is `number` exactly; NaN is NaN.
    bool Holds(double number) const;
    /// The value as it is shown.
    QString Text() const { return TextOf(value); }
    QString TextOf(double number) const;
    /// `text`, the value's text, rounded to `shownDecimals` and then to as many decimals as pass
    /// `fits`; a small value keeps two digits that count. What no rounding makes fit comes with an
    /// exponent, or else back whole.
    QString ShortText(const QString& text, const FitTest& fits) const;
    /// `number` clamped to the range and made whole where that is asked for (halves away from zero;
    /// a range without a whole number gives its nearer end).
    double Accepted(double number) const;

    /// The sum of a value and a step, without the trace that binary fractions leave (0.1 + 0.2).
    static double Moved(double number, double change);
    /// One step of an arrow key or the wheel without a digit to step: `step`, or a hundredth of the
    /// range's power of ten (0.01 for 0 to 1), 0.1 without a range, 1 for whole numbers and times.
    double Step() const;
    /// The change for each unit of a drag: a tenth of `step`, or a thousandth of the range's power
    /// of ten, 0.01 without a range; for whole numbers and times at least 0.1.
    double DragStep() const;
};

/// The digit of a written number that the arrow keys step.
struct MARLOXSYSTEM_EXPORT DigitAt {
    int power = 0; // the digit counts 10^power

    /// The digit before the cursor, or else the first one after it. `text` is a plain decimal
    /// number; false if it is not (a time, an exponent) or has no digit.
    static bool Find(const QString& text, int cursor, DigitAt& found);
    /// Where the cursor has to stand in `text`, right behind the digit.
    int CursorIn(const QString& text) const;
    double Step() const;
};

} // namespace Marlox
