#pragma once

#include "system/base/Types.h"

#include <optional>

#include <QString>

namespace Marlox {

/// What a text in a number field comes to: a value, or what is wrong and where.
struct MARLOXSYSTEM_EXPORT ArithmeticResult {
    std::optional<double> value; // finite
    QString error;               // one sentence for people; empty with a value
    int errorAt = -1;            // index in the text, for the cursor
};

/// Reads the arithmetic people type into number fields: decimal numbers with point or comma and
/// exponent, + - * / ^, brackets, and percent. `shown` is the field's present value, which a text
/// that starts with an operator works on:
///
///     1920/2   (1+2)*3   2^3       plain
///     -5  +5                       the numbers themselves
///     *2  /2  *2+1                 (shown * 2) + 1
///     +=5  -=3  *=1+1  /=4         shown with the whole right side
///     +10%  -10%                   shown and a tenth more, or less
///     50%                          half of what is shown
///     200+10%  80*50%              220, 40: percent of the left side of a sum, else a hundredth
///
/// With `framesPerSecond` above 0, times are read as numbers of frames: "1:12" is one second and
/// twelve frames, "hh:mm:ss:ff" in full; the rate counts rounded to whole frames.
MARLOXSYSTEM_EXPORT ArithmeticResult EvaluateArithmetic(const QString& text, double shown,
                                                        double framesPerSecond = 0.0);

} // namespace Marlox
