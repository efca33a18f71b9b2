#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"

namespace Marlox {

void ToggleEditPoint(PolyLineControl&) {}
void SmoothPointsDefault(PolyLineControl&) {}
void SmoothPointsDialog(PolyLineControl&) {}
void SmoothAnimation(PolyLineControl&) {}
void EaseInOut(PolyLineControl&) {}
void AveragePoints(PolyLineControl&) {}
void CreateEllipse(PolyLineControl&) {}
void CreateRectangle(PolyLineControl&) {}
void CreateSpiral(PolyLineControl&) {}
void SubdivideShape(PolyLineControl&) {}
void ReducePoints(PolyLineControl&) {}
void ConvertToBezier(PolyLineControl&) {}
void ConvertToBSpline(PolyLineControl&) {}
void ConvertPathToXY(PolyLineControl&) {}
void CreateTrackPoints(PolyLineControl&) {}
void ResetTrackPattern(PolyLineControl&) {}

} // namespace Marlox
