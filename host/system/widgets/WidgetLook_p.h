#pragma once

#include <QColor>
#include <QPalette>
#include <QRectF>

class QPainter;
class QWidget;

/// What the drawn widgets of this folder share: colours by role and the crisp pieces they draw.
/// Internal to the library. Coordinates are device-independent pixels of the widget.
namespace Marlox::WidgetLook {

/// The one accent: focus rings, checks.
QColor Accent();
/// Marks of key frames, and of expressions.
QColor Key();
QColor Expression();
QColor ErrorText();
/// Text of the widget in its present state (enabled or not) from its palette.
QColor Text(const QWidget& widget);
/// `over` at `share` (0 to 1) on top of `under`, opaque.
QColor Mix(const QColor& under, const QColor& over, double share);

/// Width in device-independent pixels of the line that is a whole number of device pixels and
/// nearest to `width`, at least one.
double CrispWidth(const QPainter& painter, double width = 1.0);
/// A frame of one crisp line just inside `rect`.
void DrawFrame(QPainter& painter, const QRectF& rect, const QColor& color, double radius = 0.0);
/// The ring around a widget with keyboard focus, just inside `rect`.
void DrawFocusRing(QPainter& painter, const QRectF& rect, double radius = 2.0);

} // namespace Marlox::WidgetLook
