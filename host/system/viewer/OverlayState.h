#pragma once

#include "system/base/ScriptVal.h"

#include <QString>

namespace Marlox {

class PreviewControl;

/// Makes a change of what an overlay has set (Object::SaveState) an undo step: undo calls
/// RestoreState with `before`, redo with `after`, for the overlay of the same class that shows the
/// same first input in the same view by then; without one they do nothing. The tables need hold
/// only what changed.
/// The change has been made already. Within a group of the document the step is a part of it.
MARLOXSYSTEM_EXPORT void PushOverlayState(PreviewControl& overlay, const QString& text,
                                          const ScriptVal& before, const ScriptVal& after);

} // namespace Marlox
