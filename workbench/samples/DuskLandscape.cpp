#include "system/evaluation/Process.h"
#include "workbench/samples/SampleMath.h"
#include "workbench/samples/Samples.h"

#include <array>

namespace Marlox::Samples {

namespace {

// Coordinates: x from 0 at the left to 16 / 9 at the right, y from 0 at the top to 1 at the bottom.

constexpr int width = 1280;
constexpr int height = 720;
constexpr float aspect = 16.0f / 9.0f;
constexpr float shore = 0.655f; // where the water begins

constexpr float sunX = 1.16f;
constexpr float sunY = 0.525f;
constexpr float sunRadius = 0.023f;

struct Ridge {
    float base;  // height of its foot's profile
    float rise;  // of its hills
    float wide;  // hills across the picture
    float rough; // of its outline: trees
    Rgb color;   // in shadow
    float haze;  // how much of the evening's light lies in front of it
    int seed;
};

constexpr std::array ridges{
    Ridge{0.560f, 0.100f, 2.3f, 0.000f, {0.075f, 0.060f, 0.110f}, 0.62f, 11},
    Ridge{0.590f, 0.095f, 3.1f, 0.003f, {0.040f, 0.036f, 0.075f}, 0.38f, 23},
    Ridge{0.625f, 0.090f, 2.6f, 0.006f, {0.017f, 0.018f, 0.040f}, 0.17f, 37},
    Ridge{0.658f, 0.075f, 3.7f, 0.011f, {0.005f, 0.007f, 0.014f}, 0.04f, 51},
};

struct Lamp {
    float x;
    float y;
    float strength;
    Rgb color;
};

constexpr Rgb warm{1.0f, 0.56f, 0.20f};
constexpr Rgb pale{0.82f, 0.90f, 1.0f};

/// Along the near shore, at the boat house and in the boat.
constexpr std::array lamps{
    Lamp{0.105f, 0.636f, 26.0f, warm}, Lamp{0.190f, 0.640f, 20.0f, warm},
    Lamp{0.272f, 0.642f, 24.0f, warm}, Lamp{0.352f, 0.644f, 18.0f, warm},
    Lamp{0.436f, 0.645f, 22.0f, warm}, Lamp{0.560f, 0.633f, 30.0f, pale},
    Lamp{0.648f, 0.646f, 14.0f, warm}, Lamp{1.420f, 0.641f, 18.0f, warm},
    Lamp{1.512f, 0.643f, 22.0f, warm}, Lamp{1.610f, 0.639f, 26.0f, pale},
};

constexpr Lamp boatLantern{0.885f, 0.742f, 36.0f, warm};

float distance(float x, float y, float toX, float toY)
{
    return std::hypot(x - toX, y - toY);
}

Rgb sky(float x, float y)
{
    constexpr Rgb zenith{0.012f, 0.022f, 0.075f};
    constexpr Rgb middle{0.105f, 0.085f, 0.205f};
    constexpr Rgb low{0.62f, 0.235f, 0.165f};
    constexpr Rgb horizon{1.25f, 0.56f, 0.20f};
    Rgb color = Mix(zenith, middle, Smooth(0.0f, 0.36f, y));
    color = Mix(color, low, Smooth(0.22f, 0.50f, y));
    color = Mix(color, horizon, Smooth(0.42f, 0.60f, y));
    const float far = distance(x, y * 1.25f, sunX, sunY * 1.25f);
    color = color * (0.62f + 0.55f * std::exp(-far * 1.3f));
    color += Rgb{2.4f, 1.15f, 0.42f} * std::exp(-far / 0.055f);
    color += Rgb{0.85f, 0.34f, 0.12f} * std::exp(-far / 0.21f);
    const float disc =
        1.0f - Smooth(sunRadius * 0.93f, sunRadius * 1.07f, distance(x, y, sunX, sunY));
    return color + Rgb{58.0f, 30.0f, 10.5f} * disc;
}

Rgb stars(float x, float y)
{
    constexpr float cells = 46.0f;
    const int column = int(std::floor(x * cells));
    const int row = int(std::floor(y * cells));
    if (Hash(column, row, 3) > 0.34f)
        return {};
    const float starX = (float(column) + 0.15f + 0.7f * Hash(column, row, 4)) / cells;
    const float starY = (float(row) + 0.15f + 0.7f * Hash(column, row, 5)) / cells;
    const float bright = std::pow(Hash(column, row, 6), 6.0f) * 3.4f + 0.06f;
    const float far = distance(x, y, starX, starY) / 0.00095f;
    const Rgb tint = Mix(Rgb{0.75f, 0.85f, 1.0f}, Rgb{1.0f, 0.86f, 0.70f}, Hash(column, row, 7));
    return tint * (bright * std::exp(-far * far) * (1.0f - Smooth(0.10f, 0.40f, y)));
}

/// Long bands of cloud, lit from below by the sun.
Rgb withClouds(Rgb behind, float x, float y)
{
    const float stretched =
        Fractal(x * 2.2f + 0.7f * Fractal(x * 1.5f, y * 5.0f, 3, 81), y * 13.0f, 6, 90);
    const float band = Smooth(0.10f, 0.27f, y) * (1.0f - Smooth(0.42f, 0.56f, y));
    const float cover = Smooth(0.47f, 0.70f, stretched) * band;
    // The side towards the sun is the one where the cloud gets thinner below.
    const float under = Fractal(x * 2.2f + 0.7f * Fractal(x * 1.5f, y * 5.0f + 0.1f, 3, 81),
                                (y + 0.012f) * 13.0f, 6, 90);
    const float lit = std::clamp((stretched - under) * 4.5f + 0.25f, 0.0f, 1.0f) *
                      std::exp(-distance(x, y, sunX, sunY) * 1.5f);
    const Rgb shaded =
        Mix(Rgb{0.055f, 0.048f, 0.105f}, Rgb{0.21f, 0.095f, 0.13f}, Smooth(0.2f, 0.5f, y));
    return Mix(behind, shaded + Rgb{3.4f, 1.30f, 0.52f} * lit, cover * 0.86f);
}

float ridgeTop(const Ridge& ridge, float x)
{
    const float hills = Fractal(x * ridge.wide, 0.5f, 5, ridge.seed);
    const float trees = ridge.rough * (Noise(x * 90.0f, 0.0f, ridge.seed + 7) +
                                       0.6f * Noise(x * 230.0f, 0.0f, ridge.seed + 8));
    return ridge.base - ridge.rise * (hills - 0.32f) - trees;
}

/// Lit windows of the houses at the foot of the nearest ridge.
Rgb windows(float x, float y)
{
    constexpr float cellX = 1.0f / 130.0f;
    constexpr float cellY = 1.0f / 150.0f;
    if (y < 0.610f || y > 0.648f)
        return {};
    const int column = int(std::floor(x / cellX));
    const int row = int(std::floor(y / cellY));
    const float village = Smooth(0.52f, 0.66f, Noise(x * 5.0f, 2.0f, 61));
    if (Hash(column, row, 62) > 0.30f * village)
        return {};
    const float inX = x / cellX - float(column);
    const float inY = y / cellY - float(row);
    const bool inside = inX > 0.28f && inX < 0.70f && inY > 0.25f && inY < 0.80f;
    const bool bar = std::abs(inX - 0.49f) < 0.035f;
    if (!inside || bar)
        return {};
    return Mix(warm, Rgb{1.0f, 0.78f, 0.45f}, Hash(column, row, 63)) *
           (1.8f + 9.0f * Hash(column, row, 64));
}

Rgb glowOf(const Lamp& lamp, float x, float y)
{
    const float far = distance(x, y, lamp.x, lamp.y);
    if (far > 0.14f)
        return {};
    const float core = 1.0f - Smooth(0.0016f, 0.0036f, far);
    const float halo = 0.055f * std::exp(-far / 0.006f) + 0.0055f * std::exp(-far / 0.028f);
    return lamp.color * (lamp.strength * (core + halo));
}

/// Everything above the water line.
Rgb land(float x, float y)
{
    Rgb color = withClouds(sky(x, y) + stars(x, y), x, y);
    const Rgb haze = Mix(Rgb{0.33f, 0.17f, 0.20f}, Rgb{1.05f, 0.46f, 0.19f},
                         std::exp(-std::abs(x - sunX) * 1.5f));
    for (const Ridge& ridge : ridges) {
        const float top = ridgeTop(ridge, x);
        const float inside = Smooth(top - 0.0012f, top + 0.0012f, y);
        if (inside <= 0.0f)
            continue;
        const float grain = 0.75f + 0.5f * Fractal(x * 24.0f, y * 60.0f, 3, ridge.seed + 4);
        const float mist = ridge.haze * (0.75f + 0.5f * Smooth(top, top + 0.10f, y));
        color = Mix(color, Mix(ridge.color * grain, haze, std::min(mist, 0.95f)), inside);
    }
    const float nearest = ridgeTop(ridges.back(), x);
    if (y > nearest + 0.006f)
        color += windows(x, y);
    for (const Lamp& lamp : lamps)
        color += glowOf(lamp, x, y);
    return color;
}

Rgb water(float x, float y)
{
    const float depth = (y - shore) / (1.0f - shore); // 0 at the far shore, 1 at our feet
    // Waves look larger the nearer they are.
    const float scale = 1.0f / (0.035f + 0.55f * depth);
    const float rows = std::log(1.0f + 26.0f * depth) * 34.0f;
    const float wave = Fractal(x * 2.6f * scale, rows, 4, 71) - 0.47f;
    const float ripple = Noise(x * 9.0f * scale, rows * 2.7f, 77) - 0.5f;
    const float slope = wave * 0.9f + ripple * 0.35f;
    const float mirrorX = x + slope * 0.012f * (0.4f + depth);
    const float mirrorY = shore - (y - shore) * 1.15f - slope * (0.010f + 0.085f * depth);
    const Rgb mirrored = land(mirrorX, std::clamp(mirrorY, 0.0f, shore - 0.004f));
    const float mirror = Mix(0.84f, 0.46f, depth);
    Rgb color = mirrored * Rgb{0.92f, 0.95f, 1.0f} * mirror + Rgb{0.004f, 0.007f, 0.014f};
    // The sun's road: facets that happen to look at it.
    const float road = std::exp(-std::pow((x - sunX) / (0.022f + 0.075f * depth), 2.0f));
    const float facet = Smooth(0.55f, 0.80f, Noise(x * 17.0f * scale, rows * 3.1f, 79));
    color += Rgb{9.5f, 4.2f, 1.45f} * (road * facet * (1.0f - 0.55f * depth));
    return color;
}

/// A moored boat with a lantern, and its image in the water.
Rgb withBoat(Rgb behind, float x, float y)
{
    constexpr float left = 0.770f;
    constexpr float right = 0.935f;
    constexpr float line = 0.792f; // water line
    const float along = (x - left) / (right - left);
    Rgb color = behind;
    const bool mirrored = y > line;
    const float up = mirrored ? (y - line) * 1.1f : line - y; // above the water, or below
    const float sway = mirrored ? 0.003f * std::sin(y * 900.0f) : 0.0f;
    const float at = along + sway / (right - left);
    const float middle = 2.0f * at - 1.0f;
    const float gunwale = 0.0125f + 0.014f * middle * middle;
    const bool hull = std::abs(middle) < 1.0f - 0.10f * (1.0f - up / 0.028f) && up < gunwale;
    const float mastX = Mix(left, right, 0.70f);
    const bool mast = std::abs(x + sway - mastX) < 0.0010f && up < 0.052f;
    if (hull || mast) {
        const float rim = Smooth(gunwale - 0.0045f, gunwale, up);
        const Rgb wood =
            Rgb{0.010f, 0.008f, 0.008f} + Rgb{0.34f, 0.16f, 0.06f} * (rim * (hull ? 0.6f : 0.2f));
        color = Mix(color, wood, mirrored ? 0.72f : 1.0f);
    }
    color += glowOf(boatLantern, x, y);
    Lamp image = boatLantern;
    image.y = 2.0f * line - boatLantern.y + 0.004f;
    image.strength *= 0.22f;
    return color +
           glowOf(image, x + 0.004f * std::sin(y * 700.0f), line + (y - line) * 0.6f + 0.012f);
}

/// Reeds in front of everything, at the lower left.
float reeds(float x, float y)
{
    float cover = 0.0f;
    for (int i = 0; i < 46; ++i) {
        const float foot = 0.010f + 0.40f * Hash(i, 0, 41) * Hash(i, 1, 41);
        const float top = 0.80f + 0.16f * Hash(i, 2, 41) + 0.25f * foot;
        if (y < top)
            continue;
        const float t = (1.0f - y) / (1.0f - top); // 0 at the foot, 1 at the tip
        const float bend = (Hash(i, 3, 41) - 0.35f) * 0.085f * t * t;
        const float half = 0.0021f * (1.0f - t) + 0.0005f;
        cover = std::max(cover, 1.0f - Smooth(half, half + 0.0011f, std::abs(x - foot - bend)));
        const float headY = (y - top - 0.012f) / 0.020f; // the seed head
        const float headX = (x - foot - (Hash(i, 3, 41) - 0.35f) * 0.085f) / 0.0030f;
        if (Hash(i, 4, 41) > 0.55f)
            cover = std::max(cover, 1.0f - Smooth(0.85f, 1.1f, std::hypot(headX, headY)));
    }
    return cover;
}

Rgb dusk(float x, float y)
{
    Rgb color = y < shore ? land(x, y) : water(x, y);
    const float bank = std::abs(y - shore - 0.0015f);
    color = color * Mix(0.30f, 1.0f, Smooth(0.0f, 0.0032f, bank)); // the dark edge of the shore
    color = withBoat(color, x, y);
    return Mix(color, Rgb{0.0035f, 0.0045f, 0.0065f}, reeds(x, y));
}

/// Five places within each pixel, none above or beside another.
constexpr std::array<std::array<float, 2>, 5> samples{
    {{0.5f, 0.1f}, {0.9f, 0.3f}, {0.3f, 0.5f}, {0.7f, 0.7f}, {0.1f, 0.9f}}};

} // namespace

Ref<Image> DuskLandscape()
{
    Image::Format format;
    format.dataWindow = format.displayWindow = {0, 0, width, height};
    auto image = MakeRef<Image>(format);
    RenderContext context;
    context.ForRows(height, [&image](int first, int last) {
        for (int row = first; row < last; ++row) {
            float* pixel = image->Row(row);
            for (int column = 0; column < width; ++column, pixel += 4) {
                Rgb color;
                for (const auto& [right, down] : samples)
                    color += dusk((float(column) + right) / width * aspect,
                                  (float(row) + down) / height);
                color = color * (1.0f / float(samples.size()));
                pixel[0] = color.r;
                pixel[1] = color.g;
                pixel[2] = color.b;
                pixel[3] = 1.0f;
            }
        }
    });
    return image;
}

} // namespace Marlox::Samples
