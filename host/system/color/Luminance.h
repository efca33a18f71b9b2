#pragma once

namespace Marlox {

/// How bright scene-linear light is to the eye: the shares that red, green and blue have in it with
/// the primaries and the white of ITU-R BT.709, as that recommendation rounds them (BT.709-6, item
/// 3.2, which gives them for luma, the same sum of its own non-linear components). White has 1.
namespace Luminance {

inline constexpr double red = 0.2126;
inline constexpr double green = 0.7152;
inline constexpr double blue = 0.0722;

/// In the precision of the components.
template <class Number>
constexpr Number Of(Number r, Number g, Number b)
{
    return Number(red) * r + Number(green) * g + Number(blue) * b;
}

} // namespace Luminance

} // namespace Marlox
