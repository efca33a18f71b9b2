#pragma once

#include "system/base/ScriptServices.h"

namespace Marlox {

/// A layout callback: each place gets the child of a widget that bears its name, which is shown.
/// `context` is that widget, as a QWidget*.
void PlaceNamedChild(void* manager, LayoutObj& object, const ScriptVal& description, void* context);

} // namespace Marlox
