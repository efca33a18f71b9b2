#pragma once

#include "system/values/Parameter.h"

namespace Marlox {

/// The tonal ranges of a colour correction, as two curves over the brightness: how much of a
/// brightness belongs to the shadows, falling from 1 to 0, and to the highlights, rising from 0 to
/// 1. What neither takes is the midtones. Brightness and weights run from 0 to 1; beyond the ends
/// of a curve its end goes on, so that whatever is brighter than 1 is as bright as 1.
///
/// Equal steps of brightness look about equal: it is the power 1/2.2 of the relative luminance in
/// linear light, whose middle grey of 0.18 is near 0.46.
///
/// Each curve is a cubic Bezier segment of four nodes: 0 to 3 of the shadows, 4 to 7 of the
/// highlights, each the start, its handle, the handle of the end, and the end. Starts and ends keep
/// their weight of 0 or 1 and move along the brightness only, in their order; handles stay between
/// them, so that a curve has one weight for each brightness.
class MARLOXSYSTEM_EXPORT ColorCurves final : public Parameter {
public:
    static constexpr int nodeCount = 8;
    struct Node {
        double x = 0.0; // brightness
        double y = 0.0; // weight
        friend bool operator==(const Node&, const Node&) = default;
    };

    /// Shadows below and highlights above the middle, each fading over half of the scale.
    ColorCurves();
    /// x and y of each node in turn; put in order as SetNodePosition would.
    explicit ColorCurves(std::span<const double> coordinates);

    Node NodeAt(int index) const;
    /// Moves a node as far as its curve allows. Moving a start or an end within its curve brings
    /// the handles along as far as they must; with `takeHandle` its own handle keeps its distance.
    /// No such node, or no number: does nothing.
    void SetNodePosition(int index, Node to, bool takeHandle);

    static double BrightnessOf(double luminance); // nothing is darker than black: 0
    static double LuminanceOf(double brightness);

    // Shares of a brightness, each 0 to 1; the three add up to 1 or more (where the curves
    // overlap). Of what is no number, those of black.
    double Low(double brightness) const;
    double Mid(double brightness) const;
    double High(double brightness) const;
    /// All three in one go.
    struct Shares {
        double low;
        double mid;
        double high;
    };
    Shares At(double brightness) const;

    // Parameter
    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    std::span<const double> Components() const override { return coordinates_; }
    Ref<Parameter> WithComponents(std::span<const double> components) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

private:
    Node Stored(int index) const;
    void Store(int index, Node node);
    // Each puts one node where its curve (0 or 1) allows it.
    void CalculateStart(int curve);
    void CalculateStartHandle(int curve);
    void CalculateEnd(int curve);
    void CalculateEndHandle(int curve);
    double Weight(int curve, double brightness) const;

    std::array<double, 2 * nodeCount> coordinates_;
};

} // namespace Marlox
