#pragma once

#include "system/base/Types.h"

#include <span>
#include <vector>

namespace Marlox {

class Menu;
class PolyLineControl;
struct PolyRule;
struct ToolbarButton;

/// Everything that the menu, the toolbar and the keys of the polyline overlay can do. The numbers
/// are those of menu entries.
enum class PolyAction : u32 {
    None,
    ClickAppend,
    DrawAppend,
    InsertAndModify,
    ModifyOnly,
    Done,
    SetFocus,
    Closed,
    Copy,
    Paste,
    CopyPathPoints,
    CopyPathValue,
    CutPathPoints,
    PastePathPoints,
    PasteWithOffset,
    DeletePoints,
    LockPoints,
    LockPointPairs,
    EditPoint,
    Linear,
    Smooth,
    SmoothPointsDefault,
    SmoothPointsDialog,
    SmoothAnimation,
    EaseInOut,
    CreateEllipse,
    CreateRectangle,
    CreateSpiral,
    RemoveOuter,
    ResetOuter,
    MakeOuter,
    EnableOuter,
    FollowInner,
    EnableInner,
    CardinalToBezier,
    BSplineToBezier,
    BezierToBSpline,
    ConvertToXYPath,
    ShapeBox,
    ShapeBoxBoth,
    StyleSolid,
    StyleDash,
    StyleNull,
    SplineColor,
    KeyPointColor,
    HandleColor,
    Subdivide,
    ReducePoints,
    PublishPoints,
    UnpublishPoints,
    PublishToPath,
    PublishToXYPath,
    PublishToTracker,
    FollowPublished,
    PointNumbers,
    CurrentTimeOnly,
    SelectAll,
    LockSelection,
    SelectMatching,
    PublishingEnabled,
    ShowKeyPoints,
    ShowHull,
    ShowHandles,
    ShowPolygon,
    ShowTaggedIDs,
    ShowKeyList,
    OnionSkin,
    OnionSettings,
    OnionClickSetsTime,
    OnionResetAnchor,
    SetPrevSkinColor,
    ResetPrevSkinColor,
    RotoEnable,
    RotoTrackPoints,
    RotoEdges,
    RotoMultiplePoints,
    RotoDistance,
    RotoFrameSkip,
    RotoCreateTrackPoints,
    RotoReset,
    RotoShowArea,
    RotoPatternEdit,
    RotoResetPattern,
    EditMultiple,
    FramesNone,
    FramesPrev,
    FramesNext,
    FramesAll,
    StopRendering,
    RecordTime,
    RecordPressure,
    RecordHeight,
    RecordAngleXY,
    RecordAngleZ,
    RecordRotation,
    Export,
    ExportDxf,
    ImportLightWave,
    ImportMotionPath,
    ImportShape,
    ImportSsf,
    ImportFxs,
    ImportNuke,
    ImportBoujou,
    FlipPoints,
    TagPoints,
    CutPoints,
    AveragePoints,
    PublishMenu,
    MultiframeMenu,
};

// The groups of the toolbar, as the overlay's class declares them (ToolGroup).
inline constexpr char PolyTools[] = "Poly_Tool";
inline constexpr char PolyToolsMultiFrames[] = "Poly_Tool_MultiFrames";
inline constexpr char PolyToolsOnionSkinning[] = "Poly_Tool_OnionSkinning";
inline constexpr char PolyToolsRotoAssist[] = "Poly_Tool_RotoAssist";

/// A row of the one table of actions: how it is shown, when it can be used, what it does.
struct PolyActionRow {
    using Test = bool (*)(const PolyLineControl& control);
    using Run = void (*)(PolyLineControl& control);
    struct Button {
        constexpr explicit Button(u32 event = 0, const char* text = nullptr,
                                  const char* tip = nullptr, const char* icon = nullptr)
            : event(event), text(text), tip(tip), icon(icon)
        {
        }
        u32 event;        // of the viewer; 0: none
        const char* text; // of the toolbar; null: no button
        const char* tip;
        const char* icon; // null: none
    };
    /// Within a pop-down of the toolbar.
    struct PopDown {
        constexpr explicit PopDown(const char* text = nullptr, const char* tip = nullptr)
            : text(text), tip(tip)
        {
        }
        const char* text; // null: as the menu
        const char* tip;
    };
    PolyAction action;
    const char* menu; // text of the context menu, its shortcut behind a tab; null: none
    Run run;
    std::span<const PolyRule> enabled = {}; // rules that must hold; none: always
    Test checked = nullptr;                 // null: it is no state
    Button button = Button();
    PopDown popDown = PopDown();
    Test listed = nullptr; // whether menus have it now; null: always
};

const PolyActionRow* FindAction(PolyAction action); // null: there is none
const PolyActionRow* FindActionOfEvent(u32 event);
/// The events of the toolbar's buttons, in their order.
const std::vector<u32>& ToolbarEvents();

/// Why it can't be used, for the user; null: it can.
const char* WhyNot(const PolyLineControl& control, PolyAction action);
bool IsActionEnabled(const PolyLineControl& control, PolyAction action);
/// Does it, if it is enabled.
bool RunAction(PolyLineControl& control, PolyAction action);
bool DescribeButton(const PolyLineControl& control, u32 event, ToolbarButton& button);
void FillContextMenu(const PolyLineControl& control, Menu& menu);
/// The entries of the pop-down that the toolbar's button of this event opens; false: it opens none.
bool FillPopDown(const PolyLineControl& control, u32 event, Menu& menu);
/// What a key does, with the code of Qt::Key; None: nothing.
PolyAction ActionOfKey(const PolyLineControl& control, int key, u32 modifiers);

} // namespace Marlox
