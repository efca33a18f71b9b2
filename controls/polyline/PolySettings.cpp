#include "controls/polyline/PolySettings.h"

#include "system/base/TagList.h"
#include "system/shapes/PolyLine.h"

#include <algorithm>
#include <string>

namespace Marlox {

namespace {

struct Flag {
    u32 tag;
    bool PolySettings::*member;
};

constexpr Flag flags[] = {
    {PLC_RecordTime, &PolySettings::recordTime},
    {PLC_RecordPressure, &PolySettings::recordPressure},
    {PLC_RecordHeight, &PolySettings::recordHeight},
    {PLC_RecordAngleXY, &PolySettings::recordAngleXY},
    {PLC_RecordAngleZ, &PolySettings::recordAngleZ},
    {PLC_RecordRotation, &PolySettings::recordRotation},
    {PLC_CanPublishPoints, &PolySettings::canPublishPoints},
    {PLC_CurrentTimeOnly, &PolySettings::currentTimeOnly},
    {PLC_ShowKeyPoints, &PolySettings::showKeyPoints},
    {PLC_ShowHandles, &PolySettings::showHandles},
    {PLC_StopRendering, &PolySettings::stopRendering},
    {PLC_Animated, &PolySettings::animated},
    {PLC_FollowExternMatchPoint, &PolySettings::followExternMatchPoint},
    {PLC_ShowPolyLine, &PolySettings::showPolyLine},
    {PLC_ShowTaggedPointIDs, &PolySettings::showTaggedPointIDs},
};

/// What SaveState keeps, by its name there.
struct SavedFlag {
    const char* name;
    bool PolySettings::*member;
};

constexpr SavedFlag savedFlags[] = {
    {"ShowHull", &PolySettings::showHull},           {"ShowNumbers", &PolySettings::showNumbers},
    {"LockSelection", &PolySettings::lockSelection}, {"ShapeBox", &PolySettings::shapeBox},
    {"ShapeBoxBoth", &PolySettings::shapeBoxBoth},   {"EditBoth", &PolySettings::editBoth},
    {"OnionSkin", &PolySettings::onionSkin},         {"FollowInner", &PolySettings::followInner},
    {"FineStep", &PolySettings::fineStep},
};

struct SavedRotoFlag {
    const char* name;
    bool RotoAssistSettings::*member;
};

constexpr SavedRotoFlag savedRotoFlags[] = {
    {"Enabled", &RotoAssistSettings::enabled},
    {"KeepsTool", &RotoAssistSettings::keepsTool},
    {"Follow", &RotoAssistSettings::follow},
    {"Edges", &RotoAssistSettings::edges},
    {"MultiplePoints", &RotoAssistSettings::multiplePoints},
    {"ShowArea", &RotoAssistSettings::showArea},
    {"PatternEdit", &RotoAssistSettings::patternEdit},
    {"Tracking", &RotoAssistSettings::tracking},
    {"Recomputes", &RotoAssistSettings::recomputes},
};

u32 ColorOf(const TagList& tags, u32 tag, u32 otherwise)
{
    return u32(tags.GetLong(tag, int64(otherwise))) & 0x1ffffffu;
}

int WholeOf(const ScriptVal& value, int low, int high, int otherwise)
{
    const double number = value.ToNumber(otherwise);
    return number >= low && number <= high ? int(number) : otherwise;
}

double SizeOf(const ScriptVal& value, double otherwise)
{
    const double size = value.ToNumber(otherwise);
    return size > 0.0 && size <= 1.0 ? size : otherwise;
}

} // namespace

void PolySettings::Read(const TagList& tags)
{
    if (tags.Find(PLC_DrawMode)) {
        const auto mode = u8(tags.GetLong(PLC_DrawMode) & 0x0f);
        if (mode <= u8(PolyDrawMode::ModifyOnly))
            drawMode = u8((drawMode & 0xf0) | mode);
    }
    for (const Flag& flag : flags)
        this->*flag.member = tags.GetBool(flag.tag, this->*flag.member);
    const int64 style = tags.GetLong(PLC_DrawStyle, int64(drawStyle));
    if (style >= 0 && style <= int64(PolyDrawStyle::Null))
        drawStyle = PolyDrawStyle(style);
    handleColor = ColorOf(tags, PLC_HandleColor, handleColor);
}

bool PolySettings::Get(u32 tag, int64& value) const
{
    const auto flag = std::find_if(std::begin(flags), std::end(flags),
                                   [tag](const Flag& each) { return each.tag == tag; });
    if (flag != std::end(flags))
        value = this->*flag->member;
    else if (tag == PLC_DrawMode)
        value = drawMode;
    else if (tag == PLC_DrawStyle)
        value = int64(drawStyle);
    else if (tag == PLC_HandleColor)
        value = handleColor;
    else
        return false;
    return true;
}

void PolySettings::Save(ScriptVal& to) const
{
    for (const SavedFlag& flag : savedFlags)
        to.Set(flag.name, this->*flag.member);
    to.Set("ExportOption", ExportOption());
    to.Set("StepFactor", stepFactor);
    to.Set("MultiFrame", int(multiFrame));
    to.Set("SplineColor", double(splineColor));
    to.Set("KeyPointColor", double(keyPointColor));
    to.Set("PrevSkinColor", double(prevSkinColor));
    if (onionAnchor)
        to.Set("SkinAnchor", *onionAnchor);
    ScriptVal skins = ScriptVal::MakeTable();
    skins.Set("Count", double(onion.count));
    skins.Set("Step", double(onion.step));
    skins.Set("Flags", int(onion.flags));
    skins.Set("Anchor", onion.anchor);
    skins.Set("ClickSetsTime", onion.clickSetsTime);
    to.Set("Skins", skins);
    to.Set("RotoAssist", roto.Saved());
}

void PolySettings::Restore(const ScriptVal& from)
{
    for (const SavedFlag& flag : savedFlags)
        this->*flag.member = from.Get(flag.name).ToBool(this->*flag.member);
    drawMode =
        u8((drawMode & 0x0f) | (WholeOf(from.Get("ExportOption"), 0, 15, ExportOption()) << 4));
    const int factor = WholeOf(from.Get("StepFactor"), 1, 100, stepFactor);
    stepFactor = factor == 10 || factor == 100 ? factor : 1;
    multiFrame = MultiFrame(WholeOf(from.Get("MultiFrame"), 0, 3, int(multiFrame)));
    splineColor = u32(WholeOf(from.Get("SplineColor"), 0, 0x1ffffff, int(splineColor)));
    keyPointColor = u32(WholeOf(from.Get("KeyPointColor"), 0, 0x1ffffff, int(keyPointColor)));
    prevSkinColor = u32(WholeOf(from.Get("PrevSkinColor"), 0, 0x1ffffff, int(prevSkinColor)));
    if (from.Get("SkinAnchor").IsNumber())
        onionAnchor = from.Get("SkinAnchor").ToNumber();
    const ScriptVal& skins = from.Get("Skins");
    onion.count = unsigned(WholeOf(skins.Get("Count"), 0, 1'000'000, int(onion.count)));
    onion.step = float(skins.Get("Step").ToNumber(double(onion.step)));
    onion.flags = std::uint16_t(WholeOf(skins.Get("Flags"), 0, 0xffff, onion.flags));
    onion.anchor = skins.Get("Anchor").ToBool(onion.anchor);
    onion.clickSetsTime = skins.Get("ClickSetsTime").ToBool(onion.clickSetsTime);
    roto.Restore(from.Get("RotoAssist"));
}

ScriptVal RotoAssistSettings::Saved() const
{
    ScriptVal saved = ScriptVal::MakeTable();
    for (const SavedRotoFlag& flag : savedRotoFlags)
        saved.Set(flag.name, this->*flag.member);
    saved.Set("Distance", distance);
    saved.Set("FrameSkip", frameSkip);
    saved.Set("HeldPoint", heldPoint);
    saved.Set("TrackerSize", trackerSize);
    saved.Set("SearchSize", searchSize);
    ScriptVal followed = ScriptVal::MakeTable();
    for (const int index : points.Items())
        followed.Append(index);
    followed.Set("Count", points.Count());
    saved.Set("Points", followed);
    ScriptVal places = ScriptVal::MakeTable();
    for (const ShapePlace& place : trackPoints) {
        places.Append(place.x);
        places.Append(place.y);
    }
    saved.Set("TrackPoints", places);
    return saved;
}

void RotoAssistSettings::Restore(const ScriptVal& from)
{
    for (const SavedRotoFlag& flag : savedRotoFlags)
        this->*flag.member = from.Get(flag.name).ToBool(this->*flag.member);
    distance = WholeOf(from.Get("Distance"), 1, 16, distance);
    frameSkip = WholeOf(from.Get("FrameSkip"), 1, 10, frameSkip);
    heldPoint = WholeOf(from.Get("HeldPoint"), -1, PolyLine::maxPoints - 1, heldPoint);
    trackerSize = SizeOf(from.Get("TrackerSize"), trackerSize);
    searchSize = SizeOf(from.Get("SearchSize"), searchSize);
    if (const ScriptVal& followed = from.Get("Points"); followed.IsTable()) {
        points.Create(WholeOf(followed.Get("Count"), 0, PolyLine::maxPoints, 0));
        for (const ScriptVal& index : followed.Elements())
            points.DoSet(WholeOf(index, 0, PolyLine::maxPoints, -1), SelMask::Select);
    }
    if (const ScriptVal& places = from.Get("TrackPoints"); places.IsTable()) {
        trackPoints.clear();
        for (std::size_t i = 1; i < places.Length(); i += 2)
            trackPoints.push_back({places.At(i).ToNumber(), places.At(i + 1).ToNumber()});
    }
}

} // namespace Marlox
