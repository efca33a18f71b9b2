#pragma once

#include "system/base/MxColor.h"

#include <QColor>

class QPainter;
class QRect;
class QRectF;

namespace Marlox {

// What the drawn widgets have in common to look at. Lengths in device-independent pixels.

/// How much is left of what is disabled, as an opacity.
inline constexpr double dimmed = 0.38;

/// Dims what has been drawn over `area`, as what is disabled is, where parts lie on one another:
/// `ground` is what is behind all of them.
void PaintVeil(QPainter& painter, const QRect& area, QColor ground);

/// A colour of the look in use.
QColor LookColor(const char* name, MxColor fallback);
/// The one accent: the keyboard focus, and what has it of a widget's parts.
QColor AccentColor();

/// The width of the line that comes next to 1 of those that take whole pixels of the screen.
double CrispLine(double devicePixelRatio);
/// A frame of one such line just inside `rect`. Sharp where the edges lie on pixels of the screen.
void PaintCrispFrame(QPainter& painter, const QRectF& rect, const QColor& color);

} // namespace Marlox
