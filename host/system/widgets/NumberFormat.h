#pragma once

#include "system/base/Types.h"

#include <optional>

#include <QString>

namespace Marlox {

/// Most decimals a number is shown with.
inline constexpr int mostDecimals = 10;

/// A number as fields show it, the same in every locale: decimal point, no grouping, no trailing
/// zeros, never "-0". At most `precision` decimals, or with -1 as many as it has, up to ten, and
/// then never more than the 15 digits a double is sure of. Very large numbers, and with -1 very
/// small ones, come with an exponent ("1e300"). "inf", "-inf", "nan".
MARLOXSYSTEM_EXPORT QString FormatNumber(double value, int precision = -1);

/// A number with an exponent and at most `decimals` decimals before it: "1.5e300", "-4e-5".
MARLOXSYSTEM_EXPORT QString FormatExponent(double value, int decimals);

/// A time in frames as "hh:mm:ss:ff" at a rate rounded to whole frames per second (at least 1); a
/// fraction of a frame follows as decimals. Hours take more digits when they need them. A leading
/// "-" before zero. Times beyond a thousand years come as plain numbers.
MARLOXSYSTEM_EXPORT QString FormatTimeCode(double frames, double framesPerSecond);

/// Reads "hh:mm:ss:ff" and its ends "mm:ss:ff", "ss:ff" (";" for ":" too), with a sign and with
/// decimals in the last part; parts may exceed their range ("90:00" is a minute and a half). None
/// if it is something else.
MARLOXSYSTEM_EXPORT std::optional<double> ParseTimeCode(const QString& text,
                                                        double framesPerSecond);

} // namespace Marlox
