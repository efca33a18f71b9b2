#pragma once

#include "system/base/TagList.h"
#include "system/viewer/PreviewInfo.h"

#include <QCursor>
#include <Qt>

class QTabletEvent;

namespace Marlox {

/// As overlays know them, of KeyModifier.
u32 OverlayModifiers(Qt::KeyboardModifiers modifiers);

/// What a pen tells beside its place: PVD_Pressure and the others.
TagList PenTags(const QTabletEvent& event);

/// `devicePixelRatio`: of the screen it is shown on.
QCursor CursorOf(ViewCursor shape, double devicePixelRatio);

} // namespace Marlox
