// Where the actions show: the context menu, the toolbar with its pop-downs.

#include "controls/polyline/PolyActions.h"
#include "controls/polyline/PolyLineControl.h"
#include "system/controls/Menu.h"
#include "system/viewer/ToolbarEvents.h"

#include <algorithm>
#include <span>

namespace Marlox {

namespace {

using A = PolyAction;

/// A line of a menu: an entry, the beginning or the end of a submenu, or a line between groups.
struct Node {
    enum Kind { Entry, Radio, Open, Close, Line };
    Kind kind;
    A action = A::None;
    const char* text = nullptr; // of a submenu

    constexpr Node(A action) : kind(Entry), action(action) {}
    constexpr Node(Kind kind, A action = A::None) : kind(kind), action(action) {}
    constexpr Node(const char* text) : kind(Open), text(text) {}
};

constexpr Node::Kind End = Node::Close;
constexpr Node::Kind Line = Node::Line;
constexpr Node::Kind Radio = Node::Radio;

constexpr Node contextMenu[] = {
    {Radio, A::ClickAppend},
    {Radio, A::DrawAppend},
    {Radio, A::InsertAndModify},
    {Radio, A::ModifyOnly},
    {Radio, A::Done},
    Line,
    A::SetFocus,
    A::Closed,
    Line,
    A::Copy,
    A::Paste,
    A::CopyPathPoints,
    A::CopyPathValue,
    A::CutPathPoints,
    A::PastePathPoints,
    A::PasteWithOffset,
    Line,
    A::DeletePoints,
    A::LockPoints,
    A::LockPointPairs,
    A::EditPoint,
    Line,
    A::Linear,
    A::Smooth,
    "Smooth Points",
    A::SmoothPointsDefault,
    A::SmoothPointsDialog,
    A::AveragePoints,
    End,
    A::SmoothAnimation,
    A::EaseInOut,
    Line,
    "Create",
    A::CreateEllipse,
    A::CreateRectangle,
    A::CreateSpiral,
    End,
    Line,
    A::RemoveOuter,
    A::ResetOuter,
    A::MakeOuter,
    A::EnableOuter,
    A::FollowInner,
    A::EnableInner,
    Line,
    A::CardinalToBezier,
    A::BSplineToBezier,
    A::BezierToBSpline,
    A::ConvertToXYPath,
    Line,
    A::ShapeBox,
    A::ShapeBoxBoth,
    Line,
    "Draw Style",
    {Radio, A::StyleSolid},
    {Radio, A::StyleDash},
    {Radio, A::StyleNull},
    End,
    A::SplineColor,
    A::KeyPointColor,
    A::HandleColor,
    Line,
    A::Subdivide,
    A::ReducePoints,
    Line,
    "Publish",
    A::PublishPoints,
    "Publish To",
    A::PublishToPath,
    A::PublishToXYPath,
    A::PublishToTracker,
    End,
    A::FollowPublished,
    End,
    Line,
    A::PointNumbers,
    A::CurrentTimeOnly,
    A::SelectAll,
    A::LockSelection,
    A::SelectMatching,
    A::PublishingEnabled,
    Line,
    "Show",
    A::ShowKeyPoints,
    A::ShowHull,
    A::ShowHandles,
    A::ShowPolygon,
    A::ShowTaggedIDs,
    A::ShowKeyList,
    End,
    "Onion skin",
    A::OnionSkin,
    A::OnionSettings,
    A::OnionClickSetsTime,
    A::OnionResetAnchor,
    A::SetPrevSkinColor,
    A::ResetPrevSkinColor,
    End,
    "Roto Assist",
    A::RotoEnable,
    A::RotoTrackPoints,
    A::RotoMultiplePoints,
    A::RotoDistance,
    A::RotoFrameSkip,
    A::RotoCreateTrackPoints,
    A::RotoReset,
    A::RotoShowArea,
    A::RotoPatternEdit,
    A::RotoResetPattern,
    End,
    Line,
    A::EditMultiple,
    "Edit Multiple Frames",
    {Radio, A::FramesNone},
    {Radio, A::FramesPrev},
    {Radio, A::FramesNext},
    {Radio, A::FramesAll},
    End,
    Line,
    A::StopRendering,
    "Record",
    A::RecordTime,
    A::RecordPressure,
    A::RecordHeight,
    A::RecordAngleXY,
    A::RecordAngleZ,
    A::RecordRotation,
    End,
    Line,
    A::Export,
    "Import",
    A::ImportLightWave,
    A::ImportMotionPath,
    A::ImportShape,
    A::ImportSsf,
    A::ImportFxs,
    A::ImportNuke,
    A::ImportBoujou,
    End,
};

constexpr A toolbar[] = {
    A::ClickAppend,     A::DrawAppend,     A::InsertAndModify, A::ModifyOnly,      A::Done,
    A::CurrentTimeOnly, A::Closed,         A::LockPoints,      A::Smooth,          A::Linear,
    A::SelectAll,       A::ShowKeyPoints,  A::ShowHandles,     A::ShowPolygon,     A::ShapeBox,
    A::DeletePoints,    A::ReducePoints,   A::PublishMenu,     A::FollowPublished, A::MakeOuter,
    A::FollowInner,     A::MultiframeMenu, A::OnionSkin,       A::RotoEnable,
};

// Pop-downs.

constexpr Node publishEntries[] = {A::PublishPoints, A::PublishToPath, A::PublishToXYPath,
                                   A::PublishToTracker};
constexpr Node unpublishEntries[] = {A::UnpublishPoints, A::PublishToPath, A::PublishToXYPath,
                                     A::PublishToTracker};
constexpr Node multiframeEntries[] = {
    {Radio, A::FramesNone}, {Radio, A::FramesPrev}, {Radio, A::FramesNext}, {Radio, A::FramesAll}};
constexpr Node onionEntries[] = {A::OnionSettings, A::OnionClickSetsTime, A::OnionResetAnchor,
                                 A::SetPrevSkinColor, A::ResetPrevSkinColor};
constexpr Node rotoEntries[] = {A::RotoTrackPoints, A::RotoEdges,     A::RotoMultiplePoints,
                                A::RotoDistance,    A::RotoFrameSkip, A::RotoCreateTrackPoints,
                                A::RotoReset,       A::RotoShowArea,  A::RotoPatternEdit,
                                A::RotoResetPattern};

/// What a button of the toolbar opens, and the group that it leads.
struct PopDown {
    A button;
    const char* group;
    std::span<const Node> entries;
    A instead = A::None; // with this one to be used, the other entries
    std::span<const Node> others = {};
};

constexpr PopDown popDowns[] = {
    {A::PublishMenu, PolyTools, publishEntries, A::UnpublishPoints, unpublishEntries},
    {A::MultiframeMenu, PolyToolsMultiFrames, multiframeEntries},
    {A::OnionSkin, PolyToolsOnionSkinning, onionEntries},
    {A::RotoEnable, PolyToolsRotoAssist, rotoEntries},
};

const PopDown* PopDownOf(A button)
{
    const auto found =
        std::find_if(std::begin(popDowns), std::end(popDowns),
                     [button](const PopDown& each) { return each.button == button; });
    return found == std::end(popDowns) ? nullptr : &*found;
}

std::span<const Node> EntriesOf(const PolyLineControl& control, A button)
{
    const PopDown* popDown = PopDownOf(button);
    if (!popDown)
        return {};
    const bool other = popDown->instead != A::None && IsActionEnabled(control, popDown->instead);
    return other ? popDown->others : popDown->entries;
}

QString TextOf(const PolyLineControl& control, const PolyActionRow& row, const char* text)
{
    const RotoAssistSettings& roto = control.Settings().roto;
    const int number = row.action == A::RotoDistance ? roto.distance : roto.frameSkip;
    if (row.action == A::OnionClickSetsTime && text == row.popDown.text &&
        control.Settings().onion.clickSetsTime)
        return QStringLiteral("Enabled setting current time");
    return QString::fromUtf8(text)
        .replace(QLatin1String("%d"), QString::number(number))
        .replace(QLatin1String("%s"),
                 QLatin1String(NameOfPolygon(OtherPolygon(control.Editor().ActivePolygon()))));
}

void AddEntry(const PolyLineControl& control, Menu& menu, const Node& node, bool popDown)
{
    const PolyActionRow& row = *FindAction(node.action);
    if (row.listed && !row.listed(control))
        return;
    const char* text = popDown && row.popDown.text ? row.popDown.text : row.menu;
    const char* reason = WhyNot(control, node.action);
    const QString shown = TextOf(control, row, text);
    const bool checked = row.checked && row.checked(control);
    if (node.kind == Node::Radio)
        menu.AddRadio(u32(node.action), shown, checked, !reason);
    else if (row.checked)
        menu.AddCheck(u32(node.action), shown, checked, !reason);
    else
        menu.Add(u32(node.action), shown, !reason);
    if (reason)
        menu.SetTip(QString::fromUtf8(reason));
    else if (popDown && row.popDown.tip)
        menu.SetTip(QString::fromUtf8(row.popDown.tip));
}

/// Up to the end of the submenu; returns what is left.
std::span<const Node> FillFrom(const PolyLineControl& control, Menu& menu,
                               std::span<const Node> nodes, bool popDown)
{
    while (!nodes.empty()) {
        const Node& node = nodes.front();
        nodes = nodes.subspan(1);
        if (node.kind == Node::Close)
            break;
        if (node.kind == Node::Line) {
            menu.AddSeparator();
        } else if (node.kind == Node::Open) {
            Menu submenu = menu.AddSubmenu(QString::fromUtf8(node.text));
            nodes = FillFrom(control, submenu, nodes, popDown);
        } else {
            AddEntry(control, menu, node, popDown);
        }
    }
    return nodes;
}

} // namespace

void FillContextMenu(const PolyLineControl& control, Menu& menu)
{
    FillFrom(control, menu, contextMenu, false);
}

bool FillPopDown(const PolyLineControl& control, u32 event, Menu& menu)
{
    const PolyActionRow* row = FindActionOfEvent(event);
    const std::span<const Node> entries =
        row ? EntriesOf(control, row->action) : std::span<const Node>();
    FillFrom(control, menu, entries, true);
    return !entries.empty();
}

const std::vector<u32>& ToolbarEvents()
{
    static const std::vector<u32> events = [] {
        std::vector<u32> all;
        for (const A action : toolbar)
            all.push_back(FindAction(action)->button.event);
        return all;
    }();
    return events;
}

bool DescribeButton(const PolyLineControl& control, u32 event, ToolbarButton& button)
{
    const PolyActionRow* row = FindActionOfEvent(event);
    if (!row || !row->button.text)
        return false;
    button.event = event;
    button.text = QString::fromUtf8(row->button.text);
    button.tip = QString::fromUtf8(row->button.tip);
    button.icon = row->button.icon
                      ? QLatin1String("Icons.Polyline.") + QLatin1String(row->button.icon)
                      : QString();
    const PopDown* popDown = PopDownOf(row->action);
    button.group = QString::fromLatin1(popDown ? popDown->group : PolyTools);
    button.reason = QString::fromUtf8(WhyNot(control, row->action));
    button.enabled = button.reason.isEmpty();
    button.checkable = row->checked != nullptr;
    button.checked = row->checked && row->checked(control);
    button.popDown = popDown != nullptr;
    button.clicks = button.popDown && row->run;
    return true;
}

} // namespace Marlox
