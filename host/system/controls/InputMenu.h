#pragma once

#include "system/controls/InputControl.h"

/// The part of an inspector control's context menu that every control has: keys, interpolation,
/// expression, connection, default, copy and paste of each input. Internal to the library.
///
/// Ids: the input's position within the control times 0x100, plus the command. Inputs from the 16th
/// on have no entries.
namespace Marlox::InputMenu {

void Build(InputControl& control, Menu& menu, Input* only);
/// Runs an entry, enabled or not in the menu that was shown: what is impossible now is refused.
bool Run(InputControl& control, unsigned int id);

/// Sets the key at the current time, or removes the one there is, as an undo step.
bool ToggleKey(InputControl& control, Input& input);

} // namespace Marlox::InputMenu
