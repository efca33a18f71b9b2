#include "system/shapes/PathModifier.h"

#include "system/base/HostTags.h"
#include "system/document/MarloxDoc.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Marlox {

namespace {

// Of the overlay: the input that tells where on the path it is.
constexpr u32 PLCID_Displacement = 0x80058003;
// Of the crosshair: a rectangle for a mark.
constexpr u32 CHC_Style = 0x10058000;
constexpr int rectangleStyle = 2;

constexpr double normalAspect = 16.0 / 9.0;

void addNumber(Operator& tool, const char* id, const char* name, const char* help, double low,
               double high, double normal, const TagList& further = {})
{
    TagList tags{{IAS_Name, name},
                 {IAS_Help, help},
                 {IAD_LowScale, low},
                 {IAD_HighScale, high},
                 {IAD_Default, normal},
                 {IAS_Control, CLSID_InputControl_Slider},
                 {IAS_DataType, CLSID_DataType_Number}};
    for (const TagPair* pair = further.First(); pair; pair = further.Next(pair))
        tags.Add(u32(pair->tag), pair->value);
    tool.AddInput(id, tags);
}

void addPosition(Operator& tool, const char* help)
{
    tool.AddInput("Position", {{IAS_Name, "Position"},
                               {IAS_Help, help},
                               {IAS_Control, CLSID_InputControl_Offset},
                               {IAS_DataType, CLSID_DataType_Point},
                               {IA_Computed, true}});
}

double heightsPerWidth(const Operator& path, double time)
{
    const Input* aspect = path.FindInput("FrameAspect");
    const double value = aspect ? aspect->GetNumber(time, normalAspect) : normalAspect;
    return value > 0.0 ? 1.0 / value : 1.0 / normalAspect;
}

/// How much of the length lies before each point, 0 to 1, as GetPointOnPath measures it.
std::vector<double> fractionsOf(const PolyLine& path, double heights)
{
    std::vector<double> fractions(std::size_t(path.GetCount()));
    std::vector<double> parameters;
    const std::vector<ShapePlace> places = path.GetSamplePoints(1e-5, &parameters);
    double length = 0.0;
    for (std::size_t i = 1; i < places.size(); ++i) {
        const ShapePlace by = places[i] - places[i - 1];
        length += std::hypot(by.x, by.y * heights);
        const double index = std::round(parameters[i]);
        if (std::abs(parameters[i] - index) < 1e-9 && index < double(fractions.size()))
            fractions[std::size_t(index)] = length;
    }
    for (double& fraction : fractions)
        fraction = length > 0.0 ? fraction / length : 0.0;
    return fractions;
}

/// Lets segments be straight whose key does not go on smoothly. `isCurved`: the segment behind each
/// point.
void straighten(PolyLine& path, const std::vector<bool>& isCurved)
{
    std::vector<PolyPoint> points(path.Points().begin(), path.Points().end());
    for (std::size_t i = 0; i < points.size(); ++i) {
        PolyPoint& point = points[i];
        const bool comesCurved = i > 0 && isCurved[i - 1];
        const bool goesCurved = i + 1 < points.size() && isCurved[i];
        if (!comesCurved)
            point.inX = point.inY = 0.0;
        if (!goesCurved)
            point.outX = point.outY = 0.0;
        point.Set(PPF_Linear, !comesCurved && !goesCurved);
        point.Set(PPF_Broken, comesCurved != goesCurved && i > 0 && i + 1 < points.size());
    }
    path.SetPoints(std::move(points));
}

/// The path through the places without those that repeat; `indices` tells each key's point.
Ref<PolyLine> pathThrough(std::span<const PathKey> keys, PathForm form,
                          std::vector<std::size_t>& indices)
{
    std::vector<PolyPoint> points;
    std::vector<bool> isCurved;
    for (const PathKey& key : keys) {
        if (points.empty() || !(points.back().Place() == key.at)) {
            PolyPoint point;
            point.x = key.at.x;
            point.y = key.at.y;
            point.Set(PPF_Linear, form == PathForm::Linear);
            points.push_back(point);
        }
        isCurved.resize(points.size());
        isCurved.back() = key.interpolation == Interpolation::Smooth; // the last one at the place
        indices.push_back(points.size() - 1);
    }
    const auto path = MakeRef<PolyLine>();
    const std::vector<u8> all(points.size(), 1);
    path->SetPoints(std::move(points));
    if (form != PathForm::Linear)
        path->Smooth({}, all);
    if (form == PathForm::ByKeys)
        straighten(*path, isCurved);
    return path;
}

} // namespace

PathModifier::PathModifier(const Registry* record) : Operator(record)
{
    AddInput("PolyLine", {{IAS_Name, "PolyLine"},
                          {IAS_Help, "The path; draw it in the viewer"},
                          {IAS_DataType, CLSID_DataType_Polyline},
                          {IAS_Overlay, "PolylineControl"},
                          {PLCID_Displacement, "Displacement"}});
    addNumber(*this, "Displacement", "Displacement",
              "How far along the path the position is: 0 at its first point, 1 at its last", 0.0,
              1.0, 0.0, {{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}});
    addNumber(*this, "FrameAspect", "Frame Aspect",
              "The picture's width over its height; lengths along the path count in it", 0.5, 3.0,
              normalAspect, {{IAD_Minimum, 0.01}, {IAD_Maximum, 100.0}});
    addPosition(*this, "Where on the path it is; expressions of other points read it");
    addNumber(*this, "Heading", "Heading",
              "Which way the path runs there, in degrees counter-clockwise; 0 is to the right",
              -180.0, 180.0, 0.0, {{IA_Computed, true}});
}

void PathModifier::TakeAspect(const Image::Format& format)
{
    const MxRect& frame = format.displayWindow;
    if (frame.Width() <= 0 || frame.Height() <= 0)
        return;
    Input* const aspect = FindInput("FrameAspect");
    Input::State state = aspect->GetState();
    state.value = MakeRef<Number>(frame.Width() * format.pixelAspect / frame.Height());
    aspect->RestoreInputState(state);
}

Ref<Parameter> PathModifier::Compute(const Input& input, double time) const
{
    const Ref<PolyLine> path = ResolvedShape(*FindInput("PolyLine"), time);
    const double heights = heightsPerWidth(*this, time);
    ShapePlace at;
    ShapePlace direction;
    if (!path ||
        !path->GetPointOnPath(FindInput("Displacement")->GetNumber(time), heights, at, &direction))
        return {};
    if (input.GetDataType() == MxID(CLSID_DataType_Point))
        return MakeRef<Point>(at.x, at.y);
    return MakeRef<Number>(std::atan2(direction.y * heights, direction.x) * 180.0 /
                           std::numbers::pi);
}

std::unique_ptr<ToolProcess> PathModifier::Prepare(double) const
{
    return {}; // it has no picture
}

TrackerModifier::TrackerModifier(const Registry* record) : Operator(record)
{
    AddInput("PatternCenter", {{IAS_Name, "Pattern Center"},
                               {IAS_Help, "Where the pattern is that is followed"},
                               {IAS_Control, CLSID_InputControl_Offset},
                               {IAS_DataType, CLSID_DataType_Point},
                               {IAS_Overlay, "CrosshairControl"},
                               {CHC_Style, rectangleStyle}});
    const TagList range{{IAD_Minimum, 0.0}, {IAD_Maximum, 1.0}};
    addNumber(*this, "PatternSize", "Pattern Size",
              "Width and height of the pattern, as part of the picture's width", 0.0, 0.2, 0.02,
              range);
    addNumber(*this, "SearchSize", "Search Size",
              "How far around the pattern it is looked for, as part of the picture's width", 0.0,
              0.5, 0.06, range);
    addPosition(*this, "Where the pattern is; expressions of other points read it");
}

Ref<Parameter> TrackerModifier::Compute(const Input&, double time) const
{
    return FindInput("PatternCenter")->GetValue(time);
}

std::unique_ptr<ToolProcess> TrackerModifier::Prepare(double) const
{
    return {}; // it has no picture
}

bool SetPathKeys(Operator& path, std::span<const PathKey> keys, PathForm form)
{
    Input* const line = path.FindInput("PolyLine");
    Input* const displacement = path.FindInput("Displacement");
    const bool finite = std::all_of(keys.begin(), keys.end(), [](const PathKey& key) {
        return std::isfinite(key.time) && std::isfinite(key.at.x) && std::isfinite(key.at.y);
    });
    if (keys.empty() || !finite || !line || !displacement || path.IsLocked())
        return false;
    std::vector<PathKey> ordered(keys.begin(), keys.end());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const PathKey& a, const PathKey& b) { return a.time < b.time; });
    std::vector<std::size_t> indices;
    const Ref<PolyLine> through = pathThrough(ordered, form, indices);
    const std::vector<double> fractions =
        fractionsOf(*through, heightsPerWidth(path, ordered.front().time));
    Animation along;
    for (std::size_t i = 0; i < ordered.size(); ++i)
        along.SetKey(ordered[i].time, MakeRef<Number>(fractions[indices[i]]),
                     ordered[i].interpolation);
    MarloxDoc* const document = path.GetDoc();
    if (document)
        document->StartUndo("Set Path");
    ReleaseFollowersOfLost(*line, {through, {}, {}, {}});
    const bool taken = line->SetValue(*through, TimeNone) &&
                       displacement->ChangeTo({displacement->GetState().value, along, {}, {}});
    if (document)
        document->EndUndo(taken);
    return taken;
}

} // namespace Marlox
