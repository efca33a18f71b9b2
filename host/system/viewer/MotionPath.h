#pragma once

#include "system/viewer/OverlayPainter.h"

namespace Marlox {

/// Draws the way an animated point takes from its first to its last key, displaced by `offset`
/// (image coordinates): a line, a tick for each frame where there is room, a square for each key.
/// The view must have its painter. User-interface thread.
void DrawMotionPath(const PreviewInfo& view, const Input& point, OverlayPoint offset);

} // namespace Marlox
