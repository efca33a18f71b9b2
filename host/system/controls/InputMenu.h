#pragma once

#include "system/controls/InputControl.h"

/// The part of an inspector control's context menu that every control has: keys, interpolation,
/// expression, connection, default, copy and paste of each input. Internal to the library.
///
/// Ids: the input's position within the control times 0x100, plus the command. Inputs from the 64th
/// on have no entries.
namespace Marlox::InputMenu {

/// `only`: the inputs that get entries; none: all.
void Build(InputControl& control, Menu& menu, const InputList& only);
/// Runs an entry, enabled or not in the menu that was shown: what is impossible now is refused.
bool Run(InputControl& control, unsigned int id);

/// Sets a key at the current time for each of the control's shown inputs that has none, or, where
/// all have one, removes these: one undo step. Inputs that can't have keys or follow an expression
/// are left alone.
bool ToggleKeys(InputControl& control);

} // namespace Marlox::InputMenu
