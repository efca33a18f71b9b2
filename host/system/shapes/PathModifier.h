#pragma once

#include "system/document/Operator.h"
#include "system/shapes/PolyLine.h"
#include "system/values/Image.h"

#include <span>

namespace Marlox {

inline constexpr char CLSID_Tool_Path[] = "Path";
inline constexpr char CLSID_Tool_Tracker[] = "Tracker";

/// Animates points along a path. Others read its results by expressions: "Path1.Position" (a point)
/// and "Path1.Heading" (degrees, counter-clockwise; 0 is to the right). Inputs: "PolyLine", the
/// path, an open shape drawn in the viewer; "Displacement", how far along it the position is, 0 to
/// 1 of its length in the picture, so that equal steps are equal ways; "FrameAspect", the picture's
/// width over its height, by which lengths and angles are measured.
class MARLOXSYSTEM_EXPORT PathModifier : public Operator {
public:
    explicit PathModifier(const Registry* record);

    /// FrameAspect becomes that of a picture; records nothing.
    void TakeAspect(const Image::Format& format);

    bool IsModifier() const override { return true; }
    Ref<Parameter> Compute(const Input& input, double time) const override;
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

/// One point to be tracked. Inputs: "PatternCenter" (a point, to be keyed: where the pattern is
/// over time), "PatternSize" and "SearchSize" (fractions of the picture's width). Its result,
/// "Position", is the pattern's centre.
class MARLOXSYSTEM_EXPORT TrackerModifier : public Operator {
public:
    explicit TrackerModifier(const Registry* record);

    bool IsModifier() const override { return true; }
    Ref<Parameter> Compute(const Input& input, double time) const override;
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

/// Where something is at a time.
struct PathKey {
    double time = 0.0;                                   // frames
    ShapePlace at;                                       // normalised image coordinates
    Interpolation interpolation = Interpolation::Linear; // on the way to the next
};
enum class PathForm {
    Linear,
    Smooth,
    ByKeys, // smooth behind keys that go on smoothly, else straight
};

/// Makes the path of a "Path" tool run through the places of the keys, straight or as a smooth
/// curve, and sets keys of its displacement so that its position is there at their times. Places
/// that repeat are a stop. One undo entry. False: no key, a number that is not finite, or the tool
/// refuses.
MARLOXSYSTEM_EXPORT bool SetPathKeys(Operator& path, std::span<const PathKey> keys, PathForm form);

} // namespace Marlox
