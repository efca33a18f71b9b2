#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"

namespace Marlox {

void CreateTrackPoints(PolyLineControl&) {}
void ResetTrackPattern(PolyLineControl&) {}

} // namespace Marlox
