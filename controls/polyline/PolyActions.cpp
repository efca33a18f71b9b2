// The table of actions. Where they show is in PolyMenus.cpp.

#include "controls/polyline/PolyActions.h"

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/shapes/BSplinePolyLine.h"
#include "system/shapes/PathModifier.h"

#include <algorithm>
#include <vector>

namespace Marlox {

namespace {

using C = PolyLineControl;

// When actions can be used.

bool Edits(const C& c)
{
    return c.CanEdit() && c.Editor().Active();
}
bool HasPoints(const C& c)
{
    const int active = c.Editor().ActivePolygon();
    return Edits(c) && c.Editor().IsShown(active) && c.Editor().HasPoints(active);
}
bool HasSelection(const C& c)
{
    return Edits(c) && c.Editor().IsAnySelected();
}
/// Modes in which points change: Done takes none of these keys.
bool HasSelectionInMode(const C& c)
{
    return HasSelection(c) && c.Mode() != PolyDrawMode::Done;
}
bool CanEditPoint(const C& c)
{
    return HasSelectionInMode(c) || (c.IsPointEditorOpen() && c.Mode() != PolyDrawMode::Done);
}
bool CanClose(const C& c)
{
    return Edits(c) && (c.Editor().Active()->IsClosed() || c.Editor().Active()->GetCount() >= 2);
}
bool HasOuterInput(const C& c)
{
    return Edits(c) && c.ShapeInput(OuterPolygon) && c.IsShapeFree(OuterPolygon);
}
bool HasOuter(const C& c)
{
    return HasOuterInput(c) && c.Editor().HasPoints(OuterPolygon);
}
bool CanEnableInner(const C& c)
{
    const PolyLine* inner = c.Editor().Shape(InnerPolygon);
    return HasOuter(c) || (Edits(c) && inner && !inner->IsEnabled());
}
bool CanMakeOuter(const C& c)
{
    return HasOuterInput(c) && !c.Editor().HasPoints(OuterPolygon) &&
           c.Editor().HasPoints(InnerPolygon);
}
bool IsMatched(const C& c)
{
    return HasOuter(c) && c.Editor().IsMatched();
}
template <const char* dataType>
bool IsKind(const C& c)
{
    return HasPoints(c) && c.Editor().Active()->GetDataType() == MxID(dataType);
}
template <std::size_t keys>
bool IsKeyed(const C& c)
{
    const Input* input = c.ShapeInput(c.Editor().ActivePolygon());
    return HasPoints(c) && input && input->GetAnimation().Keys().size() >= keys;
}
bool CanPublish(const C& c)
{
    return HasSelection(c) && c.Settings().canPublishPoints;
}
bool CanFollow(const C& c)
{
    return HasSelection(c) && c.Settings().followExternMatchPoint;
}
bool HasPublishedSelection(const C& c)
{
    const PolyLine* shape = c.Editor().Active();
    return HasSelection(c) && shape->GetSelectedPublishedPoint(c.Editor().ActiveSelection()) >= 0;
}
bool IsPathInput(const C& c)
{
    return Edits(c) && (c.BoundInput(PLCID_Center) ||
                        dynamic_cast<PathModifier*>(&c.ShapeInput(InnerPolygon)->Owner()));
}
bool IsListed(const C& c)
{
    return c.Settings().animated && c.ShapeInput(c.Editor().ActivePolygon());
}
bool HasPickedColor(const C& c)
{
    return c.Settings().prevSkinColor != 0;
}
bool Never(const C&)
{
    return false;
}

// What is on.

template <PolyDrawMode mode>
bool InMode(const C& c)
{
    return c.Mode() == mode;
}
template <PolyDrawStyle style>
bool InStyle(const C& c)
{
    return c.Settings().drawStyle == style;
}
template <MultiFrame frames>
bool InFrames(const C& c)
{
    return c.Settings().multiFrame == frames;
}
template <bool PolySettings::*member>
bool Is(const C& c)
{
    return c.Settings().*member;
}
template <bool RotoAssistSettings::*member>
bool IsRoto(const C& c)
{
    return c.Settings().roto.*member;
}
template <int polygon>
bool IsEnabled(const C& c)
{
    return c.Editor().Shape(polygon) && c.Editor().Shape(polygon)->IsEnabled();
}
bool IsClosed(const C& c)
{
    return c.Editor().Active() && c.Editor().Active()->IsClosed();
}
template <u32 flag>
bool AllSelected(const C& c)
{
    const PolyLine* shape = c.Editor().Active();
    const SelMask mask = c.Editor().CommandMask(c.Editor().ActivePolygon());
    if (!shape || !mask.IsAnySet())
        return false;
    const std::vector<int> items = mask.Items();
    return std::all_of(items.begin(), items.end(),
                       [shape](int index) { return shape->GetPoint(index)->Has(flag); });
}
bool ClickSetsTime(const C& c)
{
    return c.Settings().onion.clickSetsTime;
}

// What is set.

template <PolyDrawMode mode>
void SetMode(C& c)
{
    c.SetMode(mode);
}
template <PolyDrawStyle style>
void SetStyle(C& c)
{
    c.SetAttr(PLC_DrawStyle, int64(style));
}
template <MultiFrame frames>
void SetFrames(C& c)
{
    c.ChangeSettings().multiFrame = frames;
}
template <bool PolySettings::*member>
void Turn(C& c)
{
    bool& flag = c.ChangeSettings().*member;
    flag = !flag;
}
template <bool RotoAssistSettings::*member>
void TurnRoto(C& c)
{
    bool& flag = c.ChangeSettings().roto.*member;
    flag = !flag;
}
/// An attribute of the overlay's inputs.
template <u32 tag>
void TurnAttr(C& c)
{
    int64 value = 0;
    c.Settings().Get(tag, value);
    c.SetAttr(tag, !value);
}
void TurnClickSetsTime(C& c)
{
    bool& flag = c.ChangeSettings().onion.clickSetsTime;
    flag = !flag;
}

/// Turns roto assist on and off, as its button does, whose own event shows the state.
constexpr u32 rotoToggleEvent = 0x20068;

constexpr char NeedsEdgeFollowing[] =
    "Following edges by itself is not part of this version of the controls.";

using A = PolyAction;

constexpr PolyActionRow rows[] = {
    // Draw modes.
    {A::ClickAppend, "Click Append\tShift+C", SetMode<PolyDrawMode::ClickAppend>, nullptr,
     InMode<PolyDrawMode::ClickAppend>, "Click", "Click Append (Shift+C)", "DrawClick", 0x2000e},
    {A::DrawAppend, "Draw Append\tShift+D", SetMode<PolyDrawMode::DrawAppend>, nullptr,
     InMode<PolyDrawMode::DrawAppend>, "Draw", "Draw Append (Shift+D)", "DrawFreehand", 0x2000f},
    {A::InsertAndModify, "Insert and Modify\tShift+I", SetMode<PolyDrawMode::InsertAndModify>,
     nullptr, InMode<PolyDrawMode::InsertAndModify>, "Insert", "Insert and Modify (Shift+I)",
     "DrawInsertandModify", 0x20010},
    {A::ModifyOnly, "Modify Only\tShift+M", SetMode<PolyDrawMode::ModifyOnly>, nullptr,
     InMode<PolyDrawMode::ModifyOnly>, "Modify", "Modify Only (Shift+M)", "DrawModifyOnly",
     0x20011},
    {A::Done, "Done\tShift+N", SetMode<PolyDrawMode::Done>, nullptr, InMode<PolyDrawMode::Done>,
     "Done", "Done (Shift+N)", "DrawDone", 0x20012},
    {A::SetFocus, "Set Focus", [](C& c) { c.TakeViewFocus(); }},
    {A::Closed, "Closed\tShift+O", TogglePolygonClosed, CanClose, IsClosed, "Closed",
     "Close the polyline (Shift+O)", "Closed", 0x20014},

    // Clipboard.
    {A::Copy, "Copy\tCtrl+C", CopyWholeShape, nullptr},
    {A::Paste, "Paste\tCtrl+V", PasteWholeShape, Edits},
    {A::CopyPathPoints, "Copy Path Points\tCtrl+C", CopyPoints, nullptr},
    {A::CopyPathValue, "Copy Path Value", CopyValue, nullptr},
    {A::CutPathPoints, "Cut Path Points\tCtrl+X", CutPoints, HasSelectionInMode},
    {A::PastePathPoints, "Paste Path Points\tCtrl+V", PastePoints, Edits},
    {A::PasteWithOffset, "Paste With Offset", PastePointsWithOffset, Edits},

    // Points.
    {A::DeletePoints, "Delete Points\tDel", [](C& c) { DeleteSelectedPoints(c); }, HasSelection,
     nullptr, "Delete", "Delete Points (Del)", "Delete", 0x2001d},
    {A::LockPoints, "Lock Points", ToggleLocked, HasPoints, AllSelected<PPF_Locked>, "Lock",
     "Lock Points", "Lock", 0x20015},
    {A::LockPointPairs, "Lock Point Pairs", ToggleLockedPairs, IsMatched, AllSelected<PPF_Locked>},
    {A::EditPoint, "Edit Point\tE", ToggleEditPoint, CanEditPoint},
    {A::Linear, "Linear\tShift+L", LinearSelected, HasPoints, nullptr, "Linear",
     "Linear  (Shift+L)", "Linear", 0x20017},
    {A::Smooth, "Smooth\tShift+S", SmoothSelected, HasPoints, nullptr, "Smooth", "Smooth (Shift+S)",
     "Smooth", 0x20016},
    {A::SmoothPointsDefault, "Default", SmoothPointsDefault, HasPoints},
    {A::SmoothPointsDialog, "Dialog…", SmoothPointsDialog, HasPoints},
    {A::SmoothAnimation, "Smooth Animation", SmoothAnimation, IsKeyed<3>},
    {A::EaseInOut, "Ease In / Out…", EaseInOut, IsKeyed<2>},
    {A::FlipPoints, nullptr, FlipPoints, HasPoints},
    {A::TagPoints, nullptr, TagSelected, HasSelectionInMode},
    {A::CutPoints, nullptr, CutPoints, HasSelectionInMode},

    // Shapes.
    {A::CreateEllipse, "Ellipse…", CreateEllipse, Edits},
    {A::CreateRectangle, "Rectangle…", CreateRectangle, Edits},
    {A::CreateSpiral, "Spiral…", CreateSpiral, Edits},
    {A::RemoveOuter, "Remove Outer Polyline", RemoveOuter, HasOuter},
    {A::ResetOuter, "Reset Outer Point Positions", ResetOuter, IsMatched},
    {A::MakeOuter, "Make Outer Polyline", MakeOuter, CanMakeOuter, HasOuter, "Double Poly",
     "Make Double Poly", "MakeDoublePolyline", 0x20021},
    {A::EnableOuter, "Enable Outer Polyline", ToggleOuterEnabled, HasOuter,
     IsEnabled<OuterPolygon>},
    {A::FollowInner, "Follow Inner Polyline", Turn<&PolySettings::followInner>, HasOuter,
     Is<&PolySettings::followInner>, "Follow Inner", "Follow Inner Poly", nullptr, 0x20022},
    {A::EnableInner, "Enable Polyline", ToggleInnerEnabled, CanEnableInner,
     IsEnabled<InnerPolygon>},
    {A::CardinalToBezier, "Cardinal to Bezier", ConvertToBezier,
     IsKind<CLSID_DataType_CardinalSplinePolyline>},
    {A::BSplineToBezier, "B-Spline to Bezier", ConvertToBezier,
     IsKind<CLSID_DataType_BSplinePolyline>},
    {A::BezierToBSpline, "Bezier to B-Spline", ConvertToBSpline, IsKind<CLSID_DataType_Polyline>},
    {A::ConvertToXYPath, "Convert to XYPath", ConvertPathToXY, IsPathInput},
    {A::ShapeBox, "Shape Box\tShift+B", ToggleShapeBox, HasPoints, Is<&PolySettings::shapeBox>,
     "Shape", "Shape Box (Shift+B)", "ShapeBox", 0x2001c},
    {A::ShapeBoxBoth, "Shape Box Both Polylines", Turn<&PolySettings::shapeBoxBoth>, HasOuter,
     Is<&PolySettings::shapeBoxBoth>},
    {A::Subdivide, "Subdivide…", SubdivideShape, HasPoints},
    {A::ReducePoints, "Reduce Points…", ReducePoints, HasPoints, nullptr, "Reduce", "Reduce Points",
     "ReducePoints", 0x2001e},
    {A::AveragePoints, "Average", AveragePoints, HasSelection},

    // Look.
    {A::StyleSolid, "Solid", SetStyle<PolyDrawStyle::Solid>, nullptr,
     InStyle<PolyDrawStyle::Solid>},
    {A::StyleDash, "Dash", SetStyle<PolyDrawStyle::Dash>, nullptr, InStyle<PolyDrawStyle::Dash>},
    {A::StyleNull, "Null", SetStyle<PolyDrawStyle::Null>, nullptr, InStyle<PolyDrawStyle::Null>},
    {A::SplineColor, "Custom Spline Color…", ChooseSplineColor},
    {A::KeyPointColor, "Custom Key Point Color…", ChooseKeyPointColor},
    {A::HandleColor, "Custom Handle Color…", ChooseHandleColor},

    // Publishing.
    {A::PublishPoints, "Publish Points\tShift+P", PublishSelected, CanPublish, nullptr, nullptr,
     nullptr, nullptr, 0, "Publish Points (Shift+P)"},
    {A::UnpublishPoints, nullptr, UnpublishSelected, HasPublishedSelection, nullptr, nullptr,
     nullptr, nullptr, 0, "Unpublish Points (Shift+P)"},
    {A::PublishToPath, "Publish To Path", PublishSelectedToPath, CanPublish, nullptr, nullptr,
     nullptr, nullptr, 0, "Publish to Path", "Publish points and animate with a Path"},
    {A::PublishToXYPath, "Publish To XYPath", PublishSelectedToXYPath, CanPublish, nullptr, nullptr,
     nullptr, nullptr, 0, "Publish to XYPath", "Publish points and animate with a XYPath"},
    {A::PublishToTracker, "Publish To Tracker", PublishSelectedToTracker, CanPublish, nullptr,
     nullptr, nullptr, nullptr, 0, "Publish to Tracker", "Publish points and attach to a Tracker"},
    {A::FollowPublished, "Follow Published Points\tShift+F", FollowPublishedPoints, CanFollow,
     nullptr, "Follow Points", "Make points follow nearby published points (Shift+F)",
     "FollowPublished", 0x20020},
    {A::PublishMenu, nullptr, nullptr, Edits, nullptr, "Publish", "Publish Menu", "PublishPoints",
     0x2001f},

    // What shows.
    {A::PointNumbers, "Point Numbers\tShift+T", Turn<&PolySettings::showNumbers>, nullptr,
     Is<&PolySettings::showNumbers>},
    {A::CurrentTimeOnly, "Current Time Only", TurnAttr<PLC_CurrentTimeOnly>, nullptr,
     Is<&PolySettings::currentTimeOnly>, "Current", "Current Time Only", "CurrentTimeOnly",
     0x20013},
    {A::SelectAll, "Select All\tShift+A", SelectAllPoints, HasPoints, nullptr, "Select All",
     "Select All points (Shift+A)", "SelectAll", 0x20018},
    {A::LockSelection, "Lock Point Selection", Turn<&PolySettings::lockSelection>, nullptr,
     Is<&PolySettings::lockSelection>},
    {A::PublishingEnabled, "Publishing Path Points Enabled", TurnAttr<PLC_CanPublishPoints>,
     nullptr, Is<&PolySettings::canPublishPoints>},
    {A::ShowKeyPoints, "Key Points\tShift+K", TurnAttr<PLC_ShowKeyPoints>, nullptr,
     Is<&PolySettings::showKeyPoints>, "Keys", "Show Key Points (Shift+K)", "ShowKeys", 0x20019},
    {A::ShowHull, "Convex Hull Polygon\tShift+H", Turn<&PolySettings::showHull>, nullptr,
     Is<&PolySettings::showHull>},
    {A::ShowHandles, "Handles\tShift+H", TurnAttr<PLC_ShowHandles>, nullptr,
     Is<&PolySettings::showHandles>, "Handles", "Show All Handles (Shift+H)", "ShowHandles",
     0x2001a},
    {A::ShowPolygon, "Polygon\tShift+P", TurnAttr<PLC_ShowPolyLine>, nullptr,
     Is<&PolySettings::showPolyLine>, "Polygon", "Show Polygon curve", nullptr, 0x2001b},
    {A::ShowTaggedIDs, "Show Tagged Point IDs", TurnAttr<PLC_ShowTaggedPointIDs>, nullptr,
     Is<&PolySettings::showTaggedPointIDs>},
    {A::ShowKeyList, "Show Poly Keys Dialog\tK", ShowKeyList, IsListed},

    // Onion skins.
    {A::OnionSkin, "Onion skin\tCtrl+Alt+O", Turn<&PolySettings::onionSkin>, nullptr,
     Is<&PolySettings::onionSkin>, "Onion Skin", "Onion Skin (Ctrl+Alt+O)", "OnionSkin", 0x20024},
    {A::OnionSettings, "Onion skin settings…", EditOnionSettings, nullptr, nullptr, nullptr,
     nullptr, nullptr, 0, "Onion skin settings…", "Onion skin settings"},
    {A::OnionClickSetsTime, "Onion skin click to Set Current Time", TurnClickSetsTime, nullptr,
     ClickSetsTime, nullptr, nullptr, nullptr, 0, "Click on shape to set current time"},
    {A::OnionResetAnchor, "Reset onion skin anchor", ResetOnionAnchor, nullptr, nullptr, nullptr,
     nullptr, nullptr, 0, "Reset anchor to current time"},
    {A::SetPrevSkinColor, "Set prev skin color", ChoosePrevSkinColor},
    {A::ResetPrevSkinColor, "Reset prev skin color",
     [](C& c) { c.ChangeSettings().prevSkinColor = 0; }, HasPickedColor},

    // Roto assist.
    {A::RotoEnable, "Enable\tCtrl+R", ToggleRotoAssist, Edits, IsRoto<&RotoAssistSettings::enabled>,
     "Roto Assist", "Roto Assist (Ctrl+R)", "RotoAssist", 0x20067},
    {A::RotoTrackPoints, "Track Points", ToggleRotoFollow, Never,
     IsRoto<&RotoAssistSettings::follow>, nullptr, nullptr, nullptr, 0x20069, nullptr, nullptr,
     NeedsEdgeFollowing},
    {A::RotoEdges, nullptr, ToggleRotoEdges, Never, IsRoto<&RotoAssistSettings::edges>, nullptr,
     nullptr, nullptr, 0x2006a, "Auto-roto Edges", nullptr, NeedsEdgeFollowing},
    {A::RotoMultiplePoints, "Roto Assist Multiple Points",
     TurnRoto<&RotoAssistSettings::multiplePoints>, nullptr,
     IsRoto<&RotoAssistSettings::multiplePoints>, nullptr, nullptr, nullptr, 0x2006b},
    {A::RotoDistance, "Distance %d…", AskRotoDistance, Edits, nullptr, nullptr, nullptr, nullptr,
     0x2006c},
    {A::RotoFrameSkip, "Frame Skip", AskRotoFrameSkip, Edits, nullptr, nullptr, nullptr, nullptr,
     0x2006d, "Track Frame Skip %d…"},
    {A::RotoCreateTrackPoints, "Create Track Points", CreateTrackPoints, HasPoints, nullptr,
     nullptr, nullptr, nullptr, 0x2006e},
    {A::RotoReset, "Reset", ResetRotoAssist, Edits, nullptr, nullptr, nullptr, nullptr, 0x2006f},
    {A::RotoShowArea, "Show Tracker Area", TurnRoto<&RotoAssistSettings::showArea>, nullptr,
     IsRoto<&RotoAssistSettings::showArea>, nullptr, nullptr, nullptr, 0x20070},
    {A::RotoPatternEdit, "Track Pattern Edit Mode", TurnRoto<&RotoAssistSettings::patternEdit>,
     nullptr, IsRoto<&RotoAssistSettings::patternEdit>, nullptr, nullptr, nullptr, 0x20071},
    {A::RotoResetPattern, "Reset Track Pattern to PolyLine Points", ResetTrackPattern, HasPoints,
     nullptr, nullptr, nullptr, nullptr, 0, "Reset Track Pattern To PolyLine Points"},

    // Several at once.
    {A::EditMultiple, "Edit Multiple Polylines", Turn<&PolySettings::editBoth>, nullptr,
     Is<&PolySettings::editBoth>},
    {A::FramesNone, "None", SetFrames<MultiFrame::None>, nullptr, InFrames<MultiFrame::None>,
     nullptr, nullptr, nullptr, 0, "None", "No multiframe Editing"},
    {A::FramesPrev, "Prev", SetFrames<MultiFrame::Prev>, nullptr, InFrames<MultiFrame::Prev>,
     nullptr, nullptr, nullptr, 0, "Prev", "Editing multiframes prev"},
    {A::FramesNext, "Next", SetFrames<MultiFrame::Next>, nullptr, InFrames<MultiFrame::Next>,
     nullptr, nullptr, nullptr, 0, "Next", "Editing multiframes next"},
    {A::FramesAll, "All", SetFrames<MultiFrame::All>, nullptr, InFrames<MultiFrame::All>, nullptr,
     nullptr, nullptr, 0, "All", "Editing multiframes all"},
    {A::MultiframeMenu, nullptr, nullptr, nullptr,
     [](const C& c) { return c.Settings().multiFrame != MultiFrame::None; }, "Multiframe",
     "Multiframe Menu", "MultiTimeEdit", 0x20023},
    {A::StopRendering, "Stop Rendering\tShift+R", TurnAttr<PLC_StopRendering>, nullptr,
     Is<&PolySettings::stopRendering>},
    {A::RecordTime, "Time", TurnAttr<PLC_RecordTime>, nullptr, Is<&PolySettings::recordTime>},
    {A::RecordPressure, "Pressure", TurnAttr<PLC_RecordPressure>, nullptr,
     Is<&PolySettings::recordPressure>},
    {A::RecordHeight, "Height", TurnAttr<PLC_RecordHeight>, nullptr,
     Is<&PolySettings::recordHeight>},
    {A::RecordAngleXY, "Angle XY", TurnAttr<PLC_RecordAngleXY>, nullptr,
     Is<&PolySettings::recordAngleXY>},
    {A::RecordAngleZ, "Angle Z", TurnAttr<PLC_RecordAngleZ>, nullptr,
     Is<&PolySettings::recordAngleZ>},
    {A::RecordRotation, "Rotation", TurnAttr<PLC_RecordRotation>, nullptr,
     Is<&PolySettings::recordRotation>},

    // Files.
    {A::Export, "Export…", ExportFile, nullptr},
    {A::ExportDxf, nullptr, ExportDxf, HasPoints, nullptr, nullptr, nullptr, nullptr, 0x20080},
    {A::ImportLightWave, "Import LightWave MOT…", ImportLightWave, Edits},
    {A::ImportMotionPath, "Import Motion Path…", ImportMotionPath, Edits},
    {A::ImportShape, "Import Shape…", ImportShape, Edits},
    {A::ImportSsf, "Import SSF Shapes…", ImportSsf, Edits},
    {A::ImportFxs, "Import FXS (Silhouette) Shapes…", ImportFxs, Edits},
    {A::ImportNuke, "Import Nuke Shapes…", ImportNuke, Edits},
    {A::ImportBoujou, "Import Boujou Path…", ImportBoujou, Edits},
};

} // namespace

const PolyActionRow* FindAction(PolyAction action)
{
    const auto found =
        std::find_if(std::begin(rows), std::end(rows),
                     [action](const PolyActionRow& row) { return row.action == action; });
    return found == std::end(rows) ? nullptr : &*found;
}

const PolyActionRow* FindActionOfEvent(u32 event)
{
    if (event == rotoToggleEvent)
        return FindAction(PolyAction::RotoEnable);
    const auto found =
        std::find_if(std::begin(rows), std::end(rows), [event](const PolyActionRow& row) {
            return event != 0 && row.event == event;
        });
    return found == std::end(rows) ? nullptr : &*found;
}

bool IsActionEnabled(const PolyLineControl& control, PolyAction action)
{
    const PolyActionRow* row = FindAction(action);
    return row && (!row->enabled || row->enabled(control));
}

bool RunAction(PolyLineControl& control, PolyAction action)
{
    const PolyActionRow* row = FindAction(action);
    if (!row || !row->run || !IsActionEnabled(control, action))
        return false;
    const auto alive = Ref<PolyLineControl>::Share(&control); // it may remove the overlay
    row->run(control);
    control.UpdateDisplay(nullptr, nullptr);
    return true;
}

} // namespace Marlox
