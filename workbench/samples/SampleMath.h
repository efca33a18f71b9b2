#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

/// What the painters of the sample pictures work with: colours, soft steps and noise. Everything is
/// a function of its arguments, so that the pictures are the same at every run.
namespace Marlox::Samples {

/// Scene-linear light, Rec. 709 primaries.
struct Rgb {
    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;

    friend constexpr Rgb operator+(Rgb a, Rgb b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
    friend constexpr Rgb operator*(Rgb a, Rgb b) { return {a.r * b.r, a.g * b.g, a.b * b.b}; }
    friend constexpr Rgb operator*(Rgb a, float f) { return {a.r * f, a.g * f, a.b * f}; }
    friend constexpr Rgb operator*(float f, Rgb a) { return a * f; }
    Rgb& operator+=(Rgb other) { return *this = *this + other; }
};

constexpr Rgb Mix(Rgb a, Rgb b, float t)
{
    return a * (1.0f - t) + b * t;
}

constexpr float Mix(float a, float b, float t)
{
    return a * (1.0f - t) + b * t;
}

/// 0 below `low`, 1 above `high`, smooth in between.
inline float Smooth(float low, float high, float x)
{
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

/// A number from 0 to 1 for each pair of whole numbers.
inline float Hash(int x, int y, int seed = 0)
{
    std::uint32_t h = std::uint32_t(x) * 0x8da6b343u ^ std::uint32_t(y) * 0xd8163841u ^
                      std::uint32_t(seed) * 0xcb1ab31fu;
    h = (h ^ (h >> 15)) * 0x2c1b3c6du;
    h = (h ^ (h >> 12)) * 0x297a2d39u;
    h ^= h >> 15;
    return float(h >> 8) / 16777216.0f;
}

/// Smooth noise from 0 to 1 with cells of size 1.
inline float Noise(float x, float y, int seed = 0)
{
    const float cellX = std::floor(x);
    const float cellY = std::floor(y);
    const float fx = Smooth(0.0f, 1.0f, x - cellX);
    const float fy = Smooth(0.0f, 1.0f, y - cellY);
    const int ix = int(cellX);
    const int iy = int(cellY);
    return Mix(Mix(Hash(ix, iy, seed), Hash(ix + 1, iy, seed), fx),
               Mix(Hash(ix, iy + 1, seed), Hash(ix + 1, iy + 1, seed), fx), fy);
}

/// Noise of `octaves` sizes, each half as large and as strong as the one before; about 0 to 1.
inline float Fractal(float x, float y, int octaves, int seed = 0)
{
    float sum = 0.0f;
    float weight = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * Noise(x, y, seed + i);
        x = x * 2.03f + 17.1f;
        y = y * 2.03f + 9.7f;
        weight *= 0.5f;
    }
    return sum;
}

} // namespace Marlox::Samples
