#pragma once

#include <array>

namespace Marlox {

/// The components that inputs of colours hold, by channel index (IA_Channel), 0 to 31. Several
/// colour sets share the same words.
namespace ColorChannels {

inline constexpr int count = 32;
inline constexpr int red = 0;
inline constexpr int green = 1;
inline constexpr int blue = 2;
inline constexpr int alpha = 3;
inline constexpr int objectId = 16;

/// Null: the channel has no name.
inline constexpr std::array<const char*, count> names{"Red",
                                                      "Green",
                                                      "Blue",
                                                      "Alpha", //
                                                      "Red",
                                                      "Green",
                                                      "Blue",
                                                      "Alpha", //
                                                      "Red",
                                                      "Green",
                                                      "Blue",
                                                      "Alpha", //
                                                      "Z",
                                                      "U",
                                                      "V",
                                                      "Coverage", //
                                                      "Object ID",
                                                      "Material ID",
                                                      "X Normal",
                                                      "Y Normal", //
                                                      "Z Normal",
                                                      "X Vector",
                                                      "Y Vector",
                                                      "X Back Vector", //
                                                      "Y Back Vector",
                                                      "X Position",
                                                      "Y Position",
                                                      "Z Position", //
                                                      "X Disparity",
                                                      "Y Disparity",
                                                      nullptr,
                                                      nullptr};

/// Whether its numbers are written as the preference PREF_ColorMode wants them. Object ids are
/// among these; that is meant.
constexpr bool IsColor(int channel)
{
    return (channel >= 0 && channel < 12) || channel == objectId;
}

/// Which of red, green, blue and alpha a colour's channel is, whatever the set; -1 for others.
constexpr int ComponentOf(int channel)
{
    return channel >= 0 && channel < 12 ? channel % 4 : -1;
}

} // namespace ColorChannels

} // namespace Marlox
