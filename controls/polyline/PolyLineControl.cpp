#include "controls/polyline/PolyLineControl.h"

#include "controls/polyline/PolyActions.h"
#include "controls/polyline/PolyDraw.h"
#include "controls/polyline/PolyKeyListDlg.h"
#include "controls/polyline/PolyPointDlg.h"
#include "controls/polyline/PolyPreferences.h"
#include "framework/ControlClass.h"
#include "system/document/MarloxDoc.h"
#include "system/document/Preferences.h"
#include "system/shapes/ShapeLinks.h"
#include "system/viewer/OverlayState.h"
#include "system/viewer/ToolGroup.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Marlox {

namespace {

/// A tag that tells an input by its place in the tool, and the PLCID_ tag that it stands in for.
struct PlaceTag {
    u32 place;
    u32 id;
};

constexpr PlaceTag placeTags[] = {
    {PLCD_SetX, PLCID_CenterX},
    {PLCD_SetY, PLCID_CenterY},
    {PLCD_SetAngle, PLCID_Angle},
    {PLCD_SetSize, PLCID_Size},
    {PLCD_SetAngleX, PLCID_AngleX},
    {PLCD_SetAngleY, PLCID_AngleY},
    {PLCD_SetTrackerSize, PLCID_TrackerSize},
    {PLCD_SetTrackerSearchSize, PLCID_TrackerSearchSize},
};

constexpr u32 unusedBound = PLCID_CenterZ + 2; // the gap in the numbers

Input* InputAtPlace(Operator* tool, double place)
{
    if (!tool || !(place >= 0.0) || !(place < double(tool->Inputs().size())))
        return nullptr;
    return tool->Inputs()[std::size_t(place)].Get();
}

} // namespace

PolyLineControl::PolyLineControl(const Registry* record, const ScriptVal& creator,
                                 const TagList& attributes)
    : PreviewControl(record, creator, attributes)
{
    for (std::unique_ptr<Bound>& bound : bound_)
        bound = std::make_unique<Bound>(*this);
    const Preferences& preferences = MarloxDoc::GetPreferences();
    settings_.onion = OnionSkinSettings::FromPreferences();
    const int option = preferences.Get(PREF_PolyExportOption, 1).toInt();
    settings_.drawMode = u8(settings_.drawMode | (std::clamp(option, 0, 15) << 4));
    settings_.Read(attributes);
    hasMode_ = attributes.Find(PLC_DrawMode) != nullptr;
}

PolyLineControl::~PolyLineControl()
{
    if (MarloxDoc* document = GetDoc())
        document->Undo().Unhold(&editor_);
    delete keyList_.data();
    delete pointEditor_.data();
}

std::size_t PolyLineControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes --------------------------------------------------------------------------------------

bool PolyLineControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    const PolySettings before = settings_;
    settings_.Read(tags);
    hasMode_ = hasMode_ || tags.Find(PLC_DrawMode);
    ReadBoundInputs(tags);
    if (tags.Find(PLC_DrawMode))
        PressModeEvent();
    if (settings_.Mode() != before.Mode())
        clicked_.clear();
    pending_ = Mode() == PolyDrawMode::ClickAppend ? &clicked_ : nullptr;
    const bool accepted = PreviewControl::SetAttrsTagList(input, tags);
    if (settings_ != before)
        UpdateDisplay(nullptr, nullptr);
    return accepted;
}

void PolyLineControl::ReadBoundInputs(const TagList& tags)
{
    for (std::size_t i = 0; i < boundCount; ++i) {
        const u32 id = PLCID_Center + u32(i);
        const u32 pointer = PLCP_Center + u32(i);
        if (id == unusedBound)
            continue;
        const auto place = std::find_if(std::begin(placeTags), std::end(placeTags),
                                        [id](const PlaceTag& each) { return each.id == id; });
        const bool byPlace = place != std::end(placeTags) && !tags.Find(id) &&
                             !tags.Find(pointer) && tags.Find(place->place);
        if (byPlace)
            bound_[i]->Attach(
                InputAtPlace(GetOperator(nullptr), tags.GetDouble(place->place, -1.0)));
        else
            bound_[i]->ReadFrom(tags, id, pointer);
    }
    ReadShapes();
}

bool PolyLineControl::CopyAttr(u64 tag, void* out)
{
    int64 value = 0;
    if (!settings_.Get(u32(tag), value))
        return PreviewControl::CopyAttr(tag, out);
    std::memcpy(out, &value, sizeof value);
    return true;
}

u64 PolyLineControl::DoTagList(unsigned int command, TagList& tags)
{
    if (command == Redisplay)
        ReadShapes();
    return PreviewControl::DoTagList(command, tags);
}

void PolyLineControl::SetAttr(u32 tag, int64 value)
{
    const auto alive = Ref<PolyLineControl>::Share(this);
    const TagList change{{tag, value}};
    Input* const input = Inputs().empty() ? nullptr : Inputs().front();
    if (input && !input->Owner().IsLocked()) {
        FollowInputAttr(tag);
        input->SetAttrsTagList(change); // it comes back to the overlays of all views
    } else {
        SetAttrsTagList(input, change);
    }
}

PolySettings& PolyLineControl::ChangeSettings()
{
    UpdateDisplay(nullptr, nullptr);
    return settings_;
}

void PolyLineControl::ChangeRoto(const char* text,
                                 const std::function<void(RotoAssistSettings& roto)>& change)
{
    if (!CanEdit())
        return;
    const PolyNest nest(*this, text);
    const RotoAssistSettings before = settings_.roto;
    change(ChangeSettings().roto);
    KeepRotoChange(text, before);
    if (before.enabled != settings_.roto.enabled && !settings_.roto.keepsTool)
        GetOperator(nullptr)->DisableTool(settings_.roto.enabled);
}

void PolyLineControl::KeepRotoChange(const char* text, const RotoAssistSettings& before)
{
    if (settings_.roto == before)
        return;
    const auto saved = [](const RotoAssistSettings& roto) {
        ScriptVal state = ScriptVal::MakeTable();
        state.Set("RotoAssist", roto.Saved());
        return state;
    };
    PushOverlayState(*this, QString::fromLatin1(text), saved(before), saved(settings_.roto));
}

void PolyLineControl::SetMode(PolyDrawMode mode)
{
    if (mode == Mode())
        return;
    const auto alive = Ref<PolyLineControl>::Share(this);
    SetAttr(PLC_DrawMode, int64(mode));
    const bool draws = mode == PolyDrawMode::ClickAppend || mode == PolyDrawMode::DrawAppend;
    if (draws && !hasFocused_ && CanEdit()) {
        hasFocused_ = true;
        TakeViewFocus();
    }
}

void PolyLineControl::ChangeModeUndoably(PolyDrawMode mode, const char* text)
{
    const auto state = [](PolyDrawMode which) {
        ScriptVal table = ScriptVal::MakeTable();
        table.Set("DrawMode", int(which));
        return table;
    };
    if (mode == Mode())
        return;
    PushOverlayState(*this, QString::fromLatin1(text), state(Mode()), state(mode));
    SetMode(mode);
}

PolyDrawMode PolyLineControl::ModeAfterClose()
{
    const QString name = MarloxDoc::GetPrefString(PREF_PolyAfterCloseMode, "InsertAndModify");
    return name == QLatin1String("InsertAndModify") ? PolyDrawMode::InsertAndModify
                                                    : PolyDrawMode::ModifyOnly;
}

void PolyLineControl::SetView(PreviewInfo* view, TagList* tags)
{
    PreviewControl::SetView(view, tags);
    PressModeEvent();
}

void PolyLineControl::TakeViewFocus()
{
    if (view_ && view_->services)
        view_->services->TakeFocus(*this);
}

// Registration ------------------------------------------------------------------------------------

namespace {

struct PolyLineFacts : OverlayFacts {
    using Class = PolyLineControl;
    static constexpr char name[] = "PolyLineControl";
    static constexpr RecordFacts records[] = {{"PolylineControl", "PolylineControl"}};
    static constexpr TagMapEntry tagNames[] = {
        {"PLC_DrawMode", PLC_DrawMode},
        {"PLC_RecordTime", PLC_RecordTime},
        {"PLC_RecordPressure", PLC_RecordPressure},
        {"PLC_RecordHeight", PLC_RecordHeight},
        {"PLC_RecordAngleXY", PLC_RecordAngleXY},
        {"PLC_RecordAngleZ", PLC_RecordAngleZ},
        {"PLC_RecordRotation", PLC_RecordRotation},
        {"PLC_CanPublishPoints", PLC_CanPublishPoints},
        {"PLC_CurrentTimeOnly", PLC_CurrentTimeOnly},
        {"PLC_ShowKeyPoints", PLC_ShowKeyPoints},
        {"PLC_ShowHandles", PLC_ShowHandles},
        {"PLC_StopRendering", PLC_StopRendering},
        {"PLC_Animated", PLC_Animated},
        {"PLC_HandleColor", PLC_HandleColor},
        {"PLC_FollowExternMatchPoint", PLC_FollowExternMatchPoint},
        {"PLC_ShowPolyLine", PLC_ShowPolyLine},
        {"PLC_DrawStyle", PLC_DrawStyle},
        {"PLC_ShowTaggedPointIDs", PLC_ShowTaggedPointIDs},
        {"PLCD_SetX", PLCD_SetX},
        {"PLCD_SetY", PLCD_SetY},
        {"PLCD_SetAngle", PLCD_SetAngle},
        {"PLCD_SetSize", PLCD_SetSize},
        {"PLCD_SetAngleX", PLCD_SetAngleX},
        {"PLCD_SetAngleY", PLCD_SetAngleY},
        {"PLCD_SetTrackerSize", PLCD_SetTrackerSize},
        {"PLCD_SetTrackerSearchSize", PLCD_SetTrackerSearchSize},
        {"PLCID_Center", PLCID_Center},
        {"PLCID_Angle", PLCID_Angle},
        {"PLCID_Size", PLCID_Size},
        {"PLCID_Displacement", PLCID_Displacement},
        {"PLCID_CurrentTimePoint", PLCID_CurrentTimePoint},
        {"PLCID_AngleX", PLCID_AngleX},
        {"PLCID_AngleY", PLCID_AngleY},
        {"PLCID_AngleZ", PLCID_AngleZ},
        {"PLCID_InPolyLine2", PLCID_InPolyLine2},
        {"PLCID_CenterX", PLCID_CenterX},
        {"PLCID_CenterY", PLCID_CenterY},
        {"PLCID_CenterZ", PLCID_CenterZ},
        {"PLCID_TrackerSize", PLCID_TrackerSize},
        {"PLCID_TrackerSearchSize", PLCID_TrackerSearchSize},
        {"PLCP_Center", PLCP_Center},
        {"PLCP_Angle", PLCP_Angle},
        {"PLCP_Size", PLCP_Size},
        {"PLCP_Displacement", PLCP_Displacement},
        {"PLCP_CurrentTimePoint", PLCP_CurrentTimePoint},
        {"PLCP_AngleX", PLCP_AngleX},
        {"PLCP_AngleY", PLCP_AngleY},
        {"PLCP_AngleZ", PLCP_AngleZ},
        {"PLCP_InPolyLine2", PLCP_InPolyLine2},
        {"PLCP_CenterX", PLCP_CenterX},
        {"PLCP_CenterY", PLCP_CenterY},
        {"PLCP_CenterZ", PLCP_CenterZ},
        {"PLCP_TrackerSize", PLCP_TrackerSize},
        {"PLCP_TrackerSearchSize", PLCP_TrackerSearchSize},
        {},
    };
    struct Resources {
        ToolGroup groups[4]{{PolyTools, "PolylineControl", "Add Poly Tool"},
                            {PolyToolsMultiFrames, "PolylineControl"},
                            {PolyToolsOnionSkinning, "PolylineControl"},
                            {PolyToolsRotoAssist, "PolylineControl"}};
        ResDIB closed[2]{{"Icons.Polyline.Closed.1", 0}, {"Icons.Polyline.Closed.2", 0}};
        ResDIB currentTimeOnly[2]{{"Icons.Polyline.CurrentTimeOnly.1", 0},
                                  {"Icons.Polyline.CurrentTimeOnly.2", 0}};
        ResDIB deleteIcon[2]{{"Icons.Polyline.Delete.1", 0}, {"Icons.Polyline.Delete.2", 0}};
        ResDIB drawClick[2]{{"Icons.Polyline.DrawClick.1", 0}, {"Icons.Polyline.DrawClick.2", 0}};
        ResDIB drawDone[2]{{"Icons.Polyline.DrawDone.1", 0}, {"Icons.Polyline.DrawDone.2", 0}};
        ResDIB drawFreehand[2]{{"Icons.Polyline.DrawFreehand.1", 0},
                               {"Icons.Polyline.DrawFreehand.2", 0}};
        ResDIB drawInsertAndModify[2]{{"Icons.Polyline.DrawInsertandModify.1", 0},
                                      {"Icons.Polyline.DrawInsertandModify.2", 0}};
        ResDIB drawModifyOnly[2]{{"Icons.Polyline.DrawModifyOnly.1", 0},
                                 {"Icons.Polyline.DrawModifyOnly.2", 0}};
        ResDIB followPublished[2]{{"Icons.Polyline.FollowPublished.1", 0},
                                  {"Icons.Polyline.FollowPublished.2", 0}};
        ResDIB linear[2]{{"Icons.Polyline.Linear.1", 0}, {"Icons.Polyline.Linear.2", 0}};
        ResDIB lock[2]{{"Icons.Polyline.Lock.1", 0}, {"Icons.Polyline.Lock.2", 0}};
        ResDIB makeDoublePolyline[2]{{"Icons.Polyline.MakeDoublePolyline.1", 0},
                                     {"Icons.Polyline.MakeDoublePolyline.2", 0}};
        ResDIB multiTimeEdit[2]{{"Icons.Polyline.MultiTimeEdit.1", 0},
                                {"Icons.Polyline.MultiTimeEdit.2", 0}};
        ResDIB onionSkin[2]{{"Icons.Polyline.OnionSkin.1", 0}, {"Icons.Polyline.OnionSkin.2", 0}};
        ResDIB publishPoints[2]{{"Icons.Polyline.PublishPoints.1", 0},
                                {"Icons.Polyline.PublishPoints.2", 0}};
        ResDIB reducePoints[2]{{"Icons.Polyline.ReducePoints.1", 0},
                               {"Icons.Polyline.ReducePoints.2", 0}};
        ResDIB rotoAssist[2]{{"Icons.Polyline.RotoAssist.1", 0},
                             {"Icons.Polyline.RotoAssist.2", 0}};
        ResDIB selectAll[2]{{"Icons.Polyline.SelectAll.1", 0}, {"Icons.Polyline.SelectAll.2", 0}};
        ResDIB shapeBox[2]{{"Icons.Polyline.ShapeBox.1", 0}, {"Icons.Polyline.ShapeBox.2", 0}};
        ResDIB showHandles[2]{{"Icons.Polyline.ShowHandles.1", 0},
                              {"Icons.Polyline.ShowHandles.2", 0}};
        ResDIB showKeys[2]{{"Icons.Polyline.ShowKeys.1", 0}, {"Icons.Polyline.ShowKeys.2", 0}};
        ResColor prevSkin{"Controls.Polyline.PrevSkinColour", MxColor(240, 120, 110)};
        ResColor nextSkin{"Controls.Polyline.NextSkinColour", MxColor(110, 190, 240)};
        ResDIB smooth[2]{{"Icons.Polyline.Smooth.1", 0}, {"Icons.Polyline.Smooth.2", 0}};
    };
};

} // namespace

template <>
ControlClass<PolyLineFacts> controlClass<PolyLineFacts>{};
MARLOX_SCRIPT_CASTS(PolyLineControl)

MxColor PrevSkinColor()
{
    return controlClass<PolyLineFacts>.resources.prevSkin.Color();
}

MxColor NextSkinColor()
{
    return controlClass<PolyLineFacts>.resources.nextSkin.Color();
}

} // namespace Marlox
