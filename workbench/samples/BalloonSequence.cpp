#include "system/evaluation/Process.h"
#include "workbench/samples/SampleMath.h"
#include "workbench/samples/Samples.h"

#include <array>

namespace Marlox::Samples {

namespace {

// Coordinates: x from 0 at the left to 16 / 9 at the right, y from 0 at the top to 1 at the bottom.

constexpr int width = 640;
constexpr int height = 360;
constexpr float aspect = 16.0f / 9.0f;
constexpr float pixel = 1.0f / height;
constexpr Rgb toSun{0.52f, 0.58f, 0.63f}; // direction: right, up, towards us

Rgb morningSky(float x, float y, float time)
{
    Rgb color = Mix(Rgb{0.13f, 0.27f, 0.62f}, Rgb{0.42f, 0.60f, 0.88f}, Smooth(0.0f, 0.45f, y));
    color = Mix(color, Rgb{1.05f, 0.86f, 0.66f}, Smooth(0.36f, 0.72f, y));
    const float drift = time * 0.0016f;
    const float puff = Fractal((x - drift) * 2.6f, y * 6.0f, 6, 5);
    const float above = Fractal((x - drift) * 2.6f + 0.05f, y * 6.0f - 0.22f, 6, 5);
    const float cover = Smooth(0.48f, 0.68f, puff) * (1.0f - Smooth(0.42f, 0.66f, y));
    const float lit = std::clamp(0.72f + (puff - above) * 3.0f, 0.35f, 1.15f);
    return Mix(color, Rgb{1.15f, 1.06f, 0.98f} * lit, cover * 0.9f);
}

struct Hill {
    float base;
    float rise;
    float wide;
    Rgb color;
    float haze;
    int seed;
};

constexpr std::array hills{
    Hill{0.680f, 0.13f, 1.7f, {0.090f, 0.150f, 0.170f}, 0.72f, 101},
    Hill{0.745f, 0.12f, 2.2f, {0.075f, 0.165f, 0.085f}, 0.42f, 117},
    Hill{0.845f, 0.13f, 1.6f, {0.085f, 0.175f, 0.040f}, 0.14f, 133},
};

/// Meadows and woods; 1 in `cover` where there is land.
Rgb landAt(float x, float y, float& cover)
{
    Rgb color;
    cover = 0.0f;
    for (const Hill& hill : hills) {
        const float top =
            hill.base - hill.rise * (Fractal(x * hill.wide, 0.3f, 5, hill.seed) - 0.30f);
        const float inside = Smooth(top - pixel, top + pixel, y);
        const float slope = Fractal(x * hill.wide + 0.05f, 0.3f, 5, hill.seed) -
                            Fractal(x * hill.wide - 0.05f, 0.3f, 5, hill.seed);
        // Woods and hedges lie flat on the slope: seen from the side they are thin bands.
        const float below = (y - top) * (14.0f + 26.0f * hill.haze);
        const float patch = Fractal(x * 3.6f, below * 2.6f, 5, hill.seed + 6);
        const float woods = Smooth(0.50f, 0.53f, patch);
        const float crowns = 0.55f + 0.9f * Fractal(x * 110.0f, y * 190.0f, 2, hill.seed + 9);
        const float fields =
            0.75f + 0.5f * Hash(int(std::floor(x * 5.0f + 3.0f * patch)),
                                int(std::floor(below * 1.3f + 2.0f * patch)), hill.seed);
        const Rgb field =
            Mix(hill.color * fields, Rgb{0.26f, 0.22f, 0.07f}, 0.35f * (fields - 0.75f) * 2.0f);
        const float sunny = std::clamp(1.25f - slope * 3.6f, 0.30f, 2.0f);
        Rgb ground = Mix(field, Rgb{0.022f, 0.050f, 0.022f} * crowns, woods) * (sunny * 1.35f);
        ground = Mix(ground, Rgb{0.72f, 0.68f, 0.68f}, hill.haze * 0.72f);
        color = Mix(color, ground, inside);
        cover = std::max(cover, inside);
    }
    return color;
}

struct Place {
    float x;
    float y;
    float size; // radius of the envelope
    float sway; // of the basket, radians
};

Place placeAt(int frame)
{
    const float t = float(frame - sequenceFirst) / float(sequenceLast - sequenceFirst);
    return {Mix(-0.10f, aspect + 0.10f, t),
            0.36f - 0.10f * std::sin(t * 3.1f) + 0.012f * std::sin(t * 19.0f), 0.125f,
            0.045f * std::sin(t * 15.0f)};
}

/// Half the envelope's width at `down`, from -1 at its crown to 1.5 at its mouth, in radii.
float halfWidth(float down)
{
    if (down < 0.25f)
        return std::sqrt(std::max(0.0f, 1.0f - down * down));
    const float t = (down - 0.25f) / 1.25f;
    const float shoulder = std::sqrt(1.0f - 0.25f * 0.25f);
    return Mix(shoulder, 0.16f, t * (1.15f - 0.15f * t * t)) + 0.035f * std::sin(t * 3.14159f);
}

struct Cover {
    Rgb color;
    float alpha = 0.0f;
};

/// The envelope: gores in turning colours, lit by the sun and from inside by the burner.
Cover envelope(const Place& place, float x, float y, float flame)
{
    const float down = (y - place.y) / place.size;
    if (down < -1.02f || down > 1.5f)
        return {};
    const float half = halfWidth(std::max(down, -1.0f));
    const float across = (x - place.x) / place.size;
    const float edge = (half - std::abs(across)) * place.size / pixel;
    const float ends = std::min(down + 1.0f, 1.5f - down) * place.size / pixel;
    const float alpha = std::clamp(edge + 0.5f, 0.0f, 1.0f) * std::clamp(ends + 0.5f, 0.0f, 1.0f);
    if (alpha <= 0.0f)
        return {};
    const float side = std::clamp(across / std::max(half, 0.01f), -1.0f, 1.0f);
    const float towards = std::sqrt(std::max(0.0f, 1.0f - side * side));
    const float upwards = std::clamp(-down, -0.8f, 1.0f);
    const float light = side * toSun.r + upwards * toSun.g * 0.8f + towards * toSun.b;
    const float turn = std::asin(side) / 3.14159f * 8.0f + 40.5f; // gores, eight to half a turn
    constexpr std::array<Rgb, 4> cloth{Rgb{0.80f, 0.075f, 0.045f}, Rgb{0.92f, 0.42f, 0.035f},
                                       Rgb{0.95f, 0.78f, 0.48f}, Rgb{0.10f, 0.23f, 0.55f}};
    Rgb color = cloth[std::size_t(int(std::floor(turn)) % 4)];
    if (std::abs(down - 0.12f) < 0.075f)
        color = Rgb{0.93f, 0.88f, 0.78f}; // a band around its widest part
    const float seam = std::abs(turn - std::round(turn));
    color = color * (0.80f + 0.20f * Smooth(0.0f, 0.10f, seam));
    Rgb lit = color * (0.30f + 1.25f * std::max(light, 0.0f));
    lit += color * Rgb{1.0f, 0.72f, 0.42f} * (flame * 1.1f * Smooth(-0.5f, 1.4f, down));
    return {lit, alpha};
}

/// The flame over the basket, far above white.
Cover flameAt(const Place& place, float x, float y, float flame)
{
    const float up = (place.y + place.size * 1.66f - y) / (place.size * 0.30f);
    if (up < 0.0f || up > 1.0f || flame <= 0.0f)
        return {};
    const float half = 0.06f * (1.0f - up) * (0.4f + up * 2.2f);
    const float across = std::abs(x - place.x) / place.size;
    const float core = 1.0f - Smooth(half * 0.4f, half + 0.012f, across);
    return {Mix(Rgb{26.0f, 17.0f, 8.0f}, Rgb{12.0f, 4.2f, 0.9f}, up) * flame, core * flame};
}

Cover basket(const Place& place, float x, float y)
{
    const float top = place.y + place.size * 1.72f;
    const float shift = place.sway * (y - place.y);
    const float across = (x - place.x - shift) / place.size;
    const float down = (y - top) / place.size;
    // Ropes from the envelope's mouth to the basket's corners.
    const float mouth = place.y + place.size * 1.5f;
    if (y > mouth && y < top) {
        const float t = (y - mouth) / (top - mouth);
        const float rope = std::abs(std::abs(across) - Mix(0.15f, 0.13f, t)) * place.size / pixel;
        return {{0.045f, 0.035f, 0.03f}, std::clamp(0.85f - rope, 0.0f, 1.0f)};
    }
    const float inside = std::min({0.135f - std::abs(across), down, 0.20f - down});
    const float alpha = std::clamp(inside * place.size / pixel + 0.5f, 0.0f, 1.0f);
    const float weave = 0.7f + 0.3f * std::sin(across * 160.0f) * std::sin(down * 190.0f);
    const float shade = 0.55f + 0.8f * Smooth(-0.13f, 0.13f, across);
    return {Rgb{0.30f, 0.165f, 0.065f} * (weave * shade), alpha};
}

Rgb over(Rgb behind, const Cover& cover)
{
    return Mix(behind, cover.color, cover.alpha);
}

Ref<Image> makeImage()
{
    Image::Format format;
    format.dataWindow = format.displayWindow = {0, 0, width, height};
    return MakeRef<Image>(format);
}

template <class Paint>
void paintRows(Image& image, Paint paint)
{
    RenderContext context;
    context.ForRows(height, [&image, &paint](int first, int last) {
        for (int row = first; row < last; ++row) {
            float* to = image.Row(row);
            for (int column = 0; column < width; ++column, to += 4)
                paint((float(column) + 0.5f) / width * aspect, (float(row) + 0.5f) / height, row,
                      column, to);
        }
    });
}

/// The hills do not move: painted once.
const Image& landscape()
{
    static const Ref<Image> land = [] {
        auto image = makeImage();
        paintRows(*image, [](float x, float y, int, int, float* to) {
            float cover = 0.0f;
            const Rgb color = landAt(x, y, cover);
            to[0] = color.r;
            to[1] = color.g;
            to[2] = color.b;
            to[3] = cover;
        });
        return image;
    }();
    return *land;
}

} // namespace

Ref<Image> BalloonFrame(int frame)
{
    const Image& land = landscape();
    const Place place = placeAt(frame);
    const float gust = Noise(float(frame) * 0.35f, 0.0f, 201);
    const float flame = Smooth(0.45f, 0.62f, gust) * (0.8f + 0.4f * Hash(frame, 0, 202));
    auto image = makeImage();
    paintRows(*image, [&](float x, float y, int row, int column, float* to) {
        const float* hill = land.Row(row) + std::ptrdiff_t(column) * 4;
        Rgb color = hill[3] < 1.0f ? morningSky(x, y, float(frame)) : Rgb{};
        color = Mix(color, {hill[0], hill[1], hill[2]}, hill[3]);
        color = over(color, basket(place, x, y));
        color = over(color, flameAt(place, x, y, flame));
        color = over(color, envelope(place, x, y, flame));
        to[0] = color.r;
        to[1] = color.g;
        to[2] = color.b;
        to[3] = 1.0f;
    });
    return image;
}

} // namespace Marlox::Samples
