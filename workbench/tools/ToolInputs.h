#pragma once

#include "system/base/HostClassIds.h"
#include "system/base/HostTags.h"
#include "system/document/Operator.h"

#include <string>

namespace Marlox {

// The own creation tags of the slider, the combo and the label control, as their references have
// them.
inline constexpr u32 IC_TickFreq = 0x10050000;   // number of tick marks; 0: chosen by the slider
inline constexpr u32 SLCS_LowName = 0x30050000;  // texts under the low end,
inline constexpr u32 SLCS_MidName = 0x30050001;  // the middle
inline constexpr u32 SLCS_HighName = 0x30050002; // and the high end
inline constexpr u32 CMBS_Entry = 0x30050000;    // the text of an entry, once for each
inline constexpr u32 LBL_Rows = 0x10050000;      // number of inputs that a nest folds

/// The inspector's choice of the tool that an image input is connected to.
inline constexpr char CLSID_InputControl_Image[] = "ImageControl";

/// What a number input with a slider needs; further tags follow in the list given to AddSlider.
struct SliderSpec {
    const char* id;
    const char* name;
    double low; // slider's range
    double high;
    double normal;    // default
    const char* help; // one sentence for the tooltip
};

/// Adds a number input shown as a slider.
Input& AddSlider(Operator& tool, const SliderSpec& spec, const TagList& further = {});
/// A whole number from 0 to the number of names less one, chosen by name in a combo box. It holds
/// between keys.
Input& AddChoice(Operator& tool, const char* id, const char* name, const char* help,
                 std::initializer_list<const char*> names, int normal);
/// A flag, 0 or 1.
Input& AddFlag(Operator& tool, const char* id, const char* name, const char* help, bool normal);
/// The heading of the next `rows` inputs that have controls, which it folds. Whether it is open is
/// kept with the tool, yet is no value of the tool's: changing it neither records nor renders.
Input& AddNest(Operator& tool, const char* id, const char* name, int rows, bool open,
               const char* help = "");
/// The main image input, id "Input".
Input& AddImageInput(Operator& tool);
/// The mask that limits the tool's effect, id "EffectMask"; nothing connected limits nothing.
Input& AddMaskInput(Operator& tool);

/// The number of the tool's input at `time`.
double NumberAt(const Operator& tool, const char* id, double time);
int WholeAt(const Operator& tool, const char* id, double time);

/// The message of a tool that has nothing to work on.
QString NoInputText();

/// A process's cache key: its values with all digits, separated by blanks.
std::string KeyOf(std::initializer_list<double> values);

} // namespace Marlox
