#pragma once

namespace Marlox {

class CustomControl;

/// Lets the system's accessibility know the drawn controls that have parts, from the first call
/// until the library is unloaded. The value is the active part in words, the description tells all
/// parts; actions go from one part to the next and move the active one, as the keys do. Called by
/// the constructors of such widgets.
void MakePartsAccessible();

/// Tells who listens that a control has another active part, or that part another value.
void TellActivePart(CustomControl& control);

} // namespace Marlox
