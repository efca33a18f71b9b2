// The table of actions. When they can be used is in PolyRules.h, where they show in PolyMenus.cpp.

#include "controls/polyline/PolyActions.h"

#include "controls/polyline/PolyCommands.h"
#include "controls/polyline/PolyRules.h"

#include <algorithm>
#include <vector>

namespace Marlox {

namespace {

using C = PolyLineControl;
using A = PolyAction;
using Button = PolyActionRow::Button;
using PopDown = PolyActionRow::PopDown;
namespace R = PolyRules;

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
/// What says nothing without an outer polygon, and without points.
template <bool PolySettings::*member>
bool IsOfOuter(const C& c)
{
    return c.Settings().*member && R::IsOuterDrawn(c);
}
bool HasShapeBox(const C& c)
{
    return c.Settings().shapeBox && R::IsDrawn(c);
}
template <bool RotoAssistSettings::*member>
bool IsRoto(const C& c)
{
    return c.Settings().roto.*member;
}
template <int polygon>
bool IsEnabled(const C& c)
{
    const bool is = polygon == InnerPolygon || R::IsOuterDrawn(c);
    return is && c.Editor().Shape(polygon) && c.Editor().Shape(polygon)->IsEnabled();
}
bool IsClosed(const C& c)
{
    return c.Editor().IsClosed();
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

constexpr PolyActionRow rows[] = {
    // Draw modes.
    {A::ClickAppend, "Click Append\tShift+C", SetMode<PolyDrawMode::ClickAppend>, R::unlocked,
     InMode<PolyDrawMode::ClickAppend>,
     Button(0x2000e, "Click", "Click Append (Shift+C)", "DrawClick")},
    {A::DrawAppend, "Draw Append\tShift+D", SetMode<PolyDrawMode::DrawAppend>, R::unlocked,
     InMode<PolyDrawMode::DrawAppend>,
     Button(0x2000f, "Draw", "Draw Append (Shift+D)", "DrawFreehand")},
    {A::InsertAndModify, "Insert and Modify\tShift+I", SetMode<PolyDrawMode::InsertAndModify>,
     R::unlocked, InMode<PolyDrawMode::InsertAndModify>,
     Button(0x20010, "Insert", "Insert and Modify (Shift+I)", "DrawInsertandModify")},
    {A::ModifyOnly, "Modify Only\tShift+M", SetMode<PolyDrawMode::ModifyOnly>, R::unlocked,
     InMode<PolyDrawMode::ModifyOnly>,
     Button(0x20011, "Modify", "Modify Only (Shift+M)", "DrawModifyOnly")},
    {A::Done, "Done\tShift+N", SetMode<PolyDrawMode::Done>, R::unlocked, InMode<PolyDrawMode::Done>,
     Button(0x20012, "Done", "Done (Shift+N)", "DrawDone")},
    {A::SetFocus, "Set Focus", [](C& c) { c.TakeViewFocus(); }},
    {A::Closed, "Closed\tShift+O", TogglePolygonClosed, R::canClose, IsClosed,
     Button(0x20014, "Closed", "Close the polyline (Shift+O)", "Closed")},

    // Clipboard.
    {A::Copy, "Copy\tCtrl+C", CopyWholeShape},
    {A::Paste, "Paste\tCtrl+V", PasteWholeShape, R::edits},
    {A::CopyPathPoints, "Copy Path Points\tCtrl+C", CopyPoints, R::drawn},
    {A::CopyPathValue, "Copy Path Value", CopyValue, R::copiesValue},
    {A::CutPathPoints, "Cut Path Points\tCtrl+X", CutPoints, R::changesSelection},
    {A::PastePathPoints, "Paste Path Points\tCtrl+V", PastePoints, R::edits},
    {A::PasteWithOffset, "Paste With Offset", PastePointsWithOffset, R::edits},

    // Points.
    {A::DeletePoints, "Delete Points\tDel", [](C& c) { DeleteSelectedPoints(c); }, R::hasSelection,
     nullptr, Button(0x2001d, "Delete", "Delete Points (Del)", "Delete")},
    {A::LockPoints, "Lock Points", ToggleLocked, R::hasPoints, AllSelected<PPF_Locked>,
     Button(0x20015, "Lock", "Lock Points", "Lock")},
    {A::LockPointPairs, "Lock Point Pairs", ToggleLockedPairs, R::matched, AllSelected<PPF_Locked>},
    {A::EditPoint, "Edit Point\tE", ToggleEditPoint, R::editsPoint},
    {A::Linear, "Linear\tShift+L", LinearSelected, R::hasPoints, nullptr,
     Button(0x20017, "Linear", "Linear  (Shift+L)", "Linear")},
    {A::Smooth, "Smooth\tShift+S", SmoothSelected, R::hasPoints, nullptr,
     Button(0x20016, "Smooth", "Smooth (Shift+S)", "Smooth")},
    {A::SmoothPointsDefault, "Default", SmoothPointsDefault, R::hasPoints},
    {A::SmoothPointsDialog, "Dialog…", SmoothPointsDialog, R::hasPoints},
    {A::SmoothAnimation, "Smooth Animation", SmoothAnimation, R::isKeyed<3>},
    {A::EaseInOut, "Ease In / Out…", EaseInOut, R::isKeyed<2>},
    {A::FlipPoints, nullptr, FlipPoints, R::hasPoints},
    {A::TagPoints, nullptr, TagSelected, R::changesSelection},
    {A::CutPoints, nullptr, CutPoints, R::changesSelection},

    // Shapes.
    {A::CreateEllipse, "Ellipse…", CreateEllipse, R::edits},
    {A::CreateRectangle, "Rectangle…", CreateRectangle, R::edits},
    {A::CreateSpiral, "Spiral…", CreateSpiral, R::edits},
    {A::RemoveOuter, "Remove Outer Polyline", RemoveOuter, R::hasOuter},
    {A::ResetOuter, "Reset Outer Point Positions", ResetOuter, R::matched},
    {A::MakeOuter, "Make Outer Polyline", MakeOuter, R::makesOuter, R::IsOuterDrawn,
     Button(0x20021, "Double Poly", "Make Double Poly", "MakeDoublePolyline")},
    {A::EnableOuter, "Enable Outer Polyline", ToggleOuterEnabled, R::hasOuter,
     IsEnabled<OuterPolygon>},
    {A::FollowInner, "Follow Inner Polyline", Turn<&PolySettings::followInner>, R::hasOuter,
     IsOfOuter<&PolySettings::followInner>, Button(0x20022, "Follow Inner", "Follow Inner Poly")},
    {A::EnableInner, "Enable Polyline", ToggleInnerEnabled, R::turnsInner, IsEnabled<InnerPolygon>},
    {A::CardinalToBezier, "Cardinal to Bezier", ConvertToBezier,
     R::isKind<CLSID_DataType_CardinalSplinePolyline>},
    {A::BSplineToBezier, "B-Spline to Bezier", ConvertToBezier,
     R::isKind<CLSID_DataType_BSplinePolyline>},
    {A::BezierToBSpline, "Bezier to B-Spline", ConvertToBSpline,
     R::isKind<CLSID_DataType_Polyline>},
    {A::ConvertToXYPath, "Convert to XYPath", ConvertPathToXY, R::hasPath},
    {A::ShapeBox, "Shape Box\tShift+B", ToggleShapeBox, R::hasPoints, HasShapeBox,
     Button(0x2001c, "Shape", "Shape Box (Shift+B)", "ShapeBox")},
    {A::ShapeBoxBoth, "Shape Box Both Polylines", Turn<&PolySettings::shapeBoxBoth>, R::hasOuter,
     IsOfOuter<&PolySettings::shapeBoxBoth>},
    {A::Subdivide, "Subdivide…", SubdivideShape, R::hasPoints},
    {A::ReducePoints, "Reduce Points…", ReducePoints, R::hasPoints, nullptr,
     Button(0x2001e, "Reduce", "Reduce Points", "ReducePoints")},
    {A::AveragePoints, "Average", AveragePoints, R::hasSelection},

    // Look.
    {A::StyleSolid, "Solid", SetStyle<PolyDrawStyle::Solid>, R::unlocked,
     InStyle<PolyDrawStyle::Solid>},
    {A::StyleDash, "Dash", SetStyle<PolyDrawStyle::Dash>, R::unlocked,
     InStyle<PolyDrawStyle::Dash>},
    {A::StyleNull, "Null", SetStyle<PolyDrawStyle::Null>, R::unlocked,
     InStyle<PolyDrawStyle::Null>},
    {A::SplineColor, "Custom Spline Color…", ChooseSplineColor, R::unlocked},
    {A::KeyPointColor, "Custom Key Point Color…", ChooseKeyPointColor, R::unlocked},
    {A::HandleColor, "Custom Handle Color…", ChooseHandleColor, R::unlocked},

    // Publishing.
    {A::PublishPoints, "Publish Points\tShift+P", PublishSelected, R::publishes, nullptr, Button(),
     PopDown("Publish Points (Shift+P)")},
    {A::UnpublishPoints, nullptr, UnpublishSelected, R::unpublishes, nullptr, Button(),
     PopDown("Unpublish Points (Shift+P)")},
    {A::PublishToPath, "Publish To Path", PublishSelectedToPath, R::publishes, nullptr, Button(),
     PopDown("Publish to Path", "Publish points and animate with a Path")},
    {A::PublishToXYPath, "Publish To XYPath", PublishSelectedToXYPath, R::publishes, nullptr,
     Button(), PopDown("Publish to XYPath", "Publish points and animate with a XYPath")},
    {A::PublishToTracker, "Publish To Tracker", PublishSelectedToTracker, R::publishes, nullptr,
     Button(), PopDown("Publish to Tracker", "Publish points and attach to a Tracker")},
    {A::FollowPublished, "Follow Published Points\tShift+F", ToggleFollowPublished, R::follows,
     R::AllFollow,
     Button(0x20020, "Follow Points", "Make points follow nearby published points (Shift+F)",
            "FollowPublished")},
    {A::PublishMenu, nullptr, nullptr, R::edits, nullptr,
     Button(0x2001f, "Publish", "Publish Menu", "PublishPoints")},

    // What shows.
    {A::PointNumbers, "Point Numbers\tShift+T", Turn<&PolySettings::showNumbers>, R::always,
     Is<&PolySettings::showNumbers>},
    {A::CurrentTimeOnly, "Current Time Only", TurnAttr<PLC_CurrentTimeOnly>, R::always,
     Is<&PolySettings::currentTimeOnly>,
     Button(0x20013, "Current", "Current Time Only", "CurrentTimeOnly")},
    {A::SelectAll, "Select All\tShift+A", SelectAllPoints, R::canSelect, nullptr,
     Button(0x20018, "Select All", "Select All points (Shift+A)", "SelectAll")},
    {A::LockSelection, "Lock Point Selection", Turn<&PolySettings::lockSelection>, R::always,
     Is<&PolySettings::lockSelection>},
    {A::SelectMatching, "Select matching point from the %s polyline", SelectMatchingPoint,
     R::selectsMatch, nullptr, Button(), PopDown(), R::IsDouble},
    {A::PublishingEnabled, "Publishing Path Points Enabled", TurnAttr<PLC_CanPublishPoints>,
     R::unlocked, Is<&PolySettings::canPublishPoints>},
    {A::ShowKeyPoints, "Key Points\tShift+K", TurnAttr<PLC_ShowKeyPoints>, R::always,
     Is<&PolySettings::showKeyPoints>,
     Button(0x20019, "Keys", "Show Key Points (Shift+K)", "ShowKeys")},
    {A::ShowHull, "Convex Hull Polygon\tShift+H", Turn<&PolySettings::showHull>, R::always,
     Is<&PolySettings::showHull>},
    {A::ShowHandles, "Handles\tShift+H", TurnAttr<PLC_ShowHandles>, R::always,
     Is<&PolySettings::showHandles>,
     Button(0x2001a, "Handles", "Show All Handles (Shift+H)", "ShowHandles")},
    {A::ShowPolygon, "Polygon\tShift+P", TurnAttr<PLC_ShowPolyLine>, R::always,
     Is<&PolySettings::showPolyLine>, Button(0x2001b, "Polygon", "Show Polygon curve")},
    {A::ShowTaggedIDs, "Show Tagged Point IDs", TurnAttr<PLC_ShowTaggedPointIDs>, R::always,
     Is<&PolySettings::showTaggedPointIDs>},
    {A::ShowKeyList, "Show Poly Keys Dialog\tK", ShowKeyList, R::listed},

    // Onion skins.
    {A::OnionSkin, "Onion skin\tCtrl+Alt+O", ToggleOnionSkin, R::always,
     Is<&PolySettings::onionSkin>,
     Button(0x20024, "Onion Skin", "Onion Skin (Ctrl+Alt+O)", "OnionSkin")},
    {A::OnionSettings, "Onion skin settings…", EditOnionSettings, R::always, nullptr, Button(),
     PopDown("Onion skin settings…", "Onion skin settings")},
    {A::OnionClickSetsTime, "Onion skin click to Set Current Time", TurnClickSetsTime, R::always,
     ClickSetsTime, Button(), PopDown("Click on shape to set current time")},
    {A::OnionResetAnchor, "Reset onion skin anchor", ResetOnionAnchor, R::always, nullptr, Button(),
     PopDown("Reset anchor to current time")},
    {A::SetPrevSkinColor, "Set prev skin color", ChoosePrevSkinColor},
    {A::ResetPrevSkinColor, "Reset prev skin color",
     [](C& c) { c.ChangeSettings().prevSkinColor = 0; }, R::picked},

    // Roto assist.
    {A::RotoEnable, "Enable\tCtrl+R", ToggleRotoAssist, R::edits,
     IsRoto<&RotoAssistSettings::enabled>,
     Button(0x20067, "Roto Assist", "Roto Assist (Ctrl+R)", "RotoAssist")},
    {A::RotoTrackPoints, "Track Points", ToggleRotoFollow, R::never,
     IsRoto<&RotoAssistSettings::follow>, Button(0x20069)},
    {A::RotoEdges, nullptr, ToggleRotoEdges, R::never, IsRoto<&RotoAssistSettings::edges>,
     Button(0x2006a), PopDown("Auto-roto Edges")},
    {A::RotoMultiplePoints, "Roto Assist Multiple Points",
     TurnRoto<&RotoAssistSettings::multiplePoints>, R::edits,
     IsRoto<&RotoAssistSettings::multiplePoints>, Button(0x2006b)},
    {A::RotoDistance, "Distance %d…", AskRotoDistance, R::edits, nullptr, Button(0x2006c)},
    {A::RotoFrameSkip, "Frame Skip", AskRotoFrameSkip, R::edits, nullptr, Button(0x2006d),
     PopDown("Track Frame Skip %d…")},
    {A::RotoCreateTrackPoints, "Create Track Points", CreateTrackPoints, R::hasPoints, nullptr,
     Button(0x2006e)},
    {A::RotoReset, "Reset", ResetRotoAssist, R::edits, nullptr, Button(0x2006f)},
    {A::RotoShowArea, "Show Tracker Area", TurnRoto<&RotoAssistSettings::showArea>, R::always,
     IsRoto<&RotoAssistSettings::showArea>, Button(0x20070)},
    {A::RotoPatternEdit, "Track Pattern Edit Mode", TurnRoto<&RotoAssistSettings::patternEdit>,
     R::edits, IsRoto<&RotoAssistSettings::patternEdit>, Button(0x20071)},
    {A::RotoResetPattern, "Reset Track Pattern to PolyLine Points", ResetTrackPattern, R::hasPoints,
     nullptr, Button(), PopDown("Reset Track Pattern To PolyLine Points")},

    // Several at once.
    {A::EditMultiple, "Edit Multiple Polylines", Turn<&PolySettings::editBoth>, R::always,
     Is<&PolySettings::editBoth>},
    {A::FramesNone, "None", SetFrames<MultiFrame::None>, R::always, InFrames<MultiFrame::None>,
     Button(), PopDown("None", "No multiframe Editing")},
    {A::FramesPrev, "Prev", SetFrames<MultiFrame::Prev>, R::always, InFrames<MultiFrame::Prev>,
     Button(), PopDown("Prev", "Editing multiframes prev")},
    {A::FramesNext, "Next", SetFrames<MultiFrame::Next>, R::always, InFrames<MultiFrame::Next>,
     Button(), PopDown("Next", "Editing multiframes next")},
    {A::FramesAll, "All", SetFrames<MultiFrame::All>, R::always, InFrames<MultiFrame::All>,
     Button(), PopDown("All", "Editing multiframes all")},
    {A::MultiframeMenu, nullptr, nullptr, R::always,
     [](const C& c) { return c.Settings().multiFrame != MultiFrame::None; },
     Button(0x20023, "Multiframe", "Multiframe Menu", "MultiTimeEdit")},
    {A::StopRendering, "Stop Rendering\tShift+R", TurnAttr<PLC_StopRendering>, R::unlocked,
     Is<&PolySettings::stopRendering>},
    {A::RecordTime, "Time", TurnAttr<PLC_RecordTime>, R::unlocked, Is<&PolySettings::recordTime>},
    {A::RecordPressure, "Pressure", TurnAttr<PLC_RecordPressure>, R::unlocked,
     Is<&PolySettings::recordPressure>},
    {A::RecordHeight, "Height", TurnAttr<PLC_RecordHeight>, R::unlocked,
     Is<&PolySettings::recordHeight>},
    {A::RecordAngleXY, "Angle XY", TurnAttr<PLC_RecordAngleXY>, R::unlocked,
     Is<&PolySettings::recordAngleXY>},
    {A::RecordAngleZ, "Angle Z", TurnAttr<PLC_RecordAngleZ>, R::unlocked,
     Is<&PolySettings::recordAngleZ>},
    {A::RecordRotation, "Rotation", TurnAttr<PLC_RecordRotation>, R::unlocked,
     Is<&PolySettings::recordRotation>},

    // Files.
    {A::Export, "Export…", ExportFile},
    {A::ExportDxf, nullptr, ExportDxf, R::hasPoints, nullptr, Button(0x20080)},
    {A::ImportLightWave, "Import LightWave MOT…", ImportLightWave, R::edits},
    {A::ImportMotionPath, "Import Motion Path…", ImportMotionPath, R::edits},
    {A::ImportShape, "Import Shape…", ImportShape, R::edits},
    {A::ImportSsf, "Import SSF Shapes…", ImportSsf, R::edits},
    {A::ImportFxs, "Import FXS (Silhouette) Shapes…", ImportFxs, R::edits},
    {A::ImportNuke, "Import Nuke Shapes…", ImportNuke, R::edits},
    {A::ImportBoujou, "Import Boujou Path…", ImportBoujou, R::edits},
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
            return event != 0 && row.button.event == event;
        });
    return found == std::end(rows) ? nullptr : &*found;
}

const char* WhyNot(const PolyLineControl& control, PolyAction action)
{
    const PolyActionRow* row = FindAction(action);
    if (!row)
        return "There is no such action.";
    const auto broken = std::find_if(row->enabled.begin(), row->enabled.end(),
                                     [&](const PolyRule& rule) { return !rule.holds(control); });
    return broken == row->enabled.end() ? nullptr : broken->otherwise;
}

bool IsActionEnabled(const PolyLineControl& control, PolyAction action)
{
    return !WhyNot(control, action);
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
