#include "system/color/Luminance.h"
#include "workbench/samples/SampleMath.h"
#include "workbench/samples/Samples.h"

#include <array>

namespace Marlox::Samples {

namespace {

constexpr int width = 1280;
constexpr int height = 720;
constexpr Rgb ground{0.18f, 0.18f, 0.18f};

struct Pixel {
    Rgb color; // alpha is not multiplied in
    float alpha = 1.0f;
};

/// Full colours around the circle; `turn` from 0 to 1.
Rgb hue(float turn)
{
    const auto channel = [turn](float offset) {
        const float at = turn + offset - std::floor(turn + offset);
        return std::clamp(std::abs(at * 6.0f - 3.0f) - 1.0f, 0.0f, 1.0f);
    };
    return {channel(0.0f), channel(2.0f / 3.0f), channel(1.0f / 3.0f)};
}

// One painter for each band; t runs from 0 to 1 across, down from 0 to 1 within the band.

/// Hues, greyer towards the band's lower edge.
Pixel hues(float t, float down)
{
    const Rgb full = hue(t);
    return {Mix(full, Rgb{1, 1, 1} * Luminance::Of(full.r, full.g, full.b), down)};
}

Pixel ramp(float t, float)
{
    return {Rgb{1, 1, 1} * t};
}

Pixel ramps(float t, float down)
{
    constexpr std::array<Rgb, 3> primaries{Rgb{1, 0, 0}, Rgb{0, 1, 0}, Rgb{0, 0, 1}};
    return {primaries[std::size_t(std::min(int(down * 3.0f), 2))] * t};
}

/// Twenty-one equal steps.
Pixel steps(float t, float)
{
    return {Rgb{1, 1, 1} * (std::floor(t * 21.0f) / 20.0f)};
}

/// Middle grey and eight stops to each side, neutral above and warm below.
Pixel stops(float t, float down)
{
    const float stop = std::floor(t * 17.0f) - 8.0f;
    const Rgb tint = down < 0.5f ? Rgb{1, 1, 1} : Rgb{1.0f, 0.62f, 0.31f};
    return {tint * (0.18f * std::exp2(stop))};
}

/// Surfaces of everyday things, at daylight and at sixteen times that.
Pixel patches(float t, float down)
{
    constexpr std::array<Rgb, 12> colors{
        Rgb{0.18f, 0.08f, 0.055f}, Rgb{0.56f, 0.31f, 0.22f},  Rgb{0.11f, 0.20f, 0.34f},
        Rgb{0.10f, 0.15f, 0.05f},  Rgb{0.24f, 0.22f, 0.44f},  Rgb{0.12f, 0.51f, 0.41f},
        Rgb{0.72f, 0.20f, 0.025f}, Rgb{0.07f, 0.10f, 0.38f},  Rgb{0.55f, 0.08f, 0.12f},
        Rgb{0.11f, 0.045f, 0.14f}, Rgb{0.35f, 0.50f, 0.045f}, Rgb{0.78f, 0.36f, 0.02f}};
    const auto index = std::size_t(std::min(int(t * 12.0f), 11));
    return {colors[index] * (down < 0.5f ? 1.0f : 16.0f)};
}

/// From opaque to nothing, and beside it values below black.
Pixel cover(float t, float down)
{
    if (t > 0.75f) {
        const float depth = (t - 0.75f) * 4.0f;
        return {Mix(Rgb{0.2f, -0.2f, 0.2f}, Rgb{-0.5f, 0.1f, -0.5f}, down) * depth};
    }
    return {hue(std::floor(down * 3.0f) / 3.0f) * 0.8f, 1.0f - t / 0.75f};
}

/// Rings that get finer towards the rim: shows what a filter does.
Pixel rings(float t, float down, float bandAspect)
{
    const float x = (t - 0.5f) * bandAspect;
    const float far = x * x + (down - 0.5f) * (down - 0.5f);
    return {Rgb{1, 1, 1} * (0.5f + 0.5f * std::cos(far * 400.0f))};
}

struct Band {
    int left;
    int top;
    int right;
    int bottom;
    Pixel (*paint)(float t, float down);
};

constexpr std::array bands{
    Band{40, 40, 1240, 140, hues},   Band{40, 156, 1240, 196, ramp},
    Band{40, 196, 1240, 236, steps}, Band{40, 252, 1240, 324, ramps},
    Band{40, 340, 1240, 420, stops}, Band{40, 436, 880, 556, patches},
    Band{40, 572, 880, 680, cover},
};
constexpr Band ringsBand{904, 436, 1240, 680, nullptr};

bool contains(const Band& band, int x, int y)
{
    return x >= band.left && x < band.right && y >= band.top && y < band.bottom;
}

Pixel chartPixel(int x, int y)
{
    const auto across = [x](const Band& band) {
        return (float(x - band.left) + 0.5f) / float(band.right - band.left);
    };
    const auto down = [y](const Band& band) {
        return (float(y - band.top) + 0.5f) / float(band.bottom - band.top);
    };
    for (const Band& band : bands) {
        if (contains(band, x, y))
            return band.paint(across(band), down(band));
    }
    if (contains(ringsBand, x, y)) {
        const float bandAspect =
            float(ringsBand.right - ringsBand.left) / float(ringsBand.bottom - ringsBand.top);
        return rings(across(ringsBand), down(ringsBand), bandAspect);
    }
    // A frame one pixel wide at the very edge and marks every tenth of the way.
    const bool edge = x == 0 || y == 0 || x == width - 1 || y == height - 1;
    const bool mark = (x % (width / 10) == 0 && (y < 16 || y >= height - 16)) ||
                      (y % (height / 10) == 0 && (x < 16 || x >= width - 16));
    return {edge || mark ? Rgb{0.9f, 0.9f, 0.9f} : ground};
}

} // namespace

Ref<Image> Chart()
{
    Image::Format format;
    format.dataWindow = format.displayWindow = {0, 0, width, height};
    auto image = MakeRef<Image>(format);
    for (int y = 0; y < height; ++y) {
        float* pixel = image->Row(y);
        for (int x = 0; x < width; ++x, pixel += 4) {
            const Pixel painted = chartPixel(x, y);
            pixel[0] = painted.color.r * painted.alpha;
            pixel[1] = painted.color.g * painted.alpha;
            pixel[2] = painted.color.b * painted.alpha;
            pixel[3] = painted.alpha;
        }
    }
    return image;
}

} // namespace Marlox::Samples
