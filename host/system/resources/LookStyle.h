#pragma once

#include "system/base/Types.h"

class QApplication;

namespace Marlox {

/// Gives an application the modern dark look of the look pack in use: palette, fonts by pixel size,
/// and a style that draws flat chrome in the "System." colours. Call once after the application was
/// made, and again after LookPack::Use.
MARLOXSYSTEM_EXPORT void ApplyLook(QApplication& application);

/// Left of the box of a check, for its focus ring: how far in begins what stands above or below it.
/// Device-independent pixels.
inline constexpr int checkRingRoom = 3;

} // namespace Marlox
