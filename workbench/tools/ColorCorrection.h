#pragma once

#include "system/color/ColorCurves.h"

#include <array>
#include <vector>

namespace Marlox {

/// What is done to the colours of one tonal range.
struct RangeCorrection {
    double hue = 0.0;        // turns, clockwise on the wheel; a third makes green red
    double saturation = 1.0; // factor
    double tintAngle = 0.0;  // turns: the hue of the tint, 0 red, a third green
    double tintLength = 0.0; // 0 none; 1 gives white as much chroma as pure red, or green ..., has
    /// Of the saturation of red, yellow, green, cyan, blue and magenta, how much stays, 0 to 1.
    std::array<double, 6> kept{1.0, 1.0, 1.0, 1.0, 1.0, 1.0};

    bool Suppresses() const;
    bool IsIdentity() const;
};

/// The correction of a picture: the master's, which holds for all of it, and those of the shadows,
/// midtones and highlights, as far as the curves count a pixel among them.
struct Correction {
    std::array<RangeCorrection, 4> ranges; // master, shadows, midtones, highlights
    Ref<ColorCurves> curves = MakeRef<ColorCurves>();
    double mix = 1.0; // 0 nothing to 1 all of it

    bool IsIdentity() const;
};

/// A correction made ready for pixels. Everything happens in scene-linear light and leaves the
/// luminance of every pixel as it is; only the chroma, the difference to the grey of that
/// luminance, changes. In this order:
///
/// 1. The master range: chroma is scaled by what stays of the pixel's hue, then by the saturation,
///    and turned by the hue; then the tint is added in proportion to the luminance.
/// 2. Shadows, midtones and highlights: the same from what the master made of the pixel. Their
///    changes are added up, each by the weight that the curves give it at the pixel's luminance
///    (as its colour is, alpha not multiplied in).
/// 3. The mix with what was there before.
///
/// Luminance: ITU-R BT.709. Hues turn about the grey axis in a plane of equal luminance (P.
/// Haeberli, Matrix Operations for Image Processing, 1993). The hue by which colours are suppressed
/// is that of the hexcone (A. R. Smith, Color Gamut Transform Pairs, 1978), of the pixel as it
/// comes; amounts between two of the six hues are interpolated linearly.
///
/// A colour that isn't finite, or would not be, stays as it is, and so does one that nothing
/// touches. Without alpha, and where that is no number, the colour counts as it is.
class Corrector {
public:
    explicit Corrector(const Correction& correction);

    /// `count` pixels, RGBA, alpha multiplied in. Thread-safe.
    void Apply(const float* from, float* to, int count) const;

private:
    struct Planes;
    /// What one range does to chroma (blue and red less luminance), and what it keeps of it by hue.
    struct Step {
        std::array<float, 4> turn{}; // row by row
        std::array<float, 2> tint{}; // for each luminance
        std::array<float, 6> lost{}; // of red, yellow, green, cyan, blue, magenta
        bool suppresses = false;
        bool isIdentity = true;
    };
    static Step StepOf(const RangeCorrection& range);
    static void Split(const float* from, int count, Planes& planes);
    static void FindHues(const float* from, int count, Planes& planes);
    static void Keep(const Step& step, int count, Planes& planes);
    void CorrectAll(int count, Planes& planes) const;
    void CorrectRange(std::size_t range, int count, Planes& planes) const;
    void Weigh(const float* from, int count, Planes& planes) const;
    void Join(const float* from, float* to, int count, const Planes& planes) const;

    std::array<Step, 4> steps_;
    bool suppresses_ = false;
    bool hasRanges_ = false;
    float mix_;
    /// Weights of shadows, midtones and highlights, for equal steps of the square root of the
    /// luminance, which is near enough to the curves' axis to spread them evenly.
    std::vector<std::array<float, 4>> weights_;
};

} // namespace Marlox
