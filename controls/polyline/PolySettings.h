#pragma once

#include "controls/polyline/OnionSkinSettings.h"
#include "controls/polyline/PolyTags.h"
#include "system/base/MxColor.h"
#include "system/base/ScriptVal.h"
#include "system/shapes/PolyPoint.h"
#include "system/shapes/SelMask.h"

#include <optional>
#include <vector>

namespace Marlox {

class TagList;

/// Which keys an edit changes besides the shape at the current time.
enum class MultiFrame : u8 { None, Prev, Next, All };

/// Settings of the automatic edge following: kept and shown, though nothing follows edges yet.
struct RotoAssistSettings {
    bool enabled = false;
    bool tracking = false;
    bool follow = false;
    bool edges = false;
    bool multiplePoints = false;
    bool keepsTool = true; // the tool is not told: without it, enabling disables the tool
    bool showArea = false;
    bool patternEdit = false;
    int distance = 4;   // 1 to 16, pixels
    int frameSkip = 1;  // 1 to 10
    int heldPoint = -1; // index of the point that the tracker holds; -1: none
    SelMask points;     // that are followed: of the shape when it was enabled
    bool recomputes = false;
    std::vector<ShapePlace> trackPoints; // one for each point of the shape, its coordinates
    double trackerSize = 0.03;           // image widths, where no input tells them
    double searchSize = 0.06;

    /// What Restore takes, for the state of an overlay.
    ScriptVal Saved() const;
    void Restore(const ScriptVal& from);

    friend bool operator==(const RotoAssistSettings&, const RotoAssistSettings&) = default;
};

/// Set in a colour 0xRRGGBB that somebody chose, so that black is one too.
inline constexpr u32 chosenColor = 0x1000000;

/// How a polyline overlay behaves and looks, apart from the shape. A value type.
struct PolySettings {
    /// The low half is the PolyDrawMode; the high one the export option: 1 writes headers and
    /// markers into the files of shapes.
    u8 drawMode = u8(PolyDrawMode::InsertAndModify);
    PolyDrawStyle drawStyle = PolyDrawStyle::Solid;
    bool recordTime = false;
    bool recordPressure = false;
    bool recordHeight = false;
    bool recordAngleXY = false;
    bool recordAngleZ = false;
    bool recordRotation = false;
    bool canPublishPoints = true;
    bool currentTimeOnly = false;
    bool showKeyPoints = true;
    bool showHandles = false; // of all points; those of selected points always show
    bool stopRendering = false;
    bool animated = false;
    bool followExternMatchPoint = true;
    bool showPolyLine = true;
    bool showTaggedPointIDs = true;
    u32 handleColor = 0; // 0xRRGGBB; 0: the view's
    u32 splineColor = 0;
    u32 keyPointColor = 0;

    // No attributes, but kept across a redisplay.
    bool showHull = false;
    bool showNumbers = false;
    bool lockSelection = false;
    bool shapeBox = false;
    bool shapeBoxBoth = false; // the box works on both polygons
    bool editBoth = false;     // "Edit Multiple Polylines"
    bool followInner = true;   // outer points go with the inner ones
    bool fineStep = false;     // arrow keys divide by the step factor
    int stepFactor = 1;        // of the arrow keys: 1, 10 or 100
    MultiFrame multiFrame = MultiFrame::None;
    bool onionSkin = false;
    OnionSkinSettings onion;
    std::optional<double> onionAnchor; // frames; none: not dropped yet
    u32 prevSkinColor = 0;             // 0xRRGGBB; 0: the view's
    RotoAssistSettings roto;

    PolyDrawMode Mode() const { return PolyDrawMode(drawMode & 0x0f); }
    int ExportOption() const { return drawMode >> 4; }
    /// Takes over the tags that are there. A draw mode that there is not is ignored.
    void Read(const TagList& tags);
    /// The value of one of the tags; false: another tag.
    bool Get(u32 tag, int64& value) const;
    /// What is no attribute.
    void Save(ScriptVal& to) const;
    void Restore(const ScriptVal& from);

    friend bool operator==(const PolySettings&, const PolySettings&) = default;
};

} // namespace Marlox
