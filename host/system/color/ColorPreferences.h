#pragma once

/// The preferences of colours, by name.
namespace Marlox {

/// How components of colours are written: 1 as 0 to 255, 2 as 0 to 65535, else as they are.
inline constexpr char PREF_ColorMode[] = "Color.Mode";
/// Whether the colour dialog shows scene-linear light with the display's gamma (a boolean), and
/// that gamma.
inline constexpr char PREF_GammaCorrectControls[] = "Color.GammaCorrectControls";
inline constexpr char PREF_GammaCorrectDisplayGamma[] = "Color.DisplayGamma";
inline constexpr double usualDisplayGamma = 2.2;
/// How many pixels across and down a pick takes: 1, 3 or 5.
inline constexpr char PREF_ColorSampleSize[] = "Color.SampleSize";

} // namespace Marlox
