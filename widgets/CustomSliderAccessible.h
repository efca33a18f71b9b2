#pragma once

namespace Marlox {

/// Lets the system's accessibility know sliders, from the first call until the library is unloaded:
/// role Slider, the value with bounds and step, increase and decrease as actions.
void MakeSlidersAccessible();

} // namespace Marlox
