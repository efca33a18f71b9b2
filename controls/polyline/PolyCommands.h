#pragma once

#include "system/shapes/PolyPoint.h"

#include <vector>

namespace Marlox {

class Operator;
class PolyLineControl;
class PolyView;

// What the entries of menu and toolbar and the keys do (PolyActions lists them). Each is one undo
// entry with a fixed text, or none when it changes nothing; with the tool locked none does
// anything. They may ask the user (HostDialogs).

// Shape and points (PolyCommandsPoints.cpp).
void TogglePolygonClosed(PolyLineControl& control);
void SelectAllPoints(PolyLineControl& control);
void SelectMatchingPoint(PolyLineControl& control); // of the other polygon, which gets active
void DeleteSelectedPoints(PolyLineControl& control, const char* text = "Delete Points");
void SmoothSelected(PolyLineControl& control);
void LinearSelected(PolyLineControl& control);
void FlipPoints(PolyLineControl& control); // turns their order round
void TagSelected(PolyLineControl& control);
void ToggleLocked(PolyLineControl& control);
void ToggleLockedPairs(PolyLineControl& control);
void RemoveLastClicked(PolyLineControl& control); // of this run of Click Append
/// One step of an arrow key; directions -1, 0 or 1. A step is a pixel of the image times the step
/// factor, or divided by it with fine steps.
void ShiftSelected(PolyLineControl& control, int x, int y, bool coarse, bool fine);
void NextStepFactor(PolyLineControl& control);
void ToggleFineStep(PolyLineControl& control);

// The clipboard (PolyCommandsClipboard.cpp).
void CopyWholeShape(PolyLineControl& control);
void PasteWholeShape(PolyLineControl& control);
void CopyPoints(PolyLineControl& control);
void CopyValue(PolyLineControl& control);
void CutPoints(PolyLineControl& control);
void PastePoints(PolyLineControl& control);
void PastePointsWithOffset(PolyLineControl& control);

// Forms of shapes (PolyCommandsForms.cpp).
void ToggleEditPoint(PolyLineControl& control); // the "Point Editor"
void CreateEllipse(PolyLineControl& control);
void CreateRectangle(PolyLineControl& control);
void CreateSpiral(PolyLineControl& control);
void ConvertToBezier(PolyLineControl& control);
void ConvertToBSpline(PolyLineControl& control);
void ConvertPathToXY(PolyLineControl& control);
/// The tool whose path moves the shape, or is the shape; null: there is none.
Operator* PathOf(const PolyLineControl& control);

// Points moved, more of them or fewer (PolyCommandsAlter.cpp).
void SmoothPointsDefault(PolyLineControl& control);
void SmoothPointsDialog(PolyLineControl& control);
void SmoothAnimation(PolyLineControl& control);
void EaseInOut(PolyLineControl& control);
void AveragePoints(PolyLineControl& control);
void SubdivideShape(PolyLineControl& control);
void ReducePoints(PolyLineControl& control);

// The double polygon (PolyCommandsDouble.cpp).
void MakeOuter(PolyLineControl& control);
void RemoveOuter(PolyLineControl& control);
void ResetOuter(PolyLineControl& control);
void ToggleOuterEnabled(PolyLineControl& control);
void ToggleInnerEnabled(PolyLineControl& control);

// Publishing and following (PolyCommandsPublish.cpp).
void PublishSelected(PolyLineControl& control);
void UnpublishSelected(PolyLineControl& control);
void PublishSelectedToPath(PolyLineControl& control);
void PublishSelectedToXYPath(PolyLineControl& control);
void PublishSelectedToTracker(PolyLineControl& control);
void ToggleFollowPublished(PolyLineControl& control); // points that all follow do so no more

// What shows (PolyCommandsShow.cpp).
void ToggleShapeBox(PolyLineControl& control);
void ChooseSplineColor(PolyLineControl& control);
void ChooseKeyPointColor(PolyLineControl& control);
void ChooseHandleColor(PolyLineControl& control);
void ChoosePrevSkinColor(PolyLineControl& control);
void ShowKeyList(PolyLineControl& control);
void EditOnionSettings(PolyLineControl& control);
void ToggleOnionSkin(PolyLineControl& control);
void ResetOnionAnchor(PolyLineControl& control);

// Roto assist (PolyCommandsRoto.cpp).
void ToggleRotoAssist(PolyLineControl& control);
void ToggleRotoFollow(PolyLineControl& control);
void ToggleRotoEdges(PolyLineControl& control);
void AskRotoDistance(PolyLineControl& control);
void AskRotoFrameSkip(PolyLineControl& control);
void CreateTrackPoints(PolyLineControl& control);
void ResetRotoAssist(PolyLineControl& control);
void ResetTrackPattern(PolyLineControl& control);
/// One for each point of the active shape, where it is now.
std::vector<ShapePlace> TrackPointsOf(const PolyLineControl& control);

// Files (PolyExport.cpp, PolyImport.cpp).
void ExportFile(PolyLineControl& control);
void ExportDxf(PolyLineControl& control);
void ImportLightWave(PolyLineControl& control);
void ImportMotionPath(PolyLineControl& control);
void ImportShape(PolyLineControl& control);
void ImportSsf(PolyLineControl& control);
void ImportFxs(PolyLineControl& control);
void ImportNuke(PolyLineControl& control);
void ImportBoujou(PolyLineControl& control);

} // namespace Marlox
