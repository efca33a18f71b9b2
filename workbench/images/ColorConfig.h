#pragma once

#include <cstddef>

#include <OpenColorIO/OpenColorTypes.h>

namespace Marlox {

/// The colour configuration made in code, used for files and, unless the user has one of their own,
/// for the display: scene-linear with Rec. 709 primaries, the sRGB display with the views Standard,
/// Log and Linear (the numbers as they are), and film scans.
OCIO_NAMESPACE::ConstConfigRcPtr BuiltInColorConfig();

/// How a file's numbers stand for light.
enum class ColorEncoding {
    SceneLinear,
    Srgb,    // IEC 61966-2-1
    FilmLog, // printing density of a 10-bit film scan: black at code 95, white at 685
};

/// Convert `pixels` RGBA pixels in place; alpha is left alone and must not be multiplied in.
/// Thread-safe.
void DecodeColors(ColorEncoding encoding, float* rgba, std::size_t pixels);
void EncodeColors(ColorEncoding encoding, float* rgba, std::size_t pixels);

} // namespace Marlox
