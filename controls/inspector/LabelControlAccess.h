#pragma once

namespace Marlox {

/// Lets the system's accessibility know label controls, from the first call until the library is
/// unloaded: a nest is a button that tells whether it is expanded, a separator says so, and the
/// text of a label is there as such.
void MakeLabelsAccessible();

} // namespace Marlox
