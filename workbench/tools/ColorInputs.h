#pragma once

#include "system/document/Operator.h"

#include <array>
#include <string>

namespace Marlox {

/// Red, green, blue, alpha; alpha is not multiplied in. Scene-linear.
using Color = std::array<double, 4>;

/// What the sliders of a colour need: the ids and names are `id` and `name` followed by "Red",
/// "Green", "Blue" and, if wanted, "Alpha"; those of the heading that folds them by "Colour".
struct ColorSpec {
    const char* id;
    const char* name;
    Color normal;
    bool hasAlpha;
};

void AddColor(Operator& tool, const ColorSpec& spec);

/// The colour at `time`: finite values, alpha from 0 to 1 (1 where there is no slider for it).
Color ColorAt(const Operator& tool, const std::string& id, double time);

} // namespace Marlox
