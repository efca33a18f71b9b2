#pragma once

#include "system/document/Preferences.h"

#include <algorithm>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace Marlox {

// Where a window stands on the screen, kept in two preferences (pixels).

inline void SaveDialogPlace(const QWidget& dialog, const char* left, const char* top)
{
    Preferences::Global().Set(left, dialog.x());
    Preferences::Global().Set(top, dialog.y());
}

inline void RestoreDialogPlace(QWidget& dialog, const char* left, const char* top)
{
    const QVariant x = Preferences::Global().Get(left);
    const QVariant y = Preferences::Global().Get(top);
    if (!x.isValid() || !y.isValid())
        return;
    // The screen it stood on may be gone, or smaller.
    QPoint place(x.toInt(), y.toInt());
    const QScreen* screen = QGuiApplication::screenAt(place);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    const int right = std::max(room.left(), room.right() - dialog.width());
    const int bottom = std::max(room.top(), room.bottom() - dialog.height());
    place.setX(std::clamp(place.x(), room.left(), right));
    place.setY(std::clamp(place.y(), room.top(), bottom));
    dialog.move(place);
}

} // namespace Marlox
