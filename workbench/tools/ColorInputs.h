#pragma once

#include "system/document/Operator.h"
#include "workbench/tools/ToolInputs.h"

#include <array>
#include <string>

namespace Marlox {

inline constexpr char CLSID_InputControl_Color[] = "ColorControl";
inline constexpr char CLSID_InputControl_ColorWheel[] = "ColorWheelControl";
inline constexpr char CLSID_InputControl_ColorSuppression[] = "ColorSuppressionControl";
inline constexpr char CLSID_InputControl_ColorRanges[] = "ColorRangesControl";

/// One of several number inputs that a control of colours edits together.
struct ChannelSpec {
    const char* control; // class id
    const char* with;    // id of the control's first input, or null: it is this one
    int channel;         // as the control counts them: IA_Channel
    int range = 0;       // IA_Range
};
/// Adds such an input; its range is that of the slider that the control may show for it.
Input& AddChannel(Operator& tool, const ChannelSpec& channel, const SliderSpec& spec,
                  const TagList& further = {});

/// Red, green, blue, alpha; alpha is not multiplied in. Scene-linear.
using Color = std::array<double, 4>;

/// What the inputs of a colour need: the ids and names are `id` and `name` followed by "Red",
/// "Green", "Blue" and, if wanted, "Alpha". Their common control is called by what the names share.
struct ColorSpec {
    const char* id;
    const char* name;
    Color normal;
    bool hasAlpha;
};

void AddColor(Operator& tool, const ColorSpec& spec);

/// The colour at `time`: finite values, alpha from 0 to 1 (1 where there is no input for it).
Color ColorAt(const Operator& tool, const std::string& id, double time);

} // namespace Marlox
