#pragma once

namespace Marlox {

class ComboPopup;
class CustomCombo;

/// Gives drawn combo boxes and their open lists the interface that screen readers and test tools
/// use.
void MakeCombosAccessible();
/// Tell whoever listens: the list opened or closed, another row is lit.
void TellListState(CustomCombo& combo);
void TellLitRow(ComboPopup& popup);

} // namespace Marlox
